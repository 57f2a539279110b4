#include "host/lv2/LiveInstances.h"

#include <gtest/gtest.h>

#include <atomic>
#include <latch>
#include <stdexcept>
#include <thread>

namespace {

constexpr auto kNothing = [] {};

class Instances : public testing::Test
{
protected:
    Instances() { all.add(&one); }

    LiveInstances all;
    int one = 0; ///< stands for an instance, which nobody looks into
    int other = 0;
};

} // namespace

TEST_F(Instances, OnlyThoseAliveAreCalled)
{
    int calls = 0;
    const auto count = [&] { ++calls; };
    EXPECT_TRUE(all.call(&one, count));
    EXPECT_FALSE(all.call(&other, count));
    all.remove(&one);
    EXPECT_FALSE(all.call(&one, count));
    EXPECT_EQ(calls, 1);
}

TEST_F(Instances, AnAddressMayComeBack)
{
    all.remove(&one);
    all.add(&one);
    EXPECT_TRUE(all.call(&one, kNothing));
}

TEST_F(Instances, GoingWaitsForACallUnderWay)
{
    std::latch entered(1);
    std::atomic<bool> ended{false};
    std::thread worker([&] {
        all.call(&one, [&] {
            entered.count_down();
            for (int i = 0; i < 200; ++i)
                std::this_thread::yield(); // time enough to go wrong in
            ended = true;
        });
    });
    entered.wait();
    all.remove(&one);
    EXPECT_TRUE(ended);
    worker.join();
}

TEST_F(Instances, GoingWaitsForNobodyElses)
{
    all.add(&other);
    all.call(&other, [&] { all.remove(&one); });
    EXPECT_FALSE(all.call(&one, kNothing));
}

TEST_F(Instances, ACallThatThrowsIsOver)
{
    EXPECT_THROW(all.call(&one, [] { throw std::runtime_error("no pattern"); }),
                 std::runtime_error);
    all.remove(&one);
    EXPECT_FALSE(all.call(&one, kNothing));
}
