#include "effect/Looper.h"

#include "midi/TickMath.h"
#include "tests/effect/Fakes.h"
#include "tests/support/Guards.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <optional>
#include <random>

using namespace Korvanel;

namespace {

using Times = std::vector<std::int32_t>;

/// A looper over a pattern, and its recorder.
struct Player
{
    explicit Player(const CMidiTrack& pattern, std::int32_t hostPpq = 480,
                    LooperParameters* params = nullptr)
        : track(pattern)
        , out(hostPpq)
        , looper(track, lock, out, params)
    {
    }

    Times play(std::int32_t from, std::int32_t to, std::int32_t base = 0)
    {
        out.events.clear();
        looper.process(from, to, out, base);
        return out.times();
    }

    CMidiTrack track;
    CriticalSection lock;
    Recorder out;
    Looper looper;
};

/// One bar of four quarters at 480.
CMidiTrack bar()
{
    CMidiTrack track =
        pattern(480, {noteAt(0, 240), noteAt(480, 240), noteAt(960, 240), noteAt(1440, 480)});
    return track;
}

/// The rule of playing, step by step from repetition 0, for comparison.
std::vector<MfxEvent> scan(const CMidiTrack& track, std::int32_t ppq, int tempoType,
                           std::int32_t from, std::int32_t to, std::int32_t base)
{
    const auto host = [&](std::int64_t t) {
        if (t != 0 && track.ticksPerQuarter != ppq)
            t = t * ppq / track.ticksPerQuarter;
        return tempoType < 1 ? t * 2 : tempoType == 1 ? t : t / 2;
    };
    std::int64_t length = host(std::int64_t{track.numberOfBars()} * track.barLength());
    if (length < 1)
        length = 100;
    std::vector<MfxEvent> played;
    if (track.lastTick <= 0)
        return played;
    for (std::int64_t offset = 0;; offset += length) {
        for (const MfxEvent& event : track.events) {
            const std::int64_t time = host(event.time) + offset + base;
            if (time > to)
                return played;
            if (time < from || !Looper::isOutputEvent(event))
                continue;
            MfxEvent copy = event;
            copy.time = static_cast<std::int32_t>(time);
            if (event.isNote() && event.duration != MfxEvent::kOpen)
                copy.duration = static_cast<std::uint32_t>(host(event.duration));
            played.push_back(copy);
        }
    }
}

bool same(const std::vector<MfxEvent>& a, const std::vector<MfxEvent>& b)
{
    return std::equal(
        a.begin(), a.end(), b.begin(), b.end(),
        [](const MfxEvent& x, const MfxEvent& y) { return std::memcmp(&x, &y, sizeof x) == 0; });
}

int velocityOf(LooperParameters& params, int velocity, int wheelShift = 0, int veloAdd = 0)
{
    Player player(bar(), 480, &params);
    player.looper.processPitchWheel(0, wheelShift * 128);
    player.looper.setVeloAdd(veloAdd);
    MfxEvent event = noteAt(0, 10, 60, velocity);
    player.looper.applyParamsToNote(event);
    return event.velocity;
}

CMidiTrack randomPattern(std::mt19937& random)
{
    constexpr std::array<std::int32_t, 7> kResolutions{24, 96, 120, 240, 480, 960, 15360};
    CMidiTrack track;
    track.ticksPerQuarter = kResolutions[random() % kResolutions.size()];
    track.numerator = static_cast<std::int16_t>(1 + random() % 7);
    track.denominator = static_cast<std::int16_t>(4 << random() % 2);
    const auto length = static_cast<std::uint32_t>(track.barLength()) * (1 + random() % 3);
    for (std::uint32_t i = 0; i < 1 + random() % 20; ++i) {
        MfxEvent event =
            noteAt(static_cast<std::int32_t>(random() % length),
                   static_cast<std::uint32_t>(random() % 200), static_cast<int>(random() % 128),
                   static_cast<int>(1 + random() % 127));
        if (random() % 6 == 0)
            event.type = static_cast<std::int32_t>(random() % 7);
        track.insert(event);
    }
    return track;
}

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
    player.looper.TempoType(0);
    player.play(0, 100);
    EXPECT_EQ(player.out.events[1].duration, MfxEvent::kOpen);
}

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

TEST(Looper, AnyJumpPlaysWhatAScanFromRepetition0Plays)
{
    std::mt19937 random(99);
    for (int round = 0; round < 400; ++round) {
        CMidiTrack track = randomPattern(random);
        if (round % 10 == 0)
            track.denominator = 0; // no bars: repeats every 100 ticks, events lie beyond
        const auto ppq = static_cast<std::int32_t>(100 + random() % 1000);
        const int type = static_cast<int>(random() % 3);
        Player player(track, ppq);
        player.looper.TempoType(type);
        for (int jump = 0; jump < 10; ++jump) {
            const auto base = static_cast<std::int32_t>(random() % 3 * 1000);
            const auto from = static_cast<std::int32_t>(random() % 20'000) - 500;
            const auto to = from + static_cast<std::int32_t>(random() % 3000) - 2;
            player.play(from, to, base);
            ASSERT_TRUE(same(player.out.events, scan(track, ppq, type, from, to, base)))
                << "round " << round << ": " << from << ".." << to << " from " << base;
        }
    }
}

TEST(Looper, AnyCutOfARangePlaysTheSameEvents)
{
    std::mt19937 random(4711);
    for (int round = 0; round < 300; ++round) {
        const CMidiTrack track = randomPattern(random);
        const auto ppq = static_cast<std::int32_t>(96 + random() % 4000);
        const int type = static_cast<int>(random() % 3);
        LooperParameters params;
        LooperParameters* used = round % 2 == 0 ? &params : nullptr;
        const auto from = static_cast<std::int32_t>(random() % 5000);
        const auto to = from + static_cast<std::int32_t>(random() % 40'000);

        Player whole(track, ppq, used);
        whole.looper.TempoType(type);
        whole.looper.seedRandom(static_cast<std::uint32_t>(round));
        whole.play(from, to);

        Player cut(track, ppq, used);
        cut.looper.TempoType(type);
        cut.looper.seedRandom(static_cast<std::uint32_t>(round));
        for (std::int32_t at = from; at <= to;) {
            const std::int32_t end = std::min(
                to, at + static_cast<std::int32_t>(random() % (round % 3 == 0 ? 20 : 2000)));
            cut.looper.process(at, end, cut.out, 0);
            at = end + 1;
        }
        ASSERT_TRUE(same(whole.out.events, cut.out.events)) << "round " << round;
    }
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

TEST(Looper, AnyResetWhilePlayingGoesOnAsAScanFromRepetition0)
{
    std::mt19937 random(2025);
    for (int round = 0; round < 300; ++round) {
        const CMidiTrack track = randomPattern(random);
        const auto ppq = static_cast<std::int32_t>(96 + random() % 2000);
        Player player(track, ppq);
        std::int32_t from = 0;
        for (int slice = 0; slice < 20; ++slice) {
            const auto to = from + static_cast<std::int32_t>(random() % 3000);
            const int type = static_cast<int>(random() % 3);
            player.looper.TempoType(type);
            player.play(from, to);
            ASSERT_TRUE(same(player.out.events, scan(track, ppq, type, from, to, 0)))
                << "round " << round << ": " << from << ".." << to;
            from = to + 1;
        }
    }
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
