#include "effect/Looper.h"

#include "tests/effect/LooperPlayer.h"
#include "tests/support/Guards.h"

#include <gtest/gtest.h>

using namespace Korvanel;

namespace {

using Times = std::vector<std::int32_t>;

} // namespace

TEST(Looper, PlaysTheBarInHalvesAndAgain)
{
    Player player(bar());
    EXPECT_EQ(player.play(0, 959), (Times{0, 480}));
    EXPECT_EQ(player.play(960, 1919), (Times{960, 1440}));
    EXPECT_EQ(player.play(1920, 2879), (Times{1920, 2400}));
}

TEST(Looper, BothEndsOfASliceCount)
{
    Player player(bar());
    EXPECT_EQ(player.play(480, 480), (Times{480}));
    EXPECT_EQ(player.play(481, 959), Times{});
    EXPECT_EQ(player.play(960, 960), (Times{960}));
}

TEST(Looper, HalfTempoDoublesTimesAndDurations)
{
    Player player(bar());
    player.looper.TempoType(0);
    EXPECT_EQ(player.looper.loopLength(), 3840);
    EXPECT_EQ(player.play(0, 3840), (Times{0, 960, 1920, 2880, 3840}));
    EXPECT_EQ(player.out.events[0].duration, 480u);
}

TEST(Looper, DoubleTempoHalvesThem)
{
    Player player(bar());
    player.looper.TempoType(2);
    EXPECT_EQ(player.looper.loopLength(), 960);
    EXPECT_EQ(player.play(0, 1200), (Times{0, 240, 480, 720, 960, 1200}));
    EXPECT_EQ(player.out.events[0].duration, 120u);
}

TEST(Looper, TempoTypesOutsideCountAsTheNearest)
{
    Player player(bar());
    player.looper.TempoType(-5);
    EXPECT_EQ(player.looper.ticksFor(100), 200);
    player.looper.TempoType(9);
    EXPECT_EQ(player.looper.ticksFor(101), 50);
    EXPECT_EQ(player.looper.ticksFor(-101), -50);
}

TEST(Looper, ConvertsResolutionsTowardsZero)
{
    Player player(pattern(240, {noteAt(0, 960)}), 1000);
    EXPECT_EQ(player.looper.ticksFor(1), 4); // 4.17
    EXPECT_EQ(player.looper.ticksFor(-1), -4);
    EXPECT_EQ(player.looper.loopLength(), 4000);
}

TEST(Looper, AJumpPlaysFromThereOn)
{
    Player player(bar());
    player.play(0, 959);
    EXPECT_EQ(player.play(1900, 2500), (Times{1920, 2400}));
    EXPECT_EQ(player.play(100, 500), (Times{480}));
}

TEST(Looper, ANewBaseStartsRepetition0There)
{
    Player player(bar());
    player.play(0, 99);
    EXPECT_EQ(player.play(100, 700, 100), (Times{100, 580}));
}

TEST(Looper, AfterAResetTheNextSliceScansOn)
{
    Player player(bar());
    player.play(0, 1999);
    player.looper.reset();
    EXPECT_EQ(player.play(2000, 2500), (Times{2400}));
    player.looper.setLoop(77);
    EXPECT_EQ(player.play(2501, 3000), (Times{2880}));
}

TEST(Looper, NextLoopSkipsARepetition)
{
    Player player(bar());
    player.play(0, 99);
    player.looper.nextLoop();
    EXPECT_EQ(player.play(100, 2000), (Times{1920}));
}

TEST(Looper, SoundsAndMixerSettingsAreNeverPlayed)
{
    CMidiTrack track = bar();
    for (const int type : {MfxEvent::Patch, MfxEvent::Wheel}) {
        MfxEvent event{};
        event.type = type;
        event.time = 10;
        track.insert(event);
    }
    for (const int number : {0, 7, 10, 32, 39, 42, 1}) {
        MfxEvent event{};
        event.type = MfxEvent::Controller;
        event.key = static_cast<std::uint8_t>(number);
        event.time = 20;
        track.insert(event);
    }
    Player player(track);
    EXPECT_EQ(player.play(1, 479), (Times{20}));
    EXPECT_EQ(player.out.events[0].key, 1);
}

TEST(Looper, APatternThatEndsAtItsStartPlaysNothing)
{
    Player player(pattern(480, {noteAt(0, 0)}));
    EXPECT_EQ(player.play(0, 100'000), Times{});
    Player empty(pattern(480, {}));
    EXPECT_EQ(empty.play(0, 100'000), Times{});
}

TEST(Looper, APatternWithoutBarsRepeatsEvery100Ticks)
{
    CMidiTrack track = pattern(480, {noteAt(0, 10), noteAt(30, 10)});
    track.denominator = 0;
    Player player(track);
    EXPECT_EQ(player.looper.loopLength(), 100);
    EXPECT_EQ(player.play(0, 230), (Times{0, 30, 100, 130, 200, 230}));
}

TEST(Looper, TheStoredPatternStaysAsItIs)
{
    LooperParameters params;
    Player player(bar(), 960, &params);
    player.play(0, 5000);
    EXPECT_EQ(player.track.events[1].time, 480);
    EXPECT_EQ(player.track.events[1].velocity, 100);
}

TEST(Looper, AnOpenNoteStaysOpenAtAnyTempo)
{
    Player player(pattern(480, {noteAt(0, 100), noteAt(10, MfxEvent::kOpen)}), 960);
    for (const int type : {0, 1, 2}) {
        player.looper.TempoType(type);
        player.play(0, 100);
        EXPECT_EQ(player.out.events.at(1).duration, MfxEvent::kOpen) << type;
    }
}

TEST(Looper, AnExceptionOfTheContextLeavesTheLockOpen)
{
    struct Thrower : Recorder
    {
        void outputEvent(MfxEvent&) override { throw 1; }
    } thrower;

    Player player(bar());
    EXPECT_THROW(player.looper.process(0, 100, thrower, 0), int);
    EXPECT_EQ(player.play(0, 100), (Times{0}));
}

TEST(Looper, FarRepetitionsPlayAsNearOnes)
{
    Player player(bar());
    const std::int32_t far = 1920 * 1'000'000;
    EXPECT_EQ(player.play(far, far + 959), (Times{far, far + 480}));
    EXPECT_EQ(player.play(INT32_MAX - 2000, INT32_MAX).size(), 4u);
}

TEST(Looper, AResetFarFromTheStartIsNotWalkedBack)
{
    // One host tick a repetition, so that a walk over the two thousand million of them would run
    // into the test's time limit.
    std::vector<MfxEvent> notes(64, noteAt(0, 4));
    CMidiTrack track = pattern(4, notes);
    track.numerator = 1;
    Player player(track, 1);
    ASSERT_EQ(player.looper.loopLength(), 1);
    player.play(2'000'000'000, 2'000'000'000);
    player.looper.reset();
    EXPECT_EQ(player.play(2'000'000'001, 2'000'000'001).size(), 64u);
    player.looper.TempoType(0);
    EXPECT_EQ(player.play(2'000'000'002, 2'000'000'003).size(), 64u);
}

TEST(Looper, ASliceNeitherAllocatesNorTakesMoreThanItsOwnLock)
{
    LooperParameters params;
    Player player(bar(), 480, &params);
    player.out.events.reserve(10'000);
    const AllocationGuard allocations;
    const LockCounter locks;
    for (std::int32_t at = 0; at < 100 * 64; at += 64)
        player.looper.process(at, at + 63, player.out, 0);
    player.looper.process(1'920'000'000, 1'920'010'000, player.out, 0);
    EXPECT_EQ(allocations.count(), 0u);
    EXPECT_EQ(locks.count(), LockCounter::counts ? 101u : 0u);
}
