#include "platform/os/FolderListing.h"

#include <ctime>
#include <dirent.h>
#include <fcntl.h>
#include <memory>
#include <sys/stat.h>

namespace platform {

namespace {

constexpr std::int64_t kSecondNs = 1'000'000'000;

/// The coarsest clock among the file systems of today ticks every two seconds: within that time a
/// second change may leave a folder's times as the first one set them.
constexpr std::int64_t kSureAfterNs = 3 * kSecondNs;

std::int64_t nanoseconds(const timespec& time)
{
    return std::int64_t{time.tv_sec} * kSecondNs + time.tv_nsec;
}

FolderStamp toStamp(const struct stat& info)
{
    return {static_cast<std::int64_t>(info.st_dev), static_cast<std::int64_t>(info.st_ino),
            nanoseconds(info.st_mtim), nanoseconds(info.st_ctim)};
}

bool isOldEnough(const FolderStamp& stamp)
{
    timespec now{};
    ::clock_gettime(CLOCK_REALTIME, &now);
    return stamp.changedNs + kSureAfterNs < nanoseconds(now) &&
           stamp.modifiedNs + kSureAfterNs < nanoseconds(now);
}

bool isLink(int folder, const dirent& entry)
{
    if (entry.d_type != DT_UNKNOWN)
        return entry.d_type == DT_LNK;

    struct stat info
    {
    };

    return ::fstatat(folder, entry.d_name, &info, AT_SYMLINK_NOFOLLOW) == 0 &&
           S_ISLNK(info.st_mode);
}

enum class Kind { Folder, File, Other };

Kind kindOf(int folder, const dirent& entry, bool link)
{
    if (entry.d_type == DT_DIR)
        return Kind::Folder;
    if (entry.d_type == DT_REG)
        return Kind::File;
    if (entry.d_type != DT_UNKNOWN && !link)
        return Kind::Other;

    struct stat info
    {
    };

    if (::fstatat(folder, entry.d_name, &info, 0) != 0)
        return Kind::Other;
    if (S_ISDIR(info.st_mode))
        return link ? Kind::Other : Kind::Folder;
    return S_ISREG(info.st_mode) ? Kind::File : Kind::Other;
}

struct CloseFolder
{
    void operator()(DIR* folder) const { ::closedir(folder); }
};

} // namespace

bool stampOf(const std::string& folder, FolderStamp& stamp)
{
    struct stat info
    {
    };

    if (::stat(folder.c_str(), &info) != 0 || !S_ISDIR(info.st_mode))
        return false;
    stamp = toStamp(info);
    return true;
}

bool readFolder(const std::string& folder, EntryFilter wanted, FolderListing& listing)
{
    listing = {};
    const std::unique_ptr<DIR, CloseFolder> stream(::opendir(folder.c_str()));

    struct stat info
    {
    };

    if (!stream || ::fstat(::dirfd(stream.get()), &info) != 0)
        return false;
    listing.stamp = toStamp(info);
    listing.stampIsSure = isOldEnough(listing.stamp);

    while (const dirent* entry = ::readdir(stream.get())) {
        const std::string_view name = entry->d_name;
        if (!wanted(name, true) && !wanted(name, false))
            continue;
        const bool link = isLink(::dirfd(stream.get()), *entry);
        // What a link leads to can come and go without a trace in this folder.
        listing.stampIsSure = listing.stampIsSure && !link;
        const Kind kind = kindOf(::dirfd(stream.get()), *entry, link);
        if (kind == Kind::Other || !wanted(name, kind == Kind::Folder))
            continue;
        listing.entries.push_back({listing.names.size(), name.size(), kind == Kind::Folder});
        listing.names += name;
    }
    return true;
}

} // namespace platform
