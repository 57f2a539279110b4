#include "host/bridge/BridgeTransport.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>
#include <vector>

using Change = BridgeTransport::Change;

namespace {

HostPosition playingAt(double quarters, double tempo = 120)
{
    HostPosition position;
    position.playing = true;
    position.quarters = quarters;
    position.tempo = tempo;
    return position;
}

/// At 48,000 frames a second and 120 BPM: 24,000 frames a quarter, 6.25 frames a tick.
class Transport : public testing::Test
{
protected:
    Transport() { transport.prepare(48000); }

    void expectTake(std::int64_t end, std::int32_t from, std::int32_t to)
    {
        const BridgeTransport::Slice slice = transport.take(end);
        EXPECT_EQ(slice.from, from) << "before frame " << end;
        EXPECT_EQ(slice.to, to) << "before frame " << end;
    }

    BridgeTransport transport;
};

} // namespace

TEST_F(Transport, NothingIsTakenWhileStopped)
{
    EXPECT_TRUE(transport.take(24000).empty());
    EXPECT_FALSE(transport.playing());
}

TEST_F(Transport, AQuarterIs3840Ticks)
{
    EXPECT_EQ(transport.report(0, playingAt(0)), Change::Start);
    expectTake(24000, 0, 3839);
    expectTake(48000, 3840, 7679);
}

TEST_F(Transport, ATickFallsOnTheLastFrameThatIsNotBehindIt)
{
    transport.report(0, playingAt(0));
    EXPECT_EQ(transport.frameOf(0, 0, 99), 0);
    EXPECT_EQ(transport.frameOf(1, 0, 99), 6);  // 6.25
    EXPECT_EQ(transport.frameOf(3, 0, 99), 18); // 18.75
    EXPECT_EQ(transport.frameOf(4, 0, 99), 25);
}

TEST_F(Transport, AnEmptySliceIsNotTaken)
{
    transport.report(0, playingAt(0));
    expectTake(1, 0, 0);
    EXPECT_TRUE(transport.take(6).empty());
    expectTake(7, 1, 1);
}

TEST_F(Transport, PositionsWithinTheHostsRoundingGoOnWithoutAGap)
{
    transport.report(0, playingAt(0));
    expectTake(24000, 0, 3839);
    EXPECT_EQ(transport.report(24000, playingAt(1.0001)), Change::None);
    expectTake(48000, 3840, 7679);
    EXPECT_EQ(transport.report(48000, playingAt(1.997)), Change::None); // 11.5 ticks behind us
    expectTake(72000, 7680, 11512);
}

TEST_F(Transport, AHostThatCutsItsPositionsToTicksLeavesNoteTimesAlone)
{
    transport.report(0, playingAt(0, 93.7));
    for (std::int64_t frame = 1024; frame < 48000; frame += 1024) {
        const double quarters = static_cast<double>(frame) * 93.7 / 60 / 48000;
        ASSERT_EQ(transport.report(frame, playingAt(std::floor(quarters * 1920) / 1920, 93.7)),
                  Change::None);
    }
    EXPECT_EQ(transport.frameOf(3840, 0, 48000), 30736); // 30736.39
}

TEST_F(Transport, AHostWhoseTempoIsNotWhatItSaysIsFollowed)
{
    std::int64_t frame = 0;
    for (double quarters = 0; quarters < 1000; quarters += 0.5, frame += 11990) { // not 12000
        ASSERT_EQ(transport.report(frame, playingAt(quarters)),
                  frame == 0 ? Change::Start : Change::None);
        transport.take(frame + 11990);
        ASSERT_NEAR(transport.quartersAt(frame), quarters, 4.001 / 3840);
    }
}

TEST_F(Transport, AJumpBackIsALoopAndAJumpAheadALocate)
{
    transport.report(0, playingAt(0));
    transport.take(24000);
    EXPECT_EQ(transport.report(24000, playingAt(0)), Change::Loop);
    expectTake(48000, 0, 3839);
    EXPECT_EQ(transport.report(48000, playingAt(8)), Change::Locate);
    expectTake(72000, 30720, 34559);
}

TEST_F(Transport, StartAndStopAreSeen)
{
    HostPosition stopped;
    stopped.quarters = 4;
    EXPECT_EQ(transport.report(0, stopped), Change::None);
    EXPECT_EQ(transport.report(100, playingAt(4)), Change::Start);
    transport.take(24100);
    stopped.quarters = 5;
    EXPECT_EQ(transport.report(24100, stopped), Change::Stop);
    EXPECT_TRUE(transport.take(48000).empty());
}

TEST_F(Transport, TheNoteAtTheStartIsThereWhenTheHostIsAFrameLate)
{
    transport.report(0, playingAt(4 + 0.9 / 24000));
    EXPECT_EQ(transport.nextTick(), 4 * 3840);
    transport.take(24000);
    transport.report(24000, playingAt(2 + 1e-9));
    EXPECT_EQ(transport.nextTick(), 2 * 3840);
}

TEST_F(Transport, ATempoChangeHoldsFromItsFrame)
{
    transport.report(0, playingAt(0, 120));
    expectTake(24000, 0, 3839);
    EXPECT_EQ(transport.report(24000, playingAt(1, 60)), Change::None);
    expectTake(72000, 3840, 7679);
    EXPECT_EQ(transport.frameOf(5760, 24000, 71999), 48000);
}

TEST_F(Transport, ARampOfTheTempoIsNoJump)
{
    double quarters = 0;
    std::int64_t frame = 0;
    std::int32_t next = 0;
    for (double tempo = 60; tempo <= 240; tempo += 20) {
        const Change change = transport.report(frame, playingAt(quarters, tempo));
        EXPECT_EQ(change, frame == 0 ? Change::Start : Change::None) << tempo;
        const BridgeTransport::Slice slice = transport.take(frame + 4096);
        EXPECT_EQ(slice.from, next);
        next = slice.to + 1;
        frame += 4096;
        quarters += (tempo + 10) / 60 * 4096 / 48000; // the mean of the block
    }
}

TEST_F(Transport, AHostsLoopStartsAnewInTheMiddleOfABlock)
{
    HostPosition position = playingAt(3.5);
    position.looping = true;
    position.loopStart = 2;
    position.loopEnd = 4;
    transport.report(0, position);
    ASSERT_EQ(transport.nextWrap(24000), 12000);
    const BridgeTransport::Slice last = transport.takeToLoopEnd();
    EXPECT_EQ(last.from, 13440);
    EXPECT_EQ(last.to, 15359);
    transport.wrap(12000);
    EXPECT_EQ(transport.nextWrap(24000), 24000);
    expectTake(24000, 7680, 9599);
    position.quarters = 2.5;
    EXPECT_EQ(transport.report(24000, position), Change::None);
}

TEST_F(Transport, AHostThatSplitsItsBlocksAtTheLoopsEndIsFollowedAsWell)
{
    HostPosition position = playingAt(3);
    position.looping = true;
    position.loopStart = 0;
    position.loopEnd = 4;
    transport.report(0, position);
    EXPECT_EQ(transport.nextWrap(24000), 24000);
    expectTake(24000, 11520, 15359);
    position.quarters = 0;
    EXPECT_EQ(transport.report(24000, position), Change::Loop);
    expectTake(24001, 0, 0);
}

TEST_F(Transport, BehindTheLoopsEndPlaybackGoesOn)
{
    HostPosition position = playingAt(4);
    position.looping = true;
    position.loopStart = 0;
    position.loopEnd = 4;
    transport.report(0, position);
    EXPECT_EQ(transport.nextWrap(2400000), 2400000);
}

TEST_F(Transport, NonsenseKeepsTheOldValues)
{
    const double nan = std::numeric_limits<double>::quiet_NaN();
    transport.report(0, playingAt(0));
    HostPosition position = playingAt(nan, 0);
    position.denominator = 0;
    position.barStart = nan;
    EXPECT_EQ(transport.report(24000, position), Change::None);
    expectTake(48000, 0, 7679);
    EXPECT_EQ(transport.position().tempo, 120);
    EXPECT_EQ(transport.position().denominator, 4);
    EXPECT_EQ(transport.report(48000, playingAt(1e300)), Change::None);
}

TEST_F(Transport, PositionsBeyondTheEndsOfTheTickScaleTakeNothing)
{
    transport.report(0, playingAt(600'000));
    EXPECT_TRUE(transport.take(24000).empty());
    transport.report(24000, playingAt(-600'000));
    EXPECT_TRUE(transport.take(48000).empty());
}

TEST_F(Transport, ACountInHasNegativeTicks)
{
    transport.report(0, playingAt(-1));
    expectTake(48000, -3840, 3839);
}

TEST_F(Transport, TheFramesOfAllTicksAreTheSameForAnyBlocks)
{
    const unsigned seed = std::random_device{}();
    SCOPED_TRACE(seed);
    std::mt19937 random(seed);
    for (const double rate : {22050.0, 44100.0, 48000.0, 192000.0})
        for (const double tempo : {20.0, 97.3, 120.0, 400.0}) {
            const auto whole = static_cast<std::int64_t>(rate);
            BridgeTransport one;
            one.prepare(rate);
            one.report(0, playingAt(1.37, tempo));
            const BridgeTransport::Slice all = one.take(whole);

            BridgeTransport cut;
            cut.prepare(rate);
            std::int32_t next = all.from;
            for (std::int64_t frame = 0; frame < whole;) {
                const auto length = static_cast<std::int64_t>(random() % 4096 + 1);
                const std::int64_t end = std::min(frame + length, whole);
                const double now = 1.37 + static_cast<double>(frame) * (tempo / 60 / rate);
                cut.report(frame, playingAt(now, tempo));
                const BridgeTransport::Slice slice = cut.take(end);
                for (std::int32_t tick = slice.from; tick <= slice.to; ++tick, ++next) {
                    ASSERT_EQ(tick, next);
                    ASSERT_EQ(cut.frameOf(tick, frame, end - 1), one.frameOf(tick, 0, whole - 1));
                }
                frame = end;
            }
            EXPECT_EQ(next, all.to + 1);
        }
}
