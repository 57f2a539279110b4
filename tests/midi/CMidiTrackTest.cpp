#include "midi/CMidiTrack.h"

#include "tests/midi/MidiBytes.h"

#include <gtest/gtest.h>

using namespace Korvanel;

namespace {

CMidiTrack trackOf(const std::vector<MfxEvent>& events)
{
    CMidiTrack track;
    for (const MfxEvent& event : events)
        track.insert(event);
    return track;
}

std::vector<std::int32_t> times(const CMidiTrack& track)
{
    std::vector<std::int32_t> all;
    for (const MfxEvent& event : track.events)
        all.push_back(event.time);
    return all;
}

std::vector<int> keys(const CMidiTrack& track)
{
    std::vector<int> all;
    for (const MfxEvent& event : track.events)
        all.push_back(event.key);
    return all;
}

std::array<bool, 128> only(int key)
{
    std::array<bool, 128> keep{};
    keep[static_cast<std::size_t>(key)] = true;
    return keep;
}

} // namespace

TEST(CMidiTrack, ANewTrackIsEmptyIn44)
{
    const CMidiTrack track;
    EXPECT_EQ(track.barLength(), 960);
    EXPECT_EQ(track.numberOfBars(), 0);
    EXPECT_EQ(track.numberOfBeatsPerBar(), 4);
    EXPECT_EQ(track.GetFirst(), -1);
    EXPECT_EQ(track.GetLast(), -1);
    EXPECT_EQ(track.GetKey(0), -1);
    EXPECT_EQ(track.lastTick, -1);
}

TEST(CMidiTrack, BarsHoldTheLastEnd)
{
    CMidiTrack track;
    track.numerator = 3;
    track.lastTick = 721;
    EXPECT_EQ(track.numberOfBars(), 2);
    track.lastTick = 720;
    EXPECT_EQ(track.numberOfBars(), 1);
}

TEST(CMidiTrack, AnEmptyTrackHasNoBarsHoweverShortTheyAre)
{
    CMidiTrack track;
    track.numerator = 1;
    track.ticksPerQuarter = 1;
    ASSERT_EQ(track.barLength(), 1);
    EXPECT_EQ(track.numberOfBars(), 0);
    track.insert(note(0, 60, 3));
    EXPECT_EQ(track.numberOfBars(), 3);
}

TEST(CMidiTrack, AMeterWithoutABarHasNoBars)
{
    CMidiTrack track = trackOf({note(0, 60, 100)});
    track.denominator = 0;
    EXPECT_EQ(track.barLength(), 0);
    EXPECT_EQ(track.numberOfBars(), 0);
}

TEST(CMidiTrack, InsertingKeepsTheOrderAndTheArrivalOfEqualTimes)
{
    const CMidiTrack track =
        trackOf({note(100, 1, 1), note(0, 2, 1), note(100, 3, 1), note(50, 4, 1)});
    EXPECT_EQ(keys(track), (std::vector<int>{2, 4, 1, 3}));
}

TEST(CMidiTrack, InsertingKeepsTheCensus)
{
    const CMidiTrack track =
        trackOf({note(0, 60, 100), note(10, 40, 500), note(20, 60, 1), controller(900, 1, 1)});
    EXPECT_EQ(track.lowKey, 40);
    EXPECT_EQ(track.highKey, 60);
    EXPECT_EQ(track.keyCount, 2);
    EXPECT_EQ(track.lastTick, 900);
    EXPECT_EQ(track.GetLen(), 3);
}

TEST(CMidiTrack, AnOpenNoteEndsWhereItStarts)
{
    const CMidiTrack track = trackOf({note(100, 60, MfxEvent::kOpen)});
    EXPECT_EQ(track.lastTick, 100);
}

TEST(CMidiTrack, AnEndPastTheScaleStopsAtItsEnd)
{
    const CMidiTrack track = trackOf({note(INT32_MAX - 1, 60, 100)});
    EXPECT_EQ(track.lastTick, INT32_MAX);
}

TEST(CMidiTrack, KeysAbove127AreKeptButNotCounted)
{
    const CMidiTrack track = trackOf({note(0, 200, 10)});
    EXPECT_EQ(track.events.size(), 1u);
    EXPECT_EQ(track.keyCount, 0);
    EXPECT_EQ(track.lastTick, 10);
}

TEST(CMidiTrack, FirstAndLastAreStartsOfNotes)
{
    const CMidiTrack track =
        trackOf({controller(0, 1, 1), note(10, 60, 5), note(20, 60, 50), controller(30, 1, 1)});
    EXPECT_EQ(track.GetFirst(), 10);
    EXPECT_EQ(track.GetLast(), 20);
}

TEST(CMidiTrack, RanksPresentKeys)
{
    const CMidiTrack track = trackOf({note(0, 60, 1), note(0, 36, 1), note(0, 127, 1)});
    EXPECT_EQ(track.GetNumOfKey(36), 0);
    EXPECT_EQ(track.GetNumOfKey(127), 2);
    EXPECT_EQ(track.GetNumOfKey(61), -1);
    EXPECT_EQ(track.GetNumOfKey(128), -1);
    EXPECT_EQ(track.GetKey(1), 60);
    EXPECT_EQ(track.GetKey(3), -1);
    EXPECT_EQ(track.GetKey(-1), -1);
    EXPECT_EQ(track.GetInstruments(), 3);
}

TEST(CMidiTrack, MapsKeysToInstrumentSlots)
{
    std::array<char, 128> map{};
    map[36] = 1;
    map[38] = 33; // slot 1 again
    map[42] = 31;
    EXPECT_EQ(trackOf({note(0, 36, 1), note(0, 38, 1)}).GetInstrumentMask(map.data()), 2u);
    EXPECT_EQ(trackOf({note(0, 42, 1)}).GetInstrumentMask(map.data()), 0x80000000u);
}

TEST(CMidiTrack, FourOnTheFloorHasItsMask)
{
    const CMidiTrack track =
        trackOf({note(0, 36, 9), note(240, 36, 9), note(480, 36, 9), note(720, 36, 9)});
    int count = 0;
    EXPECT_EQ(track.GetMask(16, 16, &count), 0x8888u);
    EXPECT_EQ(count, 4);
}

TEST(CMidiTrack, ANoteUpToAQuarterStepEarlyCountsForTheNext)
{
    EXPECT_EQ(trackOf({note(44, 36, 1)}).GetMask(16, 16, nullptr), 0x8000u); // a step is 60
    EXPECT_EQ(trackOf({note(45, 36, 1)}).GetMask(16, 16, nullptr), 0x4000u);
}

TEST(CMidiTrack, TheMaskStopsAtTheFirstNoteBehindIt)
{
    EXPECT_EQ(trackOf({note(0, 36, 1), note(960, 36, 1)}).GetMask(16, 16, nullptr), 0x8000u);
    EXPECT_EQ(CMidiTrack().GetMask(0, 16, nullptr), 0u);
}

TEST(CMidiTrack, CountsKeysInGroups)
{
    const CMidiTrack track = trackOf({note(0, 36, 1), note(0, 38, 1), note(0, 50, 1)});
    const LGroups groups[2] = {{0, {36, 38, 40}}, {0, {38, 1, 2, 3, 4, 5, 6, 7}}};
    int counts[3] = {9, 9, 9};
    track.CountLGroups(groups, 2, counts);
    EXPECT_EQ(counts[0], 2);
    EXPECT_EQ(counts[1], 1);
    EXPECT_EQ(counts[2], 1); // key 50
}

TEST(CMidiTrack, RhythmWeighsShortIntervalsMore)
{
    // Intervals 60, 120, 240, 480, 960 and a chord, in classes 0, 1, 2, 3, 4 and 0.
    const CMidiTrack track =
        trackOf({note(0, 1, 1), note(60, 1, 1), note(180, 1, 1), note(420, 1, 1), note(900, 1, 1),
                 note(1860, 1, 1), note(1860, 2, 1)});
    std::int32_t histogram = 0;
    EXPECT_EQ(track.GetRhythmComplexity(histogram), 2 * 8 + 6 + 4 + 2 + 1);
    EXPECT_EQ(histogram, 0x21111);
}

TEST(CMidiTrack, RhythmOfOneNoteIsNothing)
{
    std::int32_t histogram = 5;
    EXPECT_EQ(trackOf({note(0, 1, 1)}).GetRhythmComplexity(histogram), 0);
    EXPECT_EQ(histogram, 0);
}

TEST(CMidiTrack, ClearingKeepsTheFrame)
{
    CMidiTrack track = trackOf({note(0, 60, 1)});
    track.name = "x";
    track.ticksPerQuarter = 96;
    track.tempo = 1;
    track.Clear();
    EXPECT_TRUE(track.events.empty());
    EXPECT_FALSE(track.name.exists());
    EXPECT_EQ(track.keyCount, 0);
    EXPECT_EQ(track.ticksPerQuarter, 96);
    EXPECT_EQ(track.tempo, 1u);
}

TEST(CMidiTrack, ACopyIsDeep)
{
    CMidiTrack track = trackOf({note(0, 60, 1)});
    track.name = "a";
    track.subName = "b";
    const CMidiTrack copy = track;
    track.name = "changed";
    track.events[0].key = 1;
    EXPECT_STREQ(copy.name.c_str(), "a");
    EXPECT_STREQ(copy.subName.c_str(), "b");
    EXPECT_EQ(copy.events[0].key, 60);
    EXPECT_EQ(copy.keyCount, 1);
}

TEST(CMidiTrack, DeletingARecordRecounts)
{
    CMidiTrack track = trackOf({note(0, 60, 1), note(10, 62, 1)});
    auto at = track.events.begin();
    track.Delete(at);
    EXPECT_EQ(at->key, 62);
    EXPECT_EQ(track.lowKey, 62);
    EXPECT_EQ(track.keyCount, 1);
}

TEST(CMidiTrack, CopyTakesKeptNotesAndTheFrameButNoNames)
{
    CMidiTrack source = trackOf({note(0, 60, 1), note(5, 61, 1), controller(7, 1, 1)});
    source.name = "source";
    source.ticksPerQuarter = 480;
    source.numerator = 3;
    CMidiTrack track = trackOf({note(0, 1, 1)});
    track.name = "old";
    track.Copy(source, only(61).data());
    EXPECT_EQ(times(track), (std::vector<std::int32_t>{5, 7}));
    EXPECT_FALSE(track.name.exists());
    EXPECT_EQ(track.ticksPerQuarter, 480);
    EXPECT_EQ(track.numerator, 3);
    EXPECT_EQ(track.keyCount, 1);
    track.Copy(source, nullptr);
    EXPECT_EQ(track.events.size(), 3u);
}

TEST(CMidiTrack, CopyingItselfKeepsItsEvents)
{
    CMidiTrack track = trackOf({note(0, 60, 1)});
    track.Copy(track, nullptr);
    EXPECT_EQ(track.events.size(), 1u);
}

TEST(CMidiTrack, FilterErasesNotesOfOtherKeys)
{
    CMidiTrack track = trackOf({note(0, 60, 1), note(5, 61, 1), controller(7, 1, 1)});
    track.Filter(only(61).data());
    EXPECT_EQ(times(track), (std::vector<std::int32_t>{5, 7}));
    EXPECT_EQ(track.lowKey, 61);
}

TEST(CMidiTrack, AppliesAKeyMap)
{
    std::array<char, 128> map{};
    map[60] = 40;
    CMidiTrack track = trackOf({note(0, 60, 1)});
    track.ApplyMap(map.data());
    EXPECT_EQ(track.lowKey, 40);
    EXPECT_EQ(track.keyPresent[60], 0);
}

TEST(CMidiTrack, TransposingANoteLeavesTheCensus)
{
    CMidiTrack track = trackOf({note(0, 60, 1)});
    track.TransposeNote(60, 61);
    EXPECT_EQ(track.events[0].key, 61);
    EXPECT_EQ(track.lowKey, 60);
    EXPECT_EQ(track.keyPresent[61], 0);
}

TEST(CMidiTrack, FixedLengthSetsEveryNote)
{
    CMidiTrack track = trackOf({note(0, 60, 1), note(10, 60, 500)});
    track.FixedLength(30);
    EXPECT_EQ(track.events[1].duration, 30u);
    EXPECT_EQ(track.lastTick, 40);
}

TEST(CMidiTrack, QuantizeMovesToTheNearestGrid)
{
    CMidiTrack track = trackOf({note(59, 60, 10), note(60, 61, 10)});
    track.Quantize(120, 960);
    EXPECT_EQ(times(track), (std::vector<std::int32_t>{0, 120}));
}

TEST(CMidiTrack, QuantizeErasesAtTheEndAndCutsThere)
{
    CMidiTrack track = trackOf({note(800, 60, 500), note(900, 61, 10)});
    track.Quantize(120, 960);
    ASSERT_EQ(times(track), (std::vector<std::int32_t>{840})); // 900 went to 960, the end
    EXPECT_EQ(track.events[0].duration, 119u);
}

TEST(CMidiTrack, QuantizeKeepsTheListInOrder)
{
    CMidiTrack track = trackOf({note(50, 60, 1), controller(70, 1, 1), note(70, 61, 1)});
    track.Quantize(120, 960);
    EXPECT_EQ(times(track), (std::vector<std::int32_t>{0, 70, 120}));
    track.Quantize(0, 960);
    EXPECT_EQ(times(track), (std::vector<std::int32_t>{0, 70, 120}));
}

TEST(CMidiTrack, EmptyBarsAreEaten)
{
    CMidiTrack track = trackOf({controller(100, 1, 1), note(2000, 60, 1)});
    track.EatEmptyBars(960);
    EXPECT_EQ(times(track), (std::vector<std::int32_t>{0, 80}));
    track.EatEmptyBars(960);
    EXPECT_EQ(times(track), (std::vector<std::int32_t>{0, 80}));
}

TEST(CMidiTrack, EatingNothingDoesNotRecount)
{
    CMidiTrack track = trackOf({note(0, 60, 10)});
    track.lastTick = 5000;
    track.EatEmptyBars(960);
    EXPECT_EQ(track.lastTick, 5000);
    CMidiTrack silent = trackOf({controller(2000, 1, 1)});
    silent.EatEmptyBars(960);
    EXPECT_EQ(times(silent), (std::vector<std::int32_t>{2000}));
}

TEST(CMidiTrack, SliceCutsAndMoves)
{
    CMidiTrack track =
        trackOf({note(0, 60, 1), note(240, 61, 1000), note(480, 62, 10), note(720, 63, 10)});
    track.Slice(1, 2, 2); // quarters 1 and 2, to the third
    EXPECT_EQ(times(track), (std::vector<std::int32_t>{480, 720}));
    EXPECT_EQ(track.events[0].duration, 480u);
    EXPECT_EQ(track.lastTick, 4 * 240);
    EXPECT_EQ(track.lowKey, 60); // the census is not recounted
}

TEST(CMidiTrack, SliceWithoutALengthTakesTheRest)
{
    CMidiTrack track = trackOf({note(0, 60, 1), note(240, 61, 1000)});
    track.Slice(1, 0, 0);
    EXPECT_EQ(times(track), (std::vector<std::int32_t>{0}));
    EXPECT_EQ(track.lastTick, 1000);
}

TEST(CMidiTrack, SliceFromBeforeTheStartTakesEverything)
{
    CMidiTrack track = trackOf({note(-100, 60, 10), note(0, 61, 10)});
    track.Slice(-1, 0, 0); // a quarter is 240
    EXPECT_EQ(times(track), (std::vector<std::int32_t>{140, 240}));
    EXPECT_EQ(track.events[0].duration, 10u);
    EXPECT_EQ(track.lastTick, 250);
}

TEST(CMidiTrack, SliceEndsAnOpenNoteAtItsEndOnly)
{
    CMidiTrack track = trackOf({note(0, 60, MfxEvent::kOpen), controller(10, 1, 1)});
    CMidiTrack rest = track;
    track.Slice(0, 0, 2);
    EXPECT_EQ(track.events[0].duration, 480u);
    rest.Slice(0, 0, 0);
    EXPECT_EQ(rest.events[0].duration, MfxEvent::kOpen);
    EXPECT_EQ(rest.lastTick, 10);
}

TEST(CMidiTrack, AnEmptySliceHasNoLastTick)
{
    CMidiTrack track = trackOf({note(0, 60, 1)});
    track.Slice(5, 0, 4);
    EXPECT_TRUE(track.events.empty());
    EXPECT_EQ(track.lastTick, -1);
}

TEST(CMidiTrack, OfTwoDoublesTheLaterStays)
{
    CMidiTrack track = trackOf({note(0, 60, 1), note(5, 60, 2), note(100, 60, 3), note(5, 61, 4)});
    track.DeleteDoubles(10);
    EXPECT_EQ(times(track), (std::vector<std::int32_t>{5, 5, 100}));
}

TEST(CMidiTrack, DeletingDoublesWithoutGroupsLeavesTheStatistics)
{
    CMidiTrack track = trackOf({note(0, 60, 100), note(5, 60, 2)});
    track.DeleteDoubles(10);
    EXPECT_EQ(track.lastTick, 100); // the erased note's end
    track.DeleteDoubles(10, nullptr, true);
    EXPECT_EQ(track.lastTick, 7);
}

TEST(CMidiTrack, ANoteThatWouldMeetItsGroupIsErased)
{
    const MonoGroup groups[] = {{2, {42, 46}}, {0, {}}};
    CMidiTrack track = trackOf({note(0, 40, 1), note(5, 42, 1), note(100, 40, 1)});
    track.TransposeNote(40, 46, groups, 10, false);
    EXPECT_EQ(keys(track), (std::vector<int>{42, 46}));
    EXPECT_EQ(times(track), (std::vector<std::int32_t>{5, 100}));
    EXPECT_EQ(track.highKey, 46);
}

TEST(CMidiTrack, AGroupSoundsOnlyWithAllButOneOfItsMembers)
{
    const MonoGroup groups[] = {{3, {42, 44, 46}}, {0, {}}};
    CMidiTrack one = trackOf({note(0, 40, 1), note(5, 42, 1)});
    one.TransposeNote(40, 46, groups, 10, false);
    EXPECT_EQ(keys(one), (std::vector<int>{46, 42}));
    CMidiTrack both = trackOf({note(0, 40, 1), note(5, 42, 1), note(6, 44, 1)});
    both.TransposeNote(40, 46, groups, 10, false);
    EXPECT_EQ(keys(both), (std::vector<int>{42, 44}));
}

TEST(CMidiTrack, MembersOnBothSidesAreNotAddedUp)
{
    const MonoGroup groups[] = {{3, {42, 44, 46}}, {0, {}}};
    CMidiTrack track = trackOf({note(0, 42, 1), note(5, 40, 1), note(8, 44, 1)});
    track.TransposeNote(40, 46, groups, 10, false);
    EXPECT_EQ(keys(track), (std::vector<int>{42, 46, 44}));
}

TEST(CMidiTrack, ADoubleOfTheNewKeyOnEitherSideErasesTheNote)
{
    CMidiTrack track = trackOf({note(0, 40, 1), note(10, 46, 1), note(20, 40, 1), note(31, 40, 1)});
    track.TransposeNote(40, 46, nullptr, 10, true);
    EXPECT_EQ(times(track), (std::vector<std::int32_t>{10, 31}));
    EXPECT_EQ(track.keyCount, 1);
    CMidiTrack unchecked = trackOf({note(0, 40, 1), note(10, 46, 1)});
    unchecked.TransposeNote(40, 46, nullptr, 10, false);
    EXPECT_EQ(times(unchecked), (std::vector<std::int32_t>{0, 10}));
}

TEST(CMidiTrack, WithTheCheckOnNotesOfTheNewKeyAreNoMembersOfItsGroup)
{
    const MonoGroup groups[] = {{2, {42, 46}}, {0, {}}};
    CMidiTrack track = trackOf({note(0, 46, 1), note(5, 46, 2), note(100, 42, 3)});
    track.DeleteDoubles(10, groups, false); // the two count as each other's group: both go
    EXPECT_EQ(times(track), (std::vector<std::int32_t>{5, 100}));
    CMidiTrack checked = trackOf({note(0, 46, 1), note(50, 46, 2), note(55, 42, 3)});
    checked.TransposeNote(46, 46, groups, 10, true);
    EXPECT_EQ(times(checked), (std::vector<std::int32_t>{0, 55}));
}

TEST(CMidiTrack, AGroupOfOneAlwaysSounds)
{
    const MonoGroup groups[] = {{1, {46}}, {0, {}}};
    CMidiTrack track = trackOf({note(0, 40, 1), note(0, 41, 1)});
    track.TransposeNote(40, 46, groups, 10, false);
    EXPECT_EQ(keys(track), (std::vector<int>{41}));
}
