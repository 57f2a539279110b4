#include "platform/os/FolderWatch.h"

#include "tests/support/DescriptorLimit.h"
#include "tests/support/Folders.h"
#include "tests/support/ProcessTally.h"
#include "tests/support/Waiting.h"

#include <gtest/gtest.h>

#include <atomic>
#include <filesystem>
#include <pthread.h>
#include <thread>

namespace fs = std::filesystem;
using platform::FolderWatch;

namespace {

class FolderWatchTest : public testing::Test
{
protected:
    /// Brings a file into a folder by one change; writing it there would be two.
    void moveIn(const std::string& name)
    {
        putContent(elsewhere / "file", "");
        fs::rename(elsewhere / "file", folder / name);
    }

    TemporaryFolder elsewhere;
    TemporaryFolder folder;
    Happenings changes;
    FolderWatch watch{[this] { changes.add(); }};
};

/// While it lives new threads ask for a stack that no address space holds.
class NoThreads
{
public:
    NoThreads()
    {
        EXPECT_EQ(::pthread_getattr_default_np(&mBefore), 0);
        pthread_attr_t huge = mBefore;
        EXPECT_EQ(::pthread_attr_setstacksize(&huge, std::size_t{1} << 56), 0);
        EXPECT_EQ(::pthread_setattr_default_np(&huge), 0);
    }

    NoThreads(const NoThreads&) = delete;
    NoThreads& operator=(const NoThreads&) = delete;

    ~NoThreads() { EXPECT_EQ(::pthread_setattr_default_np(&mBefore), 0); }

private:
    pthread_attr_t mBefore{};
};

} // namespace

TEST_F(FolderWatchTest, TellsOfNewChangedRenamedAndDeletedFiles)
{
    ASSERT_TRUE(watch.start(folder.path()));

    putContent(folder / "a", "x");
    ASSERT_TRUE(changes.waitFor(1));
    int before = changes.count();
    fs::rename(folder / "a", folder / "b");
    ASSERT_TRUE(changes.waitFor(before + 1));
    before = changes.count();
    putContent(folder / "b", "y");
    ASSERT_TRUE(changes.waitFor(before + 1));
    before = changes.count();
    fs::remove(folder / "b");
    EXPECT_TRUE(changes.waitFor(before + 1));
}

TEST_F(FolderWatchTest, AMissingFolderIsNotWatched)
{
    EXPECT_FALSE(watch.start(folder / "nowhere"));
    EXPECT_FALSE(watch.isWatching());

    putContent(folder / "file", "");
    EXPECT_FALSE(watch.start(folder / "file"));
}

TEST_F(FolderWatchTest, AfterTheEndNothingIsCalled)
{
    ASSERT_TRUE(watch.start(folder.path()));
    watch.end();
    const int before = changes.count();

    FolderWatch other([this] { changes.add(); });
    ASSERT_TRUE(other.start(folder.path()));
    moveIn("a");
    ASSERT_TRUE(changes.waitFor(before + 1));
    fs::remove(folder / "a");
    ASSERT_TRUE(changes.waitFor(before + 2));

    EXPECT_EQ(changes.count(), before + 2);
}

TEST_F(FolderWatchTest, ItMayBeStoppedAndStartedInsideItsCall)
{
    Happenings calls;
    FolderWatch* inside = nullptr;
    FolderWatch restarting([&] {
        inside->stop();
        inside->start(folder.path());
        calls.add();
    });
    inside = &restarting;
    ASSERT_TRUE(restarting.start(folder.path()));

    putContent(folder / "a", "");
    ASSERT_TRUE(calls.waitFor(1));
    putContent(folder / "b", "");

    EXPECT_TRUE(calls.waitFor(2));
}

TEST_F(FolderWatchTest, WithoutDescriptorsNothingIsWatchedUntilThereAreSome)
{
    for (const rlim_t left : {0, 1}) {
        const DescriptorLimit limit(left);
        EXPECT_FALSE(watch.start(folder.path())) << left << " left";
        EXPECT_FALSE(watch.isWatching());
    }

    ASSERT_TRUE(watch.start(folder.path()));
    moveIn("a");
    EXPECT_TRUE(changes.waitFor(1));
}

TEST_F(FolderWatchTest, WithoutAThreadNothingIsWatchedUntilThereIsOne)
{
    const ProcessTally before = ProcessTally::now();
    {
        const NoThreads limit;
        EXPECT_FALSE(watch.start(folder.path()));
        EXPECT_EQ(ProcessTally::now(), before);
    }

    ASSERT_TRUE(watch.start(folder.path()));
    moveIn("a");
    EXPECT_TRUE(changes.waitFor(1));
}

TEST(FolderWatchThread, LivesNoLongerThanTheWatches)
{
    const TemporaryFolder folder;
    {
        FolderWatch first([] {}); // a sanitizer starts a thread of its own with the first
        ASSERT_TRUE(first.start(folder.path()));
    }
    const ProcessTally before = ProcessTally::now();
    {
        FolderWatch one([] {});
        FolderWatch two([] {});
        ASSERT_TRUE(one.start(folder.path()));
        ASSERT_TRUE(two.start(folder.path()));
        EXPECT_EQ(ProcessTally::now().threads, before.threads + 1);
    }
    EXPECT_EQ(ProcessTally::settled(before), before);
}

TEST(FolderWatchThread, EndingWaitsForTheCallThatIsRunning)
{
    const TemporaryFolder folder;
    Happenings begun;
    std::atomic<bool> mayEnd = false;
    std::atomic<bool> ended = false;
    std::thread ending;
    {
        FolderWatch watch([&] {
            begun.add();
            while (!mayEnd)
                std::this_thread::yield();
            ended = true;
        });
        ASSERT_TRUE(watch.start(folder.path()));
        putContent(folder / "a", "");
        ASSERT_TRUE(begun.waitFor(1));
        ending = std::thread([&] { mayEnd = true; });
        watch.end();
        EXPECT_TRUE(ended);
    }
    ending.join();
}
