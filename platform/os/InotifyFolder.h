/// The kernel's notifications for one folder, everything below it, and its name in its parent.
#pragma once
#include <string>
#include <unordered_map>

namespace platform {

/// Owns one inotify descriptor. Thread: one at a time.
class InotifyFolder
{
public:
    InotifyFolder() = default;
    InotifyFolder(const InotifyFolder&) = delete;
    InotifyFolder& operator=(const InotifyFolder&) = delete;
    ~InotifyFolder();

    /// Once. @return false when there is no such folder or the system has no watches left
    bool open(const std::string& folder);

    /// Watches what is there now, if folders came or went since: those that appeared join, those
    /// that were moved away leave. Files are not watched one by one. Sub-folders beyond the
    /// system's limit go unwatched.
    void follow();

    /// Takes what has come, without waiting. @return true when something changed
    bool drain();

    int descriptor() const { return mDescriptor; }

private:
    bool watch(const std::string& folder, unsigned round);
    void followBelow(const std::string& folder, unsigned round, int depth);
    bool isOurs(int watch, const char* name) const;

    std::string mFolder; ///< without a trailing slash
    std::string mName;   ///< its last component
    int mDescriptor = -1;
    int mParent = -1;                           ///< the watch on the parent
    std::unordered_map<int, unsigned> mWatches; ///< in the folder, and the round that saw each last
    unsigned mRound = 0;
    bool mFoldersChanged = true; ///< or may have
};

} // namespace platform
