/// Tells when a folder's contents change, its sub-folders included.
#pragma once
#include <cstdint>
#include <functional>
#include <memory>
#include <string>

namespace platform {

/// Changes of one folder. All watches of the process share one thread, which begins with the first
/// that starts and ends with the last that goes. A burst of changes makes few calls: the first
/// comes at once, the next ones at growing distances, and one always follows the last change.
class FolderWatch
{
public:
    /// @param changed  called on the watching thread, with no lock held
    explicit FolderWatch(std::function<void()> changed);
    FolderWatch(const FolderWatch&) = delete;
    FolderWatch& operator=(const FolderWatch&) = delete;
    ~FolderWatch(); ///< as end()

    /// Watches the folder in place of the one watched before. The folder may vanish and come back
    /// while it is watched; its parent is looked at for that. Thread: one at a time, or inside a
    /// call. @return false, watching nothing, when there is no such folder or the system has no
    /// watches, descriptors or threads left; it may be tried again
    bool start(const std::string& folder);

    /// No call begins after this; one that has begun may still be running. Thread: as start.
    void stop();

    /// Stops, and waits until no call is running. Not from inside a call, and not with a lock held
    /// that a call takes.
    void end();

    bool isWatching() const { return mSubscription != nullptr; }

private:
    class Service;
    struct Subscription;

    std::function<void()> mChanged;
    std::shared_ptr<Service> mService; ///< null until a start has found it
    std::shared_ptr<Subscription> mSubscription;
};

} // namespace platform
