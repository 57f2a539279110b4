#include "shared/Panes/carbon/TimerActionList.h"

#include <gtest/gtest.h>

#include <atomic>
#include <functional>
#include <string>
#include <thread>

using Korvanel::Base;
using Korvanel::Delegate;
using Korvanel::MemberDelegateT;
using Korvanel::Ref;
using korvanel::macosx::carbon::TimerActionList;

namespace {

class CallingDelegate : public Delegate
{
public:
    explicit CallingDelegate(std::function<void()> call)
        : mCall(std::move(call))
    {
    }

    void invoke() override { mCall(); }

private:
    std::function<void()> mCall;
};

Ref<Delegate> calling(std::function<void()> call)
{
    return Ref<Delegate>::adopt(new CallingDelegate(std::move(call)));
}

/// Notes letters as tasks run.
class TimerActionListTest : public testing::Test
{
protected:
    Ref<Delegate> noting(char letter)
    {
        return calling([this, letter] { heard += letter; });
    }

    /// What ran in so many ticks of 10 ms, each tick ended by a dot.
    std::string ticks(int count)
    {
        heard.clear();
        for (int i = 0; i < count; ++i) {
            list.elapsed(10);
            heard += '.';
        }
        return heard;
    }

    std::string heard;
    TimerActionList list;
};

struct Ticker
{
    void tick() { ++ticks; }

    int ticks = 0;
};

} // namespace

TEST_F(TimerActionListTest, APeriodOf40RunsOnEveryFourthTick)
{
    list.add(noting('A').get(), 40);
    EXPECT_EQ(ticks(9), "...A....A..");
}

TEST_F(TimerActionListTest, APeriodOf0RunsOnceAtTheNextTick)
{
    list.add(noting('A').get(), 0);
    EXPECT_EQ(ticks(3), "A...");
}

TEST_F(TimerActionListTest, APeriodThatIsNegativeAsSignedRunsOnce)
{
    list.add(noting('A').get(), 0x80000000u);
    EXPECT_EQ(ticks(3), "A...");
}

TEST_F(TimerActionListTest, APeriodThatNoTickMeetsRunsAtTheTickAfter)
{
    list.add(noting('A').get(), 15);
    EXPECT_EQ(ticks(4), ".A..A."); // what was too long is not carried over
}

TEST_F(TimerActionListTest, ALongReportRunsATaskOnce)
{
    list.add(noting('A').get(), 10);
    list.elapsed(1000);
    EXPECT_EQ(heard, "A");
    list.elapsed(0xFFFFFFFFu);
    EXPECT_EQ(heard, "AA");
}

TEST_F(TimerActionListTest, NoTimeGoneByRunsOnlyWhatIsDueAtOnce)
{
    list.add(noting('A').get(), 1);
    list.add(noting('B').get(), 0);
    list.elapsed(0);
    EXPECT_EQ(heard, "B");
}

TEST_F(TimerActionListTest, TasksRunInTheOrderOfComing)
{
    list.add(noting('A').get(), 20);
    list.add(noting('B').get(), 0);
    list.add(noting('C').get(), 10);
    EXPECT_EQ(ticks(2), "BC.AC.");
}

TEST_F(TimerActionListTest, NothingIsAddedOrRemovedForNull)
{
    list.add(nullptr, 10);
    list.remove(nullptr);
    EXPECT_EQ(ticks(1), ".");
}

TEST_F(TimerActionListTest, RemovesOneActionACall)
{
    const auto task = noting('A');
    list.add(task.get(), 10);
    list.add(task.get(), 10);
    list.remove(task.get());
    EXPECT_EQ(ticks(1), "A.");
    list.remove(task.get());
    EXPECT_EQ(ticks(1), ".");
    list.remove(task.get());
}

TEST_F(TimerActionListTest, RemovesWhatIsEqualToTheDelegate)
{
    Ticker ticker;
    const auto made = [&ticker] {
        return Ref<Delegate>::adopt(new MemberDelegateT<Ticker>(&ticker, &Ticker::tick));
    };
    list.add(made().get(), 10);
    list.remove(made().get());
    list.elapsed(10);
    EXPECT_EQ(ticker.ticks, 0);
}

TEST_F(TimerActionListTest, RemovesTheFirstThatIsEqualNotTheSameOne)
{
    Ticker ticker;
    const auto made = [&ticker] {
        return Ref<Delegate>::adopt(new MemberDelegateT<Ticker>(&ticker, &Ticker::tick));
    };
    const auto slow = made();
    const auto fast = made();
    list.add(slow.get(), 1000);
    list.add(fast.get(), 10);
    list.remove(fast.get());
    list.elapsed(10);
    EXPECT_EQ(ticker.ticks, 1);
}

TEST_F(TimerActionListTest, HoldsAReferenceUntilTheTaskIsDone)
{
    const std::int32_t before = Base::numAllocations;
    list.add(noting('A').get(), 0);
    EXPECT_EQ(Base::numAllocations, before + 1);
    list.elapsed(10);
    EXPECT_EQ(Base::numAllocations, before);
}

TEST_F(TimerActionListTest, ATaskThatStopsItselfDoesNotRunAgain)
{
    Ref<Delegate> task;
    task = calling([&] {
        heard += 'A';
        list.remove(task.get());
    });
    list.add(task.get(), 10);
    EXPECT_EQ(ticks(3), "A...");
}

TEST_F(TimerActionListTest, ATaskAddedByATaskWaitsForTheNextTick)
{
    const auto later = noting('B');
    list.add(calling([&] {
                 heard += 'A';
                 list.add(later.get(), 0);
             }).get(),
             0);
    EXPECT_EQ(ticks(3), "A.B..");
}

TEST_F(TimerActionListTest, WhatWasCollectedRunsThoughATaskRemovesIt)
{
    const auto second = noting('B');
    list.add(calling([&] {
                 heard += 'A';
                 list.remove(second.get());
             }).get(),
             10);
    list.add(second.get(), 10);
    EXPECT_EQ(ticks(2), "AB.A.");
}

TEST_F(TimerActionListTest, ADelegateMayComeBackToTheListAsItEnds)
{
    struct Returning : Delegate
    {
        explicit Returning(TimerActionList& timers)
            : list(timers)
        {
        }

        ~Returning() override { list.elapsed(0); }

        void invoke() override {}

        TimerActionList& list;
    };

    auto* task = new Returning(list);
    list.add(task, 10);
    task->releaseRef();
    list.remove(task);
    EXPECT_EQ(ticks(1), ".");
}

TEST_F(TimerActionListTest, AddingFromAnotherThreadIsSafe)
{
    std::atomic<int> runs{0};
    const auto task = calling([&runs] { ++runs; });
    std::thread other([this, &task] {
        for (int i = 0; i < 1000; ++i)
            list.add(task.get(), 0);
    });
    for (int i = 0; i < 1000; ++i)
        list.elapsed(10);
    other.join();
    list.elapsed(10);
    EXPECT_EQ(runs, 1000);
}
