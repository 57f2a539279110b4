#include "effect/NoteGroups.h"

#include "tests/effect/Fakes.h"

#include <gtest/gtest.h>

using namespace Korvanel;

namespace {

/// Durations after the last notes of each group have been lengthened.
std::vector<std::uint32_t> lengthened(const std::vector<MfxEvent>& notes)
{
    CMidiTrack track = pattern(240, notes);
    track.lastTick = 960; // one bar, whatever rings past it
    lengthenLastNotes(track);
    std::vector<std::uint32_t> durations;
    for (const MfxEvent& event : track.events)
        durations.push_back(event.duration);
    return durations;
}

using Durations = std::vector<std::uint32_t>;

} // namespace

TEST(NoteGroups, ALastNoteThatReachesTheEndSoundsOnToTheGroupsFirst)
{
    EXPECT_EQ(lengthened({noteAt(0, 10, 0), noteAt(860, 200, 5)}), (Durations{10, 200}));
    EXPECT_EQ(lengthened({noteAt(120, 10, 0), noteAt(860, 200, 5)}), (Durations{10, 320}));
}

TEST(NoteGroups, ANoteThatStopsBeforeTheEndStays)
{
    EXPECT_EQ(lengthened({noteAt(120, 10, 0), noteAt(860, 98, 5)}), (Durations{10, 98}));
    EXPECT_EQ(lengthened({noteAt(120, 10, 0), noteAt(860, 99, 5)}),
              (Durations{10, 219})); // 960 - 860 - 1
}

TEST(NoteGroups, OnlyTheLaterOfTwoLongNotesIsLengthened)
{
    EXPECT_EQ(lengthened({noteAt(50, 10, 14), noteAt(800, 300, 22), noteAt(850, 200, 7)}),
              (Durations{10, 300, 250}));
}

TEST(NoteGroups, ALastNoteThatStopsClosesItsGroup)
{
    EXPECT_EQ(lengthened({noteAt(50, 950, 0), noteAt(800, 10, 0)}), (Durations{950, 10}));
}

TEST(NoteGroups, StrokesAreGroupsOfTheirOwn)
{
    EXPECT_EQ(lengthened({noteAt(10, 1, 10), noteAt(20, 1, 11), noteAt(30, 1, 12),
                          noteAt(40, 1, 13), noteAt(900, 60, 10), noteAt(901, 60, 11),
                          noteAt(902, 60, 12), noteAt(903, 60, 13)}),
              (Durations{1, 1, 1, 1, 70, 80, 90, 100}));
}

TEST(NoteGroups, OtherKeysAndSilentNotesAreInNoGroup)
{
    EXPECT_EQ(lengthened({noteAt(100, 1, 8), noteAt(900, 60, 8), noteAt(900, 60, 9),
                          noteAt(900, 60, 23), noteAt(900, 60, 30)}),
              (Durations{1, 60, 60, 60, 60}));
    EXPECT_EQ(lengthened({noteAt(10, 1, 0, 0), noteAt(100, 1, 0), noteAt(900, 60, 0),
                          noteAt(910, 60, 0, 0)}),
              (Durations{1, 1, 160, 60}));
}

TEST(NoteGroups, ANoteBehindTheEndAndAnEndlessOneStay)
{
    EXPECT_EQ(lengthened({noteAt(100, 1, 0), noteAt(960, 50, 0)}), (Durations{1, 50}));
    EXPECT_EQ(lengthened({noteAt(100, 1, 0), noteAt(900, MfxEvent::kOpen, 0)}),
              (Durations{1, MfxEvent::kOpen}));
}

TEST(NoteGroups, AnEndlessLastNoteClosesItsGroup)
{
    EXPECT_EQ(lengthened({noteAt(100, 1, 0), noteAt(800, 300, 5), noteAt(900, MfxEvent::kOpen, 0)}),
              (Durations{1, 300, MfxEvent::kOpen}));
}
