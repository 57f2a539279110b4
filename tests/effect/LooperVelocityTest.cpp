// What the parameters make of a note's velocity.
#include "effect/RandomSource.h"
#include "tests/effect/LooperPlayer.h"

#include <gtest/gtest.h>

#include <array>

using namespace Korvanel;

namespace {

int velocityOf(LooperParameters& params, int velocity, int wheelShift = 0, int veloAdd = 0)
{
    Player player(bar(), 480, &params);
    player.looper.processPitchWheel(0, wheelShift * 128);
    player.looper.setVeloAdd(veloAdd);
    MfxEvent event = noteAt(0, 10, 60, velocity);
    player.looper.applyParamsToNote(event);
    return event.velocity;
}

} // namespace

TEST(Looper, VelocityIsShiftedAndKeptAudible)
{
    LooperParameters params;
    params.flags = 0;
    EXPECT_EQ(velocityOf(params, 40), 30);
    params.veloPlus = -50;
    EXPECT_EQ(velocityOf(params, 40), 1);
    params.veloPlus = 100;
    EXPECT_EQ(velocityOf(params, 40), 127);
    params.veloPlus = 0;
    EXPECT_EQ(velocityOf(params, 0), 0); // unchanged is left as it is
}

TEST(Looper, WheelAndControllerCountWhenAsked)
{
    LooperParameters params;
    params.veloPlus = 0;
    params.flags = LooperParameters::PitchWheel;
    EXPECT_EQ(velocityOf(params, 40, 5, 20), 45);
    params.flags = LooperParameters::VelocityController;
    EXPECT_EQ(velocityOf(params, 40, 5, 20), 60);
    params.flags = 3;
    EXPECT_EQ(velocityOf(params, 40, 5, -20), 25);
}

TEST(Looper, TheWheelIsCutTowardsZero)
{
    LooperParameters params;
    params.veloPlus = 0;
    params.flags = LooperParameters::PitchWheel;
    Player player(bar(), 480, &params);
    EXPECT_TRUE(player.looper.processPitchWheel(0, -8192));
    MfxEvent low = noteAt(0, 1, 60, 100);
    player.looper.applyParamsToNote(low);
    EXPECT_EQ(low.velocity, 36);
    player.looper.processPitchWheel(0, -127);
    MfxEvent still = noteAt(0, 1, 60, 100);
    player.looper.applyParamsToNote(still);
    EXPECT_EQ(still.velocity, 100);
}

TEST(Looper, RandomVelocityStaysInItsRangeAndReachesBothEnds)
{
    LooperParameters params;
    params.veloPlus = 0;
    Player player(bar(), 480, &params);
    player.looper.seedRandom(3);
    int low = 127;
    int high = 0;
    double sum = 0;
    for (int i = 0; i < 20'000; ++i) {
        MfxEvent event = noteAt(0, 1, 60, 64);
        player.looper.applyParamsToNote(event);
        low = std::min<int>(low, event.velocity);
        high = std::max<int>(high, event.velocity);
        sum += event.velocity;
    }
    EXPECT_EQ(low, 64 - 14); // -15 itself needs the one draw of 0
    EXPECT_EQ(high, 64 + 9);
    EXPECT_NEAR(sum / 20'000, 64 - 1.25,
                0.3); // each half averages half of its end, less the cut of a half
}

TEST(Looper, StrengthScalesTheRandomStep)
{
    // The same draws twice; the rule applied by hand to the second.
    RandomSource draws;
    draws.seed(5);
    LooperParameters params;
    params.veloPlus = 0;
    params.randomVeloStrength = 40;
    Player player(bar(), 480, &params);
    player.looper.seedRandom(5);
    for (int i = 0; i < 1000; ++i) {
        const std::int64_t r = draws.next();
        const std::int64_t half = 1LL << 30;
        std::int64_t x = r > half ? (r - half) * 10 : (half - r) * -15;
        if (r % (40 * half / 100) != 0)
            x = x * 40 / 100;
        MfxEvent event = noteAt(0, 1, 60, 64);
        player.looper.applyParamsToNote(event);
        ASSERT_EQ(event.velocity, 64 + x / half);
    }
}

TEST(Looper, WhatIsNoNoteKeepsItsValue)
{
    CMidiTrack track = pattern(480, {noteAt(0, 10, 60, 64)});
    MfxEvent modulation{};
    modulation.type = MfxEvent::Controller;
    modulation.key = 1;
    modulation.velocity = 64;
    track.insert(modulation);
    LooperParameters params;
    params.veloPlus = 30; // no random step takes it back
    Player player(track, 480, &params);
    player.play(0, 0);
    ASSERT_EQ(player.out.events.size(), 2u);
    EXPECT_GT(player.out.events[0].velocity, 64);
    EXPECT_EQ(player.out.events[1].velocity, 64);
}

TEST(Looper, WhatIsNoNoteHasNoRandomStep)
{
    CMidiTrack track = bar();
    MfxEvent modulation{};
    modulation.type = MfxEvent::Controller;
    modulation.time = 5;
    modulation.key = 1;
    modulation.velocity = 64;
    track.insert(modulation);
    LooperParameters params;
    params.veloPlus = 0;
    Player player(track, 480, &params);
    for (std::int32_t repetition = 0; repetition < 100; ++repetition) {
        player.play(repetition * 1920 + 5, repetition * 1920 + 5);
        ASSERT_EQ(player.out.events.at(0).velocity, 64);
    }
}

TEST(RandomSource, HasTheRangeOfTheCLibrarys)
{
    RandomSource draws;
    draws.seed(1);
    std::int32_t low = INT32_MAX;
    std::int32_t high = 0;
    std::array<int, 16> buckets{};
    for (int i = 0; i < 100'000; ++i) {
        const std::int32_t r = draws.next();
        low = std::min(low, r);
        high = std::max(high, r);
        ++buckets[static_cast<std::size_t>(r >> 27)]; // a negative number would be far outside
    }
    EXPECT_GE(low, 0);
    EXPECT_LT(low, 1 << 17);
    EXPECT_GT(high, INT32_MAX - (1 << 17));
    for (const int count : buckets)
        EXPECT_NEAR(count, 6250, 400);
}

TEST(Looper, AbsurdParametersOnlyReachTheLimits)
{
    LooperParameters params;
    params.randomVeloMin = INT32_MIN;
    params.randomVeloMax = INT32_MAX;
    params.randomVeloStrength = 99;
    params.veloPlus = INT32_MAX;
    const int velocity = velocityOf(params, 64);
    EXPECT_TRUE(velocity == 1 || velocity == 127);
}

TEST(Looper, WithoutStrengthThereIsNoRandomStep)
{
    LooperParameters params;
    params.veloPlus = 0;
    params.randomVeloStrength = 0;
    EXPECT_EQ(velocityOf(params, 64), 64);
}

TEST(Looper, TwoLoopersDrawDifferently)
{
    LooperParameters params;
    params.randomVeloMin = -127;
    params.randomVeloMax = 127;
    const CMidiTrack track = bar();
    Player a(track, 480, &params);
    Player b(track, 480, &params);
    a.play(0, 100'000);
    b.play(0, 100'000);
    EXPECT_FALSE(same(a.out.events, b.out.events));
}
