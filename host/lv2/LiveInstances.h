/// The instances that a host may still call. Some hosts hand work to a thread of theirs and free
/// the instance before that thread has come to it.
#pragma once
#include <condition_variable>
#include <mutex>
#include <set>

/// Thread: any but the audio thread, which would have to wait.
class LiveInstances
{
public:
    void add(const void* instance);

    /// From now on nobody calls it; waits for calls under way, so it must not come from one.
    void remove(const void* instance);

    /// Calls while the instance is kept from going. Exceptions pass through.
    /// @return false when it is not alive; nothing was called then
    template <typename Call>
    bool call(const void* instance, Call call)
    {
        if (!enter(instance))
            return false;
        const Visit visit{*this, instance};
        call();
        return true;
    }

private:
    struct Visit
    {
        LiveInstances& all;
        const void* instance;

        ~Visit() { all.leave(instance); }
    };

    bool enter(const void* instance);
    void leave(const void* instance);

    std::mutex mLock; ///< of both sets
    std::condition_variable mLeft;
    std::set<const void*> mAlive;
    std::multiset<const void*> mCalled;
};
