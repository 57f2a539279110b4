/// Watches the part of a library folder that users change.
#pragma once
#include "platform/os/FolderWatch.h"

#include <cstdint>

/// Subclasses say which folder, and are told. Only the folder's sub-folder "User" is watched: that
/// is where users' changes land, and what an installer does elsewhere must not disturb a session.
class ChangeObserver
{
public:
    /// The one message that matters: the folder's contents changed.
    static constexpr std::uint32_t kDirectoryModified = 1;

    ChangeObserver();
    ChangeObserver(const ChangeObserver&) = delete;
    ChangeObserver& operator=(const ChangeObserver&) = delete;
    virtual ~ChangeObserver() = default;

    /// The folder's path, which stays its owner's; null for none.
    virtual const char* GetObservedFolder() const = 0;
    /// Thread: the watching one.
    virtual void OnChangeFolderContents() = 0;

    /// Begins anew. A folder that is missing is not watched, and nothing is said.
    void StartWatch();

    /// A call that has begun may still be running when this returns.
    void StopWatch() { mWatch.stop(); }

    bool isWatching() const { return mWatch.isWatching(); }

    /// Hands message 1 on to the ChangeObserver that `observer` is; ignores others and null.
    static void FNSubscriptionProc(std::uint32_t message, std::uint32_t flags, void* observer);

protected:
    /// For a subclass's destructor: no call comes any more, and none is running. Not with a lock
    /// held that OnChangeFolderContents takes.
    void endWatch() { mWatch.end(); }

private:
    platform::FolderWatch mWatch;
};
