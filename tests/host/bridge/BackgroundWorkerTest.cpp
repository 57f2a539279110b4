#include "host/bridge/BackgroundWorker.h"

#include "tests/support/Guards.h"
#include "tests/support/Waiting.h"

#include <gtest/gtest.h>

TEST(BackgroundWorker, WorksOnceForEachWake)
{
    Happenings worked;
    BackgroundWorker worker([&] { worked.add(); });
    worker.wake();
    worker.wake();
    EXPECT_TRUE(worked.waitFor(2));
}

TEST(BackgroundWorker, WakingNeitherAllocatesNorLocks)
{
    Happenings worked;
    BackgroundWorker worker([&] { worked.add(); });
    const AllocationGuard allocations;
    const LockCounter locks;
    worker.wake();
    EXPECT_EQ(allocations.count(), 0u);
    EXPECT_EQ(locks.count(), 0u);
}

TEST(BackgroundWorker, EndsWithoutEverBeingWoken)
{
    const BackgroundWorker worker([] {});
}
