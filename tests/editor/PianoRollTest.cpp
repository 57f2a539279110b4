#include "editor/PianoRoll.h"

#include "editor/CursorColumn.h"
#include "tests/effect/Fakes.h"

#include <gtest/gtest.h>

#include <vector>

using Korvanel::CMidiTrack;
using Korvanel::Color;
using Korvanel::Rect;

namespace {

CMidiTrack withKeys(const std::vector<int>& keys)
{
    std::vector<MfxEvent> notes;
    for (const int key : keys)
        notes.push_back(noteAt(0, 960, key));
    return pattern(240, notes);
}

std::vector<int> rowsOf(const CMidiTrack& track, const std::vector<int>& keys)
{
    const KeyRows rows(track);
    std::vector<int> result;
    for (const int key : keys)
        result.push_back(rows.rowOf(key));
    return result;
}

using Rows = std::vector<int>;

} // namespace

TEST(KeyRows, AreAtLeastFive)
{
    EXPECT_EQ(KeyRows(CMidiTrack()).count(), 5);
    EXPECT_EQ(KeyRows(withKeys({36, 38, 42})).count(), 5);
    EXPECT_EQ(KeyRows(withKeys({36, 38, 42, 46, 49, 51})).count(), 6);
}

TEST(KeyRows, GoUpWithTheKeys)
{
    const CMidiTrack track = withKeys({60, 36, 48});
    EXPECT_EQ(rowsOf(track, {36, 48, 60}), (Rows{0, 1, 2}));
}

TEST(KeyRows, AKeyThatIsNotThereHasNone)
{
    EXPECT_EQ(KeyRows(withKeys({60})).rowOf(61), -1);
    EXPECT_EQ(KeyRows(withKeys({60})).rowOf(200), -1);
}

TEST(KeyRows, AVariantSharesItsStrokesRow)
{
    const CMidiTrack track = withKeys({4, 6, 8, 40, 41, 42, 43});
    EXPECT_EQ(KeyRows(track).count(), 6);
    EXPECT_EQ(rowsOf(track, {4, 6, 8, 40}), (Rows{0, 0, 1, 2}));
}

TEST(KeyRows, EveryFoldTakesARowAway)
{
    const CMidiTrack track = withKeys({4, 5, 6, 7, 8, 9, 17, 18, 19, 20, 21, 22, 40});
    EXPECT_EQ(KeyRows(track).count(), 9);
    EXPECT_EQ(rowsOf(track, {4, 5, 6, 7, 8, 9, 17, 18, 19, 20, 21, 22, 40}),
              (Rows{0, 1, 0, 1, 2, 3, 4, 5, 4, 5, 6, 7, 8}));
}

TEST(KeyRows, AVariantWithoutItsStrokeSharesTheNextRow)
{
    // the row is given up, but there is no stroke to move to
    const CMidiTrack track = withKeys({6, 8, 40, 41, 42, 43});
    EXPECT_EQ(KeyRows(track).count(), 5);
    EXPECT_EQ(rowsOf(track, {6, 8, 40}), (Rows{0, 0, 1}));
}

TEST(KeyRows, AVariantWithoutTheKeyAboveLeavesItsRowEmpty)
{
    // the note moves to its stroke's row, and its own row remains
    const CMidiTrack track = withKeys({4, 6, 40, 41, 42, 43});
    EXPECT_EQ(KeyRows(track).count(), 6);
    EXPECT_EQ(rowsOf(track, {4, 6, 40}), (Rows{0, 0, 2}));
}

TEST(NoteColor, FollowsTheKey)
{
    const Color red{0x8000, 0, 0};
    const Color pale{0x4000, 0x8000, 0x4000};
    const Color olive{0x8000, 0x8000, 0};
    const Color green{0, 0x8000, 0};
    const Color teal{0, 0x8000, 0x8000};
    const Color black{};
    const std::vector<Color> expected{black, pale,  pale,  pale,  pale,  pale,  red,   red,
                                      olive, olive, olive, olive, olive, olive, green, green,
                                      green, green, green, red,   red,   teal,  teal,  black};
    for (int key = 0; key < 24; ++key)
        EXPECT_EQ(noteColor(key), expected[static_cast<std::size_t>(key)]) << key;
    EXPECT_EQ(noteColor(127), black);
}

TEST(RollLayout, HasAnEighthOfHeaderAndRowsCentredBeneath)
{
    // 87 high: header 10, note area 77; five rows of 15 leave two pixels, one of them below
    const RollLayout layout(withKeys({36, 38, 42}), {3, 5, 100, 87}, 5);
    EXPECT_EQ(layout.headerBottom(), 15);
    EXPECT_EQ(layout.bottom(), 92);
    EXPECT_EQ(layout.noteArea(), 77);
    EXPECT_EQ(layout.rowHeight(), 15);
    EXPECT_EQ(layout.rowTop(0), 76);
    EXPECT_EQ(layout.rowTop(1), 61);
    EXPECT_EQ(layout.rowTop(4), 16);
}

TEST(RollLayout, ATickIsItsShareOfTheWidth)
{
    const RollLayout layout(pattern(240, {noteAt(0, 1000)}), {7, 0, 100, 80}, 5); // two bars
    EXPECT_EQ(layout.xOf(0), 7);
    EXPECT_EQ(layout.xOf(960), 57);
    EXPECT_EQ(layout.xOf(1919), 106);
    EXPECT_EQ(layout.noteAt(noteAt(960, 480), 0), (Rect{57, 66, 25, 14}));
}

TEST(RollLayout, AShortNoteIsStillAPixel)
{
    const RollLayout layout(pattern(240, {noteAt(0, 960)}), {0, 0, 100, 4}, 5);
    EXPECT_EQ(layout.rowHeight(), 0);
    EXPECT_EQ(layout.noteAt(noteAt(480, 1), 0), (Rect{50, 2, 1, 1}));
}

TEST(RollLayout, ANoteWithoutAnEndLastsUntilThePatternsEnd)
{
    const RollLayout layout(pattern(240, {noteAt(0, 960)}), {10, 0, 100, 80}, 5);
    EXPECT_EQ(layout.noteAt(noteAt(480, MfxEvent::kOpen), 0), (Rect{60, 66, 50, 14}));
}

TEST(RollLayout, APatternWithoutBarsHasNoTime)
{
    EXPECT_FALSE(RollLayout(CMidiTrack(), {0, 0, 100, 80}, 5).hasTime());
    CMidiTrack damaged = pattern(240, {noteAt(0)});
    damaged.denominator = 0;
    EXPECT_FALSE(RollLayout(damaged, {0, 0, 100, 80}, 5).hasTime());
    damaged.denominator = -32768;
    EXPECT_FALSE(RollLayout(damaged, {0, 0, 100, 80}, 5).hasTime());
    damaged.numerator = -4;
    damaged.denominator = -4;
    EXPECT_LE(RollLayout(damaged, {0, 0, 100, 80}, 5).beats(), 0);
}

TEST(RollLayout, BeatsOfUnevenMetersAreCutToTicks)
{
    CMidiTrack track = pattern(100, {noteAt(0, 349)}); // 7/8 at 100: 350 ticks, 50 to the beat
    track.numerator = 7;
    track.denominator = 8;
    const RollLayout layout(track, {0, 0, 350, 80}, 5);
    EXPECT_EQ(layout.beats(), 7);
    EXPECT_EQ(layout.xOfBeat(3), 150);

    track.ticksPerQuarter = 25; // 87 ticks to the bar
    track.events[0].duration = 87;
    track.updateKeysStat();
    EXPECT_EQ(RollLayout(track, {0, 0, 87, 80}, 5).xOfBeat(3), 37); // 37.3
}

TEST(RollLayout, TheNextBeatIsTheOneInAnotherColumn)
{
    const RollLayout wide(pattern(240, {noteAt(0, 960)}), {0, 0, 100, 80}, 5);
    EXPECT_EQ(wide.beatAfter(0), 1);
    EXPECT_EQ(wide.beatAfter(3), 4);

    const RollLayout narrow(pattern(240, {noteAt(0, 960 * 25)}), {0, 0, 10, 80}, 5);
    EXPECT_EQ(narrow.beats(), 100);
    EXPECT_EQ(narrow.beatAfter(0), 10);
    EXPECT_EQ(narrow.beatAfter(95), 100);
}

TEST(RollLayout, ABillionBeatsAreNoMoreThanTheColumns)
{
    CMidiTrack damaged = pattern(1, {noteAt(2000000000)});
    damaged.numerator = 255;
    damaged.denominator = 1020; // a bar of one tick
    const RollLayout layout(damaged, {0, 0, 50, 80}, 5);
    ASSERT_GT(layout.beats(), 500000000000);
    int columns = 0;
    for (std::int64_t beat = 0; beat < layout.beats(); beat = layout.beatAfter(beat))
        ++columns;
    EXPECT_EQ(columns, 50);
}

TEST(CursorColumn, IsTheTicksShareOfTheWidth)
{
    EXPECT_EQ(cursorColumn(686, 0, 960), 0);
    EXPECT_EQ(cursorColumn(686, 480, 960), 343);
    EXPECT_EQ(cursorColumn(686, 959, 960), 685);
    EXPECT_EQ(cursorColumn(30000, 2000000000, 2147483647), 27939);
}

TEST(CursorColumn, OfAPatternWithoutLengthIsTheLeftEdge)
{
    EXPECT_EQ(cursorColumn(686, 0, 1), 0);
    EXPECT_EQ(cursorColumn(686, -100, 1), 0);
    EXPECT_EQ(cursorColumn(686, 5, 0), 0);
    EXPECT_EQ(cursorColumn(686, 5, -7), 0);
}
