#include "host/vst3/PlayHeadReader.h"

#include <gtest/gtest.h>

#include <cmath>

namespace {

juce::AudioPlayHead::PositionInfo at(double quarters, double barStart, int numerator,
                                     int denominator)
{
    juce::AudioPlayHead::PositionInfo info;
    info.setIsPlaying(true);
    info.setBpm(120.0);
    info.setPpqPosition(quarters);
    info.setPpqPositionOfLastBarStart(barStart);
    info.setTimeSignature(juce::AudioPlayHead::TimeSignature{numerator, denominator});
    return info;
}

} // namespace

TEST(PlayHeadReader, ASongInOneMeterIsTakenAsItIs)
{
    PlayHeadReader reader;
    const HostPosition position = reader.read(at(13.25, 12, 3, 4));
    EXPECT_TRUE(position.playing);
    EXPECT_EQ(position.quarters, 13.25);
    EXPECT_EQ(position.tempo, 120);
    EXPECT_EQ(position.numerator, 3);
    EXPECT_EQ(position.denominator, 4);
    EXPECT_EQ(position.bar, 4);
    EXPECT_EQ(position.barStart, 12);
}

TEST(PlayHeadReader, ABarBehindAnotherMeterLiesOnABarOfOurs)
{
    PlayHeadReader reader; // one bar of 4/4, then 3/4
    const HostPosition position = reader.read(at(5.5, 4, 3, 4));
    EXPECT_EQ(position.bar, 1);
    EXPECT_EQ(position.barStart, 3);
    EXPECT_EQ(position.quarters, 4.5);
}

TEST(PlayHeadReader, BarsBehindAnotherMeterFollowOneAnother)
{
    PlayHeadReader reader; // one bar of 2/4, then 4/4: bars start in the middle of ours
    for (int bar = 0; bar < 100; ++bar) {
        const double noise = (bar % 3 - 1) * 0.002; // of a host that rounds
        const HostPosition position = reader.read(at(2 + 4 * bar + 1, 2 + 4 * bar + noise, 4, 4));
        EXPECT_EQ(position.bar, bar);
        EXPECT_EQ(position.barStart, 4 * bar);
        EXPECT_EQ(position.quarters, 4 * bar + 1);
    }
}

TEST(PlayHeadReader, EighthsAndCountInsAreBarsToo)
{
    PlayHeadReader reader;
    EXPECT_EQ(reader.read(at(4.5, 4, 7, 8)).quarters, 4); // from 3.5 on
    EXPECT_EQ(reader.read(at(-1, -4, 4, 4)).quarters, -1);
    EXPECT_EQ(reader.read(at(-1, -4, 4, 4)).bar, -1);
}

TEST(PlayHeadReader, TheLoopMovesWithThePosition)
{
    PlayHeadReader reader;
    auto info = at(5.5, 4, 3, 4);
    info.setIsLooping(true);
    info.setLoopPoints(juce::AudioPlayHead::LoopPoints{4, 10});
    const HostPosition position = reader.read(info);
    EXPECT_TRUE(position.looping);
    EXPECT_EQ(position.loopStart, 3);
    EXPECT_EQ(position.loopEnd, 9);
}

TEST(PlayHeadReader, AHostWhoseBarsCannotBeIsBelievedNoMore)
{
    PlayHeadReader reader;
    EXPECT_EQ(reader.read(at(0, 4, 5, 4)).quarters, 0); // counts from 1, four quarters each
    EXPECT_EQ(reader.read(at(26, 24, 5, 4)).quarters, 26);
    reader.prepare();
    EXPECT_EQ(reader.read(at(26, 24, 5, 4)).quarters, 22);
}

TEST(PlayHeadReader, AHostWithoutBarsIsTakenAtItsQuarters)
{
    PlayHeadReader reader;
    auto info = at(7.5, 0, 3, 4);
    info.setPpqPositionOfLastBarStart({});
    const HostPosition position = reader.read(info);
    EXPECT_EQ(position.quarters, 7.5);
    EXPECT_EQ(position.bar, 2);
    EXPECT_EQ(position.barStart, 6);
}

TEST(PlayHeadReader, AHostWithoutQuartersIsFollowedByItsSeconds)
{
    PlayHeadReader reader;
    juce::AudioPlayHead::PositionInfo info;
    info.setBpm(90.0);
    info.setTimeInSeconds(2.0);
    EXPECT_EQ(reader.read(info).quarters, 3);
}

TEST(PlayHeadReader, AHostThatSaysNothingChangesNothing)
{
    PlayHeadReader reader;
    const HostPosition position = reader.read({});
    EXPECT_FALSE(position.playing);
    EXPECT_TRUE(std::isnan(position.quarters));
    EXPECT_EQ(position.tempo, 0);
    EXPECT_EQ(position.numerator, 0);
    EXPECT_FALSE(position.looping);
}

TEST(PlayHeadReader, AMeterOfNothingChangesNothing)
{
    PlayHeadReader reader;
    const HostPosition position = reader.read(at(5, 4, 0, 0));
    EXPECT_EQ(position.quarters, 5);
    EXPECT_EQ(position.barStart, 0);
}
