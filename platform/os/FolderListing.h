/// The contents of one folder, as the pattern library reads them.
#pragma once
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace platform {

struct FolderEntry
{
    std::size_t nameAt; ///< for FolderListing::nameOf
    std::size_t nameLength;
    bool isFolder; ///< a folder itself; a symbolic link to one is a file
};

/// Tells one state of a folder's list of entries from another. Thread: a value.
struct FolderStamp
{
    std::int64_t device = 0;
    std::int64_t inode = 0;
    std::int64_t modifiedNs = 0; ///< since 1970
    std::int64_t changedNs = 0;  ///< since 1970; also moved by a change of permissions

    bool operator==(const FolderStamp&) const = default;
};

/// The folder's present stamp. Equal stamps mean equal entries only when the first was taken by
/// readFolder, which says so. @return false when there is no such folder. Thread: any.
bool stampOf(const std::string& folder, FolderStamp& stamp);

/// Says which entries are wanted, before anything is spent on them.
using EntryFilter = bool (*)(std::string_view name, bool isFolder);

/// What readFolder found.
struct FolderListing
{
    std::vector<FolderEntry> entries; ///< in no order
    std::string names;                ///< of all entries: thousands of small blocks cost more
    FolderStamp stamp;
    bool stampIsSure = false; ///< a later equal stamp proves equal entries

    /// Valid as long as the listing stays as it is.
    std::string_view nameOf(const FolderEntry& entry) const
    {
        return std::string_view(names).substr(entry.nameAt, entry.nameLength);
    }
};

/// Lists the wanted folders and files; symbolic links count as files when they lead to one.
/// Sockets, pipes and devices are never listed: opening one could wait for ever.
/// @return false, with no entries, when the folder cannot be read. Thread: any.
bool readFolder(const std::string& folder, EntryFilter wanted, FolderListing& listing);

} // namespace platform
