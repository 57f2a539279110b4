#include "shared/System/kvCriticalSection.h"

#include <gtest/gtest.h>

#include <stdexcept>
#include <thread>

using Korvanel::CriticalSection;
using Korvanel::ScopedLock;

namespace {

struct Counter
{
    CriticalSection lock;
    int value KV_GUARDED_BY(lock) = 0;

    void add(int times) KV_EXCLUDES(lock)
    {
        for (int i = 0; i < times; ++i) {
            const ScopedLock hold(lock);
            ++value;
        }
    }
};

} // namespace

TEST(CriticalSection, LetsOneThreadInAtATime)
{
    Counter counter;
    std::thread other([&counter] { counter.add(20'000); });
    counter.add(20'000);
    other.join();
    const ScopedLock hold(counter.lock);
    EXPECT_EQ(counter.value, 40'000);
}

TEST(CriticalSection, ItsHolderMayEnterAgain)
{
    CriticalSection lock;
    lock.Enter();
    lock.Enter(); // would hang here
    lock.Leave();
    lock.Leave();
    std::thread([&lock] {
        lock.Enter(); // and here, were it still held
        lock.Leave();
    }).join();
    SUCCEED();
}

TEST(ScopedLock, LeavesWhenAnExceptionPasses)
{
    CriticalSection lock;
    EXPECT_THROW(
        {
            const ScopedLock hold(lock);
            throw std::runtime_error("on the way");
        },
        std::runtime_error);
    std::thread([&lock] { const ScopedLock hold(lock); }).join();
}
