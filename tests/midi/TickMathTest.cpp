#include "midi/TickMath.h"

#include <gtest/gtest.h>

using namespace Korvanel;

TEST(TickMath, TicksBeforeTheStartBelongToTheBarThatEndsThere)
{
    EXPECT_EQ(floorDivide(1919, 1920), 0);
    EXPECT_EQ(floorDivide(1920, 1920), 1);
    EXPECT_EQ(floorDivide(-1, 1920), -1);
    EXPECT_EQ(floorDivide(-1920, 1920), -1);
    EXPECT_EQ(floorDivide(-1921, 1920), -2);
}

TEST(TickMath, AnAnswerStopsAtTheEndsOfTheScale)
{
    std::int32_t ticks = 0;
    storeTicks(&ticks, std::int64_t{INT32_MIN} - 1);
    EXPECT_EQ(ticks, INT32_MIN);
    storeTicks(&ticks, -7);
    EXPECT_EQ(ticks, -7);
    storeTicks(nullptr, 7);
}
