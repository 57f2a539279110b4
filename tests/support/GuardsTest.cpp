#include "tests/support/Guards.h"

#include <gtest/gtest.h>

#include <fcntl.h>
#include <memory>
#include <pthread.h>
#include <unistd.h>

TEST(AllocationGuard, CountsANew)
{
    AllocationGuard guard;
    const auto made = std::make_unique<int>(1);
    EXPECT_EQ(guard.count(), 1u);
}

TEST(AllocationGuard, CountsTheCHeap)
{
    AllocationGuard guard;
    void* volatile block = std::malloc(8);
    std::free(block);
    EXPECT_EQ(guard.count(), 1u);
}

TEST(AllocationGuard, KnowsTheLargestOfAllThatItSaw)
{
    AllocationGuard guard;
    {
        AllocationGuard inner;
        const auto large = std::make_unique<char[]>(5000);
        EXPECT_EQ(inner.largest(), 5000u);
    }
    const auto small = std::make_unique<char[]>(10);
    EXPECT_EQ(guard.largest(), 5000u);

    AllocationGuard later;
    EXPECT_EQ(later.largest(), 0u);
}

TEST(LockCounter, CountsALock)
{
    pthread_mutex_t mutex = PTHREAD_MUTEX_INITIALIZER;
    LockCounter counter;
    pthread_mutex_lock(&mutex);
    pthread_mutex_unlock(&mutex);
    EXPECT_EQ(counter.count(), LockCounter::counts ? 1u : 0u);
}

TEST(FileCounter, CountsAFileThatIsOpenedAndRead)
{
    FileCounter counter;
    const int descriptor = ::open("/proc/self/stat", O_RDONLY);
    char byte = 0;
    const auto came = ::read(descriptor, &byte, 1);
    ::close(descriptor);
    EXPECT_EQ(came, 1);
    EXPECT_EQ(counter.count(), LockCounter::counts ? 2u : 0u);
}
