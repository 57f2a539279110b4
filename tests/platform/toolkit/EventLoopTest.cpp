#include "platform/toolkit/EventLoop.h"

#include "platform/toolkit/Timer.h"

#include <gtest/gtest.h>

#include <atomic>
#include <memory>
#include <thread>
#include <vector>

using namespace toolkit;

namespace {

class EventLoopTest : public testing::Test
{
protected:
    void SetUp() override { ASSERT_EQ(EventLoop::start(), noErr); }

    void TearDown() override
    {
        while (EventLoop::isRunning())
            EventLoop::stop();
    }

    static bool until(const std::function<bool()>& condition)
    {
        return EventLoop::runUntil(condition, 60000);
    }
};

} // namespace

TEST_F(EventLoopTest, RunsFromTheFirstStartToTheLastStop)
{
    EXPECT_EQ(EventLoop::start(), noErr);
    EventLoop::stop();
    EXPECT_TRUE(EventLoop::isRunning());
    EventLoop::stop();
    EXPECT_FALSE(EventLoop::isRunning());
}

TEST_F(EventLoopTest, CanBeStartedAgain)
{
    EventLoop::stop();
    EXPECT_EQ(EventLoop::start(), noErr);
    bool ran = false;
    EventLoop::post([&ran] { ran = true; });
    EXPECT_TRUE(until([&ran] { return ran; }));
}

TEST_F(EventLoopTest, BelongsToOneThread)
{
    Status status = noErr;
    bool isThis = true;
    std::thread([&] {
        status = EventLoop::start();
        isThis = EventLoop::isThisThread();
    }).join();

    EXPECT_EQ(status, paramErr);
    EXPECT_FALSE(isThis);
    EXPECT_TRUE(EventLoop::isThisThread());
}

TEST_F(EventLoopTest, PostedFunctionsRunInOrderOnTheLoopsThread)
{
    std::vector<int> order;
    bool onThread = false;
    std::thread([&] {
        EventLoop::post([&] {
            order.push_back(1);
            onThread = EventLoop::isThisThread();
        });
        EventLoop::post([&] { order.push_back(2); });
    }).join();
    EXPECT_TRUE(order.empty());

    ASSERT_TRUE(until([&] { return order.size() == 2; }));
    EXPECT_EQ(order, (std::vector<int>{1, 2}));
    EXPECT_TRUE(onThread);
}

TEST_F(EventLoopTest, EveryPostOfManyThreadsArrives)
{
    constexpr int each = 500;
    std::atomic<int> arrived{0};
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i)
        threads.emplace_back([&arrived] {
            for (int n = 0; n < each; ++n)
                EventLoop::post([&arrived] { ++arrived; });
        });
    EXPECT_TRUE(until([&arrived] { return arrived == 4 * each; }));
    for (auto& thread : threads)
        thread.join();
}

TEST_F(EventLoopTest, WhatHasNotRunAtTheStopIsDroppedAndReleased)
{
    const auto held = std::make_shared<int>(1);
    bool ran = false;
    EventLoop::post([held, &ran] { ran = true; });
    EXPECT_EQ(held.use_count(), 2);

    EventLoop::stop();

    EXPECT_FALSE(ran);
    EXPECT_EQ(held.use_count(), 1);
    EXPECT_FALSE(EventLoop::post([] {}));
}

TEST_F(EventLoopTest, PostingWhileItStopsIsSafe)
{
    std::atomic<bool> stopped{false};
    std::thread poster([&stopped] {
        while (!stopped)
            EventLoop::post([] {});
    });
    EventLoop::runUntil([] { return false; }, 30);
    EventLoop::stop();
    stopped = true;
    poster.join();
}

TEST_F(EventLoopTest, RunUntilGivesUpAfterItsTime)
{
    EXPECT_FALSE(EventLoop::runUntil([] { return false; }, 10));
    EXPECT_TRUE(EventLoop::runUntil([] { return true; }, 0));
}

TEST_F(EventLoopTest, RunUntilSeesWhatAnotherThreadDid)
{
    std::atomic<bool> done{false};
    std::thread other([&done] { done = true; });
    EXPECT_TRUE(until([&done] { return done.load(); }));
    other.join();
}

TEST_F(EventLoopTest, QuitEndsTheInnermostRun)
{
    std::vector<int> order;
    EventLoop::post([&order] {
        EventLoop::post([] { EventLoop::quit(); });
        EventLoop::run();
        order.push_back(1);
        EventLoop::post([] { EventLoop::quit(); });
    });
    EventLoop::run();
    order.push_back(2);
    EXPECT_EQ(order, (std::vector<int>{1, 2}));
}

TEST_F(EventLoopTest, ATurnHandsRoundWhatWaits)
{
    bool ran = false;
    EventLoop::post([&ran] { ran = true; });
    EventLoop::turn();
    EXPECT_TRUE(ran);
}

TEST_F(EventLoopTest, ATimerCallsAgainAndAgain)
{
    int calls = 0;
    Timer timer;
    timer.start(5, [&calls] { ++calls; });
    EXPECT_TRUE(until([&calls] { return calls == 3; }));
    EXPECT_TRUE(timer.isRunning());
}

TEST_F(EventLoopTest, ATimerMayCancelItself)
{
    int calls = 0;
    int others = 0;
    Timer timer;
    Timer other;
    timer.start(1, [&] {
        ++calls;
        timer.cancel();
    });
    other.start(1, [&others] { ++others; });

    EXPECT_TRUE(until([&others] { return others >= 10; }));

    EXPECT_EQ(calls, 1);
    EXPECT_FALSE(timer.isRunning());
}

TEST_F(EventLoopTest, ATimerMayDeleteItself)
{
    int calls = 0;
    auto timer = std::make_unique<Timer>();
    timer->start(1, [&] {
        ++calls;
        timer.reset();
    });
    EXPECT_TRUE(until([&timer] { return timer == nullptr; }));
    EXPECT_EQ(calls, 1);
}

TEST_F(EventLoopTest, ATimerThatIsLateDoesNotCatchUp)
{
    int calls = 0;
    Timer timer;
    timer.start(1, [&calls] { ++calls; });
    std::this_thread::sleep_for(std::chrono::milliseconds(50)); // the thread is busy elsewhere
    EventLoop::turn();
    EXPECT_LE(calls, 2);
}

TEST_F(EventLoopTest, WithoutALoopATimerStaysSilent)
{
    EventLoop::stop();
    Timer timer;
    timer.start(1, [] {});
    EXPECT_FALSE(timer.isRunning());
    EXPECT_FALSE(EventLoop::runUntil([] { return true; }, 0));
}
