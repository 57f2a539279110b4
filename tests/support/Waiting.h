/// Counts what another thread does, and waits for it.
#pragma once
#include <chrono>
#include <condition_variable>
#include <mutex>

/// How often something happened. A wait ends as soon as its condition holds; the limit only keeps a
/// broken program from hanging.
class Happenings
{
public:
    void add()
    {
        {
            const std::lock_guard hold(mLock);
            ++mCount;
        }
        mAdded.notify_all();
    }

    int count() const
    {
        const std::lock_guard hold(mLock);
        return mCount;
    }

    bool waitFor(int count) const
    {
        return waitUntil([&] { return mCount >= count; });
    }

    /// Waits until `condition` holds, which is looked at after each happening.
    template <typename Condition>
    bool waitUntil(Condition condition) const
    {
        std::unique_lock hold(mLock);
        return mAdded.wait_for(hold, std::chrono::seconds(30), condition);
    }

private:
    mutable std::mutex mLock;
    mutable std::condition_variable mAdded;
    int mCount = 0;
};
