#include "effect/CLooper.h"
#include "midi/MfxMaps.h"
#include "shared/System/kvStream.h"
#include "tests/effect/Fakes.h"

#include <gtest/gtest.h>

using namespace Korvanel;

namespace {

/// An effect without velocity processing.
struct Effect : CLooper
{
    explicit Effect(const CMidiTrack& track)
    {
        setVeloPlus(0);
        setRandomVelo(false);
        set_track(track);
    }

    CMidiTrack render(int repeat)
    {
        stringStream stream;
        SaveTrack(stream, repeat);
        stringStream in(stream.text());
        CMidiTrack track;
        EXPECT_EQ(track.Load(in, nullptr, nullptr), 0);
        return track;
    }
};

std::vector<std::int32_t> starts(const CMidiTrack& track)
{
    std::vector<std::int32_t> times;
    for (const MfxEvent& event : track.events)
        times.push_back(event.time);
    return times;
}

using Times = std::vector<std::int32_t>;

} // namespace

TEST(OfflineRender, RepeatsThePattern)
{
    Effect effect(pattern(240, {noteAt(0, 10), noteAt(480, 10)}));
    EXPECT_EQ(starts(effect.render(3)), (Times{0, 480, 960, 1440, 1920, 2400}));
}

TEST(OfflineRender, CutsNotesAtTheEnd)
{
    Effect effect(pattern(240, {noteAt(0, 10), noteAt(920, 40)}));
    const CMidiTrack track = effect.render(4);
    EXPECT_EQ(track.events.back().time, 3800);
    EXPECT_EQ(track.events.back().duration, 39u);
    EXPECT_EQ(track.events[1].duration, 40u);
}

TEST(OfflineRender, AnEndlessNoteIsCutToo)
{
    Effect effect(pattern(240, {noteAt(0, MfxEvent::kOpen), noteAt(900, 10, 61)}));
    EXPECT_EQ(effect.render(2).events[0].duration, 1919u);
}

TEST(OfflineRender, NoRepetitionIsAnEmptyTrack)
{
    Effect effect(pattern(240, {noteAt(0, 10)}));
    EXPECT_TRUE(effect.render(0).events.empty());
    EXPECT_TRUE(effect.render(-1).events.empty());
    EXPECT_TRUE(effect.render(INT32_MIN).events.empty());
}

TEST(OfflineRender, TheTempoTypeChangesHowOftenNotHowLong)
{
    Effect effect(pattern(240, {noteAt(0, 10), noteAt(480, 10)}));
    effect.TempoType(0);
    EXPECT_EQ(starts(effect.render(2)), (Times{0, 960}));
    effect.TempoType(2);
    EXPECT_EQ(starts(effect.render(1)), (Times{0, 240, 480, 720}));
}

TEST(OfflineRender, AppliesTheVelocityParametersButNoLiveShift)
{
    Effect effect(pattern(240, {noteAt(0, 10)}));
    effect.Initialize(nullptr);
    effect.Enable();
    effect.useVelocity(true);
    effect.usePitchWheel(true);
    ListQueue queue;
    queue.Insert(0, 0xBF, 127, 1);
    queue.Insert(0, 0xE0, 0, 0x20);
    effect.processInput(queue);
    ASSERT_TRUE(queue.events.empty());
    effect.setVeloPlus(-30);
    EXPECT_EQ(effect.render(1).events[0].velocity, 70);
    effect.Terminate();
}

TEST(OfflineRender, RandomVelocityDiffersEachTime)
{
    std::vector<MfxEvent> notes;
    for (int i = 0; i < 64; ++i)
        notes.push_back(noteAt(i * 10, 5));
    Effect effect(pattern(240, notes));
    effect.setRandomVelo(true);
    stringStream first;
    stringStream second;
    effect.SaveTrack(first, 1);
    effect.SaveTrack(second, 1);
    EXPECT_NE(first.text(), second.text());
}

TEST(OfflineRender, KeepsNameAndMeter)
{
    CMidiTrack track = pattern(240, {noteAt(0, 10)});
    track.numerator = 3;
    Effect effect(track);
    effect.SetPatternName("Name");
    const CMidiTrack rendered = effect.render(1);
    EXPECT_STREQ(rendered.name.c_str(), "Name");
    EXPECT_EQ(rendered.numerator, 3);
}

TEST(OfflineRender, KeepsThePlaceOfTheStylesName)
{
    Effect effect(pattern(240, {noteAt(0, 10)}));
    effect.SetPatternName("Name");
    effect.SetStyleName("Style");
    stringStream stream;
    effect.SaveTrack(stream, 1);
    const std::string field("\xff\x03\x0aName\0\0\0\0\0\0", 13); // a separator and five letters
    EXPECT_NE(stream.text().find(field), std::string::npos);
}

TEST(OfflineRender, TheHostsMapsAreAsked)
{
    struct Meter : IMfxMeterMap
    {
        void GetMeter(std::int32_t, std::int32_t* numerator, std::int32_t* power) const override
        {
            *numerator = 7;
            *power = 3;
        }
    } meter;

    struct Tempo : IMfxTempoMap
    {
        std::int32_t GetTempo(std::int32_t) const override { return 6000; }
    } tempo;

    struct Key : IMfxKeySigMap
    {
        std::int32_t GetKeySig(std::int32_t) const override { return -3; }
    } key;

    Effect effect(pattern(240, {noteAt(0, 10)}));
    stringStream stream;
    effect.save_track(stream, 1, &meter, &tempo, &key);
    stringStream in(stream.text());
    CMidiTrack track;
    track.Load(in, nullptr, nullptr);
    EXPECT_EQ(track.numerator, 7);
    EXPECT_EQ(track.denominator, 8);
    EXPECT_EQ(track.tempo, 1000000u);
    EXPECT_NE(stream.text().find(std::string("\xff\x59\x02\xfd\0", 5)), std::string::npos);
}

TEST(OfflineRender, LeavesTheEffectPlayingWhereItWas)
{
    Effect effect(pattern(480, {noteAt(0, 10), noteAt(960, 10)}));
    effect.Initialize(nullptr);
    effect.Enable();
    ListQueue queue;
    effect.process(0, 499, queue);
    effect.render(5);
    effect.process(500, 1919, queue);
    EXPECT_EQ(queue.events.size(), 2u);
    effect.Terminate();
}
