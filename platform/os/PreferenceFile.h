/// The settings of one domain, kept in a file of their own.
#pragma once
#include "platform/os/PreferenceValue.h"

#include <functional>
#include <string>
#include <string_view>

namespace platform {

/// One JSON file in a folder. Every process and thread may use the same domain at once: readers see
/// the settings before a change or after it, and no change is lost. A file that is damaged (no
/// JSON, too large, nested too deeply) reads as empty; the first change keeps it aside as
/// "<name>.damaged". A file that is a symbolic link stays one. Thread: any; no operation throws.
class PreferenceFile
{
public:
    /// @param folder      made by the first change when it is missing
    /// @param domain      any bytes; names the file and nothing outside the folder
    /// @param folderMode  permissions of the folder when it is made, before the umask
    PreferenceFile(std::string folder, std::string_view domain, unsigned folderMode = 0700);

    /// @param settings  receives everything; empty when there is no file yet or a damaged one
    /// @return false when the file cannot be read, or when the domain is empty
    bool read(PreferenceDictionary& settings) const;

    /// Lets `change` work on what is stored and stores the result, with everyone else kept out
    /// meanwhile. Waits for other writers without limit; `change` must not use the same file.
    /// @param change  returns false to leave all as it is; not called when the file cannot be
    ///                locked or read
    /// @return true when the result is on the disk; otherwise the old settings still are
    bool update(const std::function<bool(PreferenceDictionary& settings)>& change) const;

    const std::string& path() const { return mPath; } ///< "" for an empty domain

private:
    std::string mFolder;
    std::string mPath;
    unsigned mFolderMode;
};

} // namespace platform
