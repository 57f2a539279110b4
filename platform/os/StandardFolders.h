/// Where a Linux desktop keeps things, by the XDG base directory rules: a variable that is unset,
/// empty or not an absolute path counts as unset. Paths are absolute, without a trailing slash
/// unless the variable has one. Thread: any, while nobody changes the environment.
#pragma once
#include <string>
#include <vector>

namespace platform {

/// $HOME, else the home that the user's account names, else "/".
std::string homeFolder();

/// The user's application data: $XDG_DATA_HOME, else ~/.local/share. Made when it is missing; ""
/// when it cannot be.
std::string userDataFolder();
/// Where programs put application data for all users: the folders of $XDG_DATA_DIRS, else
/// /usr/local/share and /usr/share, the most important first. They may be missing.
std::vector<std::string> systemDataFolders();
/// Application data of all users: the first folder of $XDG_DATA_DIRS that this user may write to,
/// else /usr/local/share, which is made when it is missing; "" when it cannot be.
std::string allUsersDataFolder();

/// $XDG_CONFIG_HOME, else ~/.config. May be missing.
std::string userConfigFolder();
/// /etc/xdg. Not $XDG_CONFIG_DIRS: that differs between sessions, and what one session writes the
/// next has to find.
std::string allUsersConfigFolder();

/// $TMPDIR where that is a folder, else /tmp.
std::string temporaryFolder();
/// The desktop that user-dirs.dirs in the user's configuration names, else ~/Desktop. May be
/// missing.
std::string desktopFolder();

/// Makes a folder and those above it that are missing.
/// @param mode  permissions of each new one, before the umask
/// @return true when there is a folder at the path afterwards
bool makeFolders(const std::string& path, unsigned mode);

} // namespace platform
