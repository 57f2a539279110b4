#include "platform/os/InotifyFolder.h"

#include "platform/os/FolderListing.h"

#include <cstddef>
#include <cstring>
#include <sys/inotify.h>
#include <unistd.h>
#include <utility>

namespace platform {

namespace {

constexpr std::uint32_t kContents = IN_CREATE | IN_DELETE | IN_MOVED_FROM | IN_MOVED_TO |
                                    IN_CLOSE_WRITE | IN_ATTRIB | IN_DELETE_SELF | IN_MOVE_SELF |
                                    IN_ONLYDIR;
constexpr std::uint32_t kParent = IN_CREATE | IN_DELETE | IN_MOVED_FROM | IN_MOVED_TO |
                                  IN_DELETE_SELF | IN_MOVE_SELF | IN_ONLYDIR;

/// A folder came or went, or so much happened that it may have.
constexpr std::uint32_t kFolders = IN_ISDIR | IN_DELETE_SELF | IN_MOVE_SELF | IN_Q_OVERFLOW;

/// Deeper than any library of patterns; what lies below is not watched.
constexpr int kDeepest = 32;

bool isVisibleFolder(std::string_view name, bool isFolder)
{
    return isFolder && !name.starts_with('.');
}

} // namespace

InotifyFolder::~InotifyFolder()
{
    if (mDescriptor >= 0)
        ::close(mDescriptor);
}

bool InotifyFolder::open(const std::string& folder)
{
    mFolder = folder;
    while (mFolder.size() > 1 && mFolder.back() == '/')
        mFolder.pop_back();
    mDescriptor = ::inotify_init1(IN_CLOEXEC | IN_NONBLOCK);
    if (mDescriptor < 0 || !watch(mFolder, mRound))
        return false;
    const std::size_t slash = mFolder.rfind('/');
    mName = mFolder.substr(slash + 1);
    const std::string parent = slash == std::string::npos ? "." : mFolder.substr(0, slash + 1);
    mParent = ::inotify_add_watch(mDescriptor, parent.c_str(), kParent);
    follow();
    return true;
}

bool InotifyFolder::watch(const std::string& folder, unsigned round)
{
    const int watch = ::inotify_add_watch(mDescriptor, folder.c_str(), kContents);
    if (watch < 0)
        return false;
    mWatches[watch] = round;
    return true;
}

void InotifyFolder::follow()
{
    if (!std::exchange(mFoldersChanged, false))
        return;
    ++mRound;
    if (watch(mFolder, mRound))
        followBelow(mFolder, mRound, 0);
    for (auto at = mWatches.begin(); at != mWatches.end();) {
        const bool gone = at->second != mRound;
        if (gone)
            ::inotify_rm_watch(mDescriptor, at->first);
        at = gone ? mWatches.erase(at) : std::next(at);
    }
}

void InotifyFolder::followBelow(const std::string& folder, unsigned round, int depth)
{
    FolderListing listing;
    if (depth == kDeepest || !readFolder(folder, isVisibleFolder, listing))
        return;
    for (const FolderEntry& entry : listing.entries) {
        const std::string below = (folder + "/").append(listing.nameOf(entry));
        if (watch(below, round))
            followBelow(below, round, depth + 1);
    }
}

bool InotifyFolder::isOurs(int watch, const char* name) const
{
    if (watch == mParent)
        return *name == 0 || mName == name; // without a name it is the parent itself that went
    return watch == -1 || mWatches.contains(watch); // -1: so much happened that some is lost
}

bool InotifyFolder::drain()
{
    bool changed = false;
    alignas(inotify_event) char buffer[4096];
    for (;;) {
        const ssize_t count = ::read(mDescriptor, buffer, sizeof buffer);
        if (count <= 0)
            return changed;
        for (ssize_t at = 0; at < count;) {
            inotify_event event;
            std::memcpy(&event, buffer + at, sizeof event);
            const char* name = event.len > 0 ? buffer + at + sizeof event : "";
            if ((event.mask & IN_IGNORED) == 0 && isOurs(event.wd, name)) {
                changed = true;
                mFoldersChanged = mFoldersChanged || (event.mask & kFolders) != 0;
            }
            at += static_cast<ssize_t>(sizeof event + event.len);
        }
    }
}

} // namespace platform
