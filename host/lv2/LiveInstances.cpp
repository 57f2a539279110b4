#include "host/lv2/LiveInstances.h"

void LiveInstances::add(const void* instance)
{
    const std::lock_guard hold(mLock);
    mAlive.insert(instance);
}

void LiveInstances::remove(const void* instance)
{
    std::unique_lock hold(mLock);
    mAlive.erase(instance);
    mLeft.wait(hold, [&] { return !mCalled.contains(instance); });
}

bool LiveInstances::enter(const void* instance)
{
    const std::lock_guard hold(mLock);
    if (!mAlive.contains(instance))
        return false;
    mCalled.insert(instance);
    return true;
}

void LiveInstances::leave(const void* instance)
{
    {
        const std::lock_guard hold(mLock);
        mCalled.extract(instance);
    }
    mLeft.notify_all();
}
