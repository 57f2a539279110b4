#include "platform/os/StandardFolders.h"

#include "platform/os/WholeFile.h"

#include <cstdlib>
#include <filesystem>
#include <optional>
#include <pwd.h>
#include <sstream>
#include <string_view>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>
#include <vector>

namespace platform {

namespace {

constexpr unsigned kPrivate = 0700; // what the base directory rules ask for the user's own folders
constexpr unsigned kPublic = 0755;
constexpr const char* kLocalData = "/usr/local/share";
constexpr std::size_t kMostUserDirs = 65536;

bool isFolder(const std::string& path)
{
    std::error_code error;
    return std::filesystem::is_directory(path, error);
}

/// The variable's value where that is an absolute path, else "".
std::string pathVariable(const char* name)
{
    const char* value = std::getenv(name);
    return value != nullptr && *value == '/' ? value : "";
}

/// The absolute paths of a list with colons between them.
std::vector<std::string> pathsIn(const char* list)
{
    std::vector<std::string> paths;
    std::istringstream rest(list != nullptr ? list : "");
    for (std::string path; std::getline(rest, path, ':');)
        if (path.starts_with('/'))
            paths.push_back(path);
    return paths;
}

std::string homeOfAccount()
{
    std::vector<char> texts(16384);
    passwd account{};
    passwd* found = nullptr;
    if (::getpwuid_r(::getuid(), &account, texts.data(), texts.size(), &found) != 0 ||
        found == nullptr || found->pw_dir == nullptr || *found->pw_dir != '/')
        return "/";
    return found->pw_dir;
}

std::string underHome(std::string_view path)
{
    std::string full = homeFolder();
    while (!full.empty() && full.back() == '/')
        full.pop_back();
    return full.append("/").append(path);
}

/// The text up to the closing quote, its backslashes taken off; nothing without a closing quote.
std::optional<std::string> unquoted(std::string_view text)
{
    std::string plain;
    for (std::size_t at = 0; at < text.size(); ++at) {
        if (text[at] == '"')
            return plain;
        if (text[at] == '\\' && at + 1 < text.size())
            ++at;
        plain += text[at];
    }
    return std::nullopt;
}

/// What a line of user-dirs.dirs says of the desktop: XDG_DESKTOP_DIR="$HOME/..." or "/...".
std::optional<std::string> desktopOfLine(std::string_view line)
{
    constexpr std::string_view name = "XDG_DESKTOP_DIR=\"";
    constexpr std::string_view home = "$HOME/";
    line.remove_prefix(std::min(line.find_first_not_of(" \t"), line.size()));
    if (!line.starts_with(name))
        return std::nullopt;
    line.remove_prefix(name.size());
    const bool inHome = line.starts_with(home);
    if (!inHome && !line.starts_with('/'))
        return std::nullopt;
    const auto path = unquoted(line.substr(inHome ? home.size() : 0));
    return path && inHome ? underHome(*path) : path;
}

} // namespace

std::string homeFolder()
{
    const std::string home = pathVariable("HOME");
    return home.empty() ? homeOfAccount() : home;
}

std::string userDataFolder()
{
    std::string folder = pathVariable("XDG_DATA_HOME");
    if (folder.empty())
        folder = underHome(".local/share");
    return makeFolders(folder, kPrivate) ? folder : "";
}

std::vector<std::string> systemDataFolders()
{
    std::vector<std::string> folders = pathsIn(std::getenv("XDG_DATA_DIRS"));
    if (folders.empty())
        folders = {kLocalData, "/usr/share"};
    return folders;
}

std::string allUsersDataFolder()
{
    for (const std::string& folder : pathsIn(std::getenv("XDG_DATA_DIRS")))
        if (isFolder(folder) && ::access(folder.c_str(), W_OK) == 0)
            return folder;
    const std::string local = kLocalData;
    return makeFolders(local, kPublic) ? local : "";
}

std::string userConfigFolder()
{
    const std::string folder = pathVariable("XDG_CONFIG_HOME");
    return folder.empty() ? underHome(".config") : folder;
}

std::string allUsersConfigFolder()
{
    return "/etc/xdg";
}

std::string temporaryFolder()
{
    const std::string folder = pathVariable("TMPDIR");
    return isFolder(folder) ? folder : "/tmp";
}

std::string desktopFolder()
{
    std::string text;
    readWholeFile(userConfigFolder() + "/user-dirs.dirs", kMostUserDirs, text);
    std::string desktop = underHome("Desktop");
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);)
        desktop = desktopOfLine(line).value_or(desktop); // shells read it too: the last one counts
    return desktop;
}

bool makeFolders(const std::string& path, unsigned mode)
{
    for (std::size_t end = path.find('/', 1); !path.empty(); end = path.find('/', end + 1)) {
        ::mkdir(path.substr(0, end).c_str(), mode); // whether it helped shows in the end
        if (end == std::string::npos)
            break;
    }
    return isFolder(path);
}

} // namespace platform
