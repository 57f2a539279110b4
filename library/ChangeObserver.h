/// Watches the part of a library folder that users change.
#pragma once
#include "platform/os/FolderWatch.h"

#include <cstdint>
#include <functional>
#include <memory>

/// Subclasses say which folder, and are told. Only the folder's sub-folder "User" is watched: that
/// is where users' changes land, and what an installer does elsewhere must not disturb a session.
class ChangeObserver
{
public:
    /// The one message that matters: the folder's contents changed.
    static constexpr std::uint32_t kDirectoryModified = 1;

    /// Runs a call on another thread, soon. @return false when it cannot: the call is dropped
    using Delivery = bool (*)(std::function<void()> call);

    /// From now on changes are told through `delivery` where it can, as in a process whose windows
    /// show the library: what they show must not change under them. Otherwise, and with null as at
    /// first, they are told on the watching thread. Thread: any, before there is an observer.
    static void setDelivery(Delivery delivery);

    ChangeObserver();
    ChangeObserver(const ChangeObserver&) = delete;
    ChangeObserver& operator=(const ChangeObserver&) = delete;
    virtual ~ChangeObserver() = default;

    /// The folder's path, which stays its owner's; null for none.
    virtual const char* GetObservedFolder() const = 0;
    /// Thread: the delivery's or the watching one.
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
    /// held that OnChangeFolderContents takes; with a delivery, on its thread.
    void endWatch();

private:
    void deliver();

    std::shared_ptr<ChangeObserver*> mSelf; ///< what calls under way hold, weakly
    platform::FolderWatch mWatch;
};
