#include "effect/Looper.h"
#include "midi/TickMath.h"

#include <gtest/gtest.h>

#include <random>

using namespace Korvanel;

TEST(TickRate, DividesAsWholeNumbersDo)
{
    std::mt19937 random(11);
    for (int i = 0; i < 200'000; ++i) {
        const auto track = static_cast<std::int32_t>(1 + random() % 65535);
        const auto host = static_cast<std::int32_t>(1 + random() % 65535);
        auto t = static_cast<std::int32_t>(random());
        if (i % 2 == 0) // just below and at whole quotients, where rounding would show
            t = static_cast<std::int32_t>(std::int64_t{t % 30000} * track / host +
                                          static_cast<std::int32_t>(random() % 3) - 1);
        const std::int64_t exact = std::int64_t{t} * host / track;
        ASSERT_EQ(TickRate(track, host, 1).hostTicks(t), toTicks(exact))
            << t << " x " << host << " / " << track;
    }
}

TEST(TickRate, StopsAtTheEndOfTheScale)
{
    EXPECT_EQ(TickRate(1, 60000, 0).hostTicks(INT32_MAX), INT32_MAX);
    EXPECT_EQ(TickRate(1, 60000, 0).hostTicks(INT32_MIN), INT32_MIN);
    EXPECT_EQ(TickRate(1, 100000, 1).hostTicks(INT32_MAX), INT32_MAX);
    EXPECT_EQ(TickRate(0, 480, 1).hostTicks(7), 7);
}
