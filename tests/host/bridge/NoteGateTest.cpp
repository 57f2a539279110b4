#include "host/bridge/NoteGate.h"

#include "tests/host/bridge/ListSink.h"

#include <gtest/gtest.h>

#include <array>
#include <map>
#include <random>

namespace {

class Gate : public testing::Test
{
protected:
    void play(std::uint32_t frame, int key, std::int32_t duration, std::int32_t time = 0)
    {
        gate.play(frame, {time, 0x90, static_cast<std::uint8_t>(key), 100, 0, duration}, sink);
    }

    void pass(std::uint32_t frame, int status, int data1, int data2)
    {
        const std::array<std::uint8_t, 3> bytes{static_cast<std::uint8_t>(status),
                                                static_cast<std::uint8_t>(data1),
                                                static_cast<std::uint8_t>(data2)};
        gate.pass(frame, bytes, sink);
    }

    NoteGate gate;
    ListSink sink;
};

using List = std::vector<Sent>;

} // namespace

TEST_F(Gate, ANoteBecomesOnAndOff)
{
    play(7, 60, 100, 50);
    EXPECT_EQ(gate.nextEnd(), 150);
    gate.endNext(12, sink);
    EXPECT_EQ(sink.sent, (List{{7, {0x90, 60, 100}}, {12, {0x80, 60, 64}}}));
    EXPECT_EQ(gate.nextEnd(), NoteGate::kNever);
}

TEST_F(Gate, ARepeatSendsTheOffFirst)
{
    play(0, 60, 100, 0);
    play(5, 60, 100, 50);
    EXPECT_EQ(sink.sent, (List{{0, {0x90, 60, 100}}, {5, {0x80, 60, 64}}, {5, {0x90, 60, 100}}}));
    EXPECT_EQ(gate.nextEnd(), 150);
}

TEST_F(Gate, EndsComeInTheOrderOfTicksAndThenOfTheNotesStarts)
{
    play(0, 60, 30);
    play(0, 62, 10);
    play(0, 64, 20);
    play(0, 58, 20);
    sink.sent.clear();
    for (const std::int64_t end : {10, 20, 20, 30}) {
        EXPECT_EQ(gate.nextEnd(), end);
        gate.endNext(1, sink);
    }
    EXPECT_EQ(
        sink.sent,
        (List{{1, {0x80, 62, 64}}, {1, {0x80, 64, 64}}, {1, {0x80, 58, 64}}, {1, {0x80, 60, 64}}}));
}

TEST_F(Gate, ANoteOfNoLengthLastsATick)
{
    play(0, 60, 0, 10);
    EXPECT_EQ(gate.nextEnd(), 11);
}

TEST_F(Gate, ANoteWithoutAnEndSoundsUntilSilence)
{
    play(0, 60, -1);
    EXPECT_EQ(gate.nextEnd(), NoteGate::kNever);
    gate.silencePattern(9, sink);
    gate.silencePattern(10, sink);
    EXPECT_EQ(sink.sent, (List{{0, {0x90, 60, 100}}, {9, {0x80, 60, 64}}}));
}

TEST_F(Gate, WhatIsNoChannelMessageIsDropped)
{
    gate.play(0, {0, 0, 0, 0, 0, 0}, sink);
    gate.play(0, {0, 0x90, 60, 0, 0, 10}, sink);
    gate.play(0, {0, 0x80, 60, 0, 0, 0}, sink);
    EXPECT_TRUE(sink.sent.empty());
}

TEST_F(Gate, ControllersAndPressureGoThroughInTheirLength)
{
    gate.play(3, {0, 0xB1, 1, 2, 0, 0}, sink);
    gate.play(4, {0, 0xD1, 5, 0, 0, 0}, sink);
    EXPECT_EQ(sink.sent, (List{{3, {0xB1, 1, 2}}, {4, {0xD1, 5}}}));
}

TEST_F(Gate, APlayersKeyTakesOverFromThePattern)
{
    play(0, 60, 100);
    pass(5, 0x90, 60, 90);
    EXPECT_EQ(gate.nextEnd(), NoteGate::kNever);
    gate.silencePattern(6, sink); // not the player's
    pass(8, 0x80, 60, 0);
    EXPECT_EQ(
        sink.sent,
        (List{{0, {0x90, 60, 100}}, {5, {0x80, 60, 64}}, {5, {0x90, 60, 90}}, {8, {0x80, 60, 0}}}));
}

TEST_F(Gate, APlayersOffNeverEndsThePatternsNote)
{
    pass(0, 0x90, 60, 90);
    play(5, 60, 100);
    pass(6, 0x80, 60, 0);
    gate.endNext(7, sink);
    pass(8, 0x80, 60, 0);
    EXPECT_EQ(
        sink.sent,
        (List{
            {0, {0x90, 60, 90}}, {5, {0x80, 60, 64}}, {5, {0x90, 60, 100}}, {7, {0x80, 60, 64}}}));
}

TEST_F(Gate, AnOffOfAKeyThatNeverCameThroughGoesOnOnce)
{
    pass(0, 0x80, 60, 0);
    pass(1, 0x90, 60, 0);
    EXPECT_EQ(sink.sent, (List{{0, {0x80, 60, 0}}}));
}

TEST_F(Gate, AllNotesOffEndsTheChannelsNotesFirst)
{
    play(0, 60, 100);
    sink.sent.clear();
    pass(4, 0xB1, 123, 0);
    pass(5, 0xB0, 123, 0);
    EXPECT_EQ(sink.sent, (List{{4, {0xB1, 123, 0}}, {5, {0x80, 60, 64}}, {5, {0xB0, 123, 0}}}));
    EXPECT_EQ(gate.nextEnd(), NoteGate::kNever);
}

TEST_F(Gate, AnOffThatFindsNoRoomIsSentLater)
{
    sink.room = 1;
    play(0, 60, 10);
    gate.endNext(4, sink);
    gate.sendOwed(5, sink);
    EXPECT_EQ(gate.nextEnd(), NoteGate::kNever);
    sink.room = 3;
    gate.sendOwed(6, sink);
    gate.sendOwed(7, sink);
    EXPECT_EQ(sink.sent, (List{{0, {0x90, 60, 100}}, {6, {0x80, 60, 64}}}));
}

TEST_F(Gate, AnOnThatFindsNoRoomNeverNeedsAnOff)
{
    sink.room = 0;
    play(0, 60, 10);
    sink.room = 9;
    gate.silenceAll(1, sink);
    EXPECT_TRUE(sink.sent.empty());
}

TEST_F(Gate, EndsStayInOrderWithEveryKeySounding)
{
    std::mt19937 random(20240611);
    std::multimap<std::int64_t, int> model;
    for (int channel = 0; channel < 16; ++channel)
        for (int key = 0; key < 128; ++key) {
            const auto duration = static_cast<std::int32_t>(random() % 1000 + 1);
            gate.play(0,
                      {0, static_cast<std::uint8_t>(0x90 | channel), static_cast<std::uint8_t>(key),
                       1, 0, duration},
                      sink);
            model.emplace(duration, channel * 128 + key);
        }
    for (const auto& [end, note] : model) {
        ASSERT_EQ(gate.nextEnd(), end);
        gate.endNext(0, sink);
        EXPECT_EQ(sink.sent.back().bytes,
                  (std::vector<std::uint8_t>{static_cast<std::uint8_t>(0x80 | note / 128),
                                             static_cast<std::uint8_t>(note % 128), 64}));
    }
    EXPECT_FALSE(gate.patternSounds());
}
