#include "host/bridge/BridgeContext.h"

#include <gtest/gtest.h>

#include <tuple>

namespace {

HostPosition inBar(int bar, double barStart, int numerator, int denominator)
{
    HostPosition position;
    position.bar = bar;
    position.barStart = barStart;
    position.numerator = numerator;
    position.denominator = denominator;
    return position;
}

std::tuple<int, int, int> split(BridgeContext& context, std::int32_t at)
{
    int bar = -99;
    int beat = -99;
    int tick = -99;
    context.GetBar(at, &bar, &beat, &tick);
    return {bar, beat, tick};
}

using Mbt = std::tuple<int, int, int>;

} // namespace

TEST(BridgeContext, StartsIn44At120With3840TicksToTheQuarter)
{
    BridgeContext context;
    EXPECT_EQ(context.QuarterNoteLength(), 3840);
    EXPECT_EQ(context.Tempo(), 120.0);
    EXPECT_EQ(context.BarPosition(1, 2, 5), 15360 + 7680 + 5);
    EXPECT_EQ(split(context, 15359), Mbt(0, 3, 3839));
}

TEST(BridgeContext, CountsFromTheBarThatTheHostNames)
{
    BridgeContext context;
    context.update(inBar(10, 33, 7, 8)); // bars of 13440 ticks, beats of 1920
    EXPECT_EQ(context.TimeSigNumerator(), 7);
    EXPECT_EQ(context.TimeSigDenominator(), 8);
    EXPECT_EQ(context.BarPosition(10, 0, 0), 126720);
    EXPECT_EQ(context.BarPosition(11, 1, 1), 126720 + 13440 + 1921);
    EXPECT_EQ(split(context, 126720 + 13440 + 1921), Mbt(11, 1, 1));
    EXPECT_EQ(split(context, 126719), Mbt(9, 6, 1919));
}

TEST(BridgeContext, BarsBeforeTheSongAreNegative)
{
    BridgeContext context;
    EXPECT_EQ(split(context, -1), Mbt(-1, 3, 3839));
    EXPECT_EQ(context.BarPosition(-1, 3, 3839), -1);
}

TEST(BridgeContext, EachPointerMayBeNull)
{
    BridgeContext context;
    context.GetBar(100, nullptr, nullptr, nullptr);
}
