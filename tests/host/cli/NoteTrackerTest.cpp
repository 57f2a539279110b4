#include "host/cli/NoteTracker.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <random>

using Korvanel::MidiEvent;

namespace {

MidiEvent on(std::int32_t time, std::int32_t duration, int key = 60, int velocity = 100)
{
    return {time, 0x92,    static_cast<std::uint8_t>(key), static_cast<std::uint8_t>(velocity),
            0,    duration};
}

/// Messages as text, a word each: the time, + for on and - for off, the key.
std::string words(const NoteTracker::Out& out)
{
    std::string text;
    for (const TimedMessage& message : out) {
        const int kind = message.bytes[0] & 0xF0;
        text += std::to_string(message.time) +
                (kind == 0x90   ? "+"
                 : kind == 0x80 ? "-"
                                : "?") +
                std::to_string(message.bytes[1]) + " ";
    }
    return text;
}

} // namespace

TEST(NoteTracker, ANoteBecomesOnAndOffAtItsEnd)
{
    NoteTracker tracker;
    NoteTracker::Out out;
    tracker.play({on(10, 50)}, 100, out);
    EXPECT_EQ(words(out), "10+60 60-60 ");
    EXPECT_EQ(out[0].bytes, (std::array<std::uint8_t, 3>{0x92, 60, 100}));
    EXPECT_EQ(out[1].bytes[0], 0x82);
    EXPECT_TRUE(tracker.silent());
}

TEST(NoteTracker, AnEndInALaterSliceComesThere)
{
    NoteTracker tracker;
    NoteTracker::Out out;
    tracker.play({on(10, 90)}, 100, out);
    EXPECT_EQ(words(out), "10+60 ");
    tracker.play({}, 101, out);
    EXPECT_EQ(words(out), "10+60 100-60 ");
}

TEST(NoteTracker, ARepeatEndsTheFirstBefore)
{
    NoteTracker tracker;
    NoteTracker::Out out;
    tracker.play({on(0, 100), on(50, 100)}, 200, out);
    EXPECT_EQ(words(out), "0+60 50-60 50+60 150-60 ");
}

TEST(NoteTracker, AnEndComesBeforeAStartAtItsTime)
{
    NoteTracker tracker;
    NoteTracker::Out out;
    tracker.play({on(0, 50, 60), on(50, 10, 62)}, 100, out);
    EXPECT_EQ(words(out), "0+60 50-60 50+62 60-62 ");
}

TEST(NoteTracker, AnEndlessNoteSoundsUntilTheStop)
{
    NoteTracker tracker;
    NoteTracker::Out out;
    tracker.play({on(0, -1)}, 1'000'000, out);
    EXPECT_EQ(words(out), "0+60 ");
    tracker.stop(1'000'000, out);
    tracker.stop(1'000'001, out);
    EXPECT_EQ(words(out), "0+60 1000000-60 ");
}

TEST(NoteTracker, ANoteWithoutALengthSoundsForAMoment)
{
    NoteTracker tracker;
    NoteTracker::Out out;
    tracker.play({on(5, 0)}, 10, out);
    EXPECT_EQ(words(out), "5+60 6-60 ");
}

TEST(NoteTracker, OtherMessagesPassInOrderAndEmptyOnesDoNot)
{
    NoteTracker tracker;
    NoteTracker::Out out;
    tracker.play({{7, 0xB0, 1, 64, 0, 0}, {3, 0xD0, 9, 0, 0, 0}, {4, 0, 0, 0, 0, 0}}, 10, out);
    ASSERT_EQ(out.size(), 2u);
    EXPECT_EQ(out[0].time, 3);
    EXPECT_EQ(out[0].length, 2);
    EXPECT_EQ(out[1].length, 3);
}

TEST(NoteTracker, NoNoteEverHangsAndNoneEndsTwice)
{
    std::mt19937 random(8);
    NoteTracker tracker;
    NoteTracker::Out out;
    for (std::int32_t from = 0; from < 20'000; from += 100) {
        std::vector<MidiEvent> events;
        for (int i = 0; i < 5; ++i)
            events.push_back(on(from + static_cast<std::int32_t>(random() % 100),
                                static_cast<std::int32_t>(random() % 500) - 10,
                                static_cast<int>(random() % 8)));
        tracker.play(events, from + 100, out);
    }
    tracker.stop(20'000, out);
    std::map<int, int> sounding;
    std::int32_t last = 0;
    for (const TimedMessage& message : out) {
        EXPECT_GE(message.time, last);
        last = message.time;
        const int change = (message.bytes[0] & 0xF0) == 0x90 ? 1 : -1;
        int& count = sounding[message.bytes[1]];
        count += change;
        ASSERT_TRUE(count == 0 || count == 1);
    }
    for (const auto& [key, count] : sounding)
        EXPECT_EQ(count, 0) << key;
}
