#include "midi/MfxMaps.h"
#include "midi/MidiFile.h"
#include "midi/TrackDecoder.h"
#include "tests/midi/MidiBytes.h"
#include "tests/midi/NaiveReader.h"

#include <gtest/gtest.h>

#include <random>

using namespace Korvanel;

namespace {

Bytes trackBytes(const Bytes& file)
{
    return {file.begin() + 22, file.end()};
}

/// What stands in front of the events of a 4/4 track at 120 BPM.
const Bytes kHead{0, 0xFF, 0x58, 4, 4,    2,    24, 8,    0,    0xFF, 0x59,
                  2, 0,    0,    0, 0xFF, 0x51, 3,  0x07, 0xA1, 0x20};

Bytes events(const CMidiTrack& track)
{
    const Bytes all = trackBytes(save(track));
    EXPECT_EQ(Bytes(all.begin(), all.begin() + 21), kHead);
    return {all.begin() + 21, all.end() - 4};
}

bool same(const MfxEvent& a, const MfxEvent& b)
{
    return std::memcmp(&a, &b, sizeof a) == 0;
}

/// The loader's rules applied to one block with the public byte-by-byte readers.
std::vector<MfxEvent> decodeStepByStep(_track& block)
{
    std::vector<MfxEvent> events;
    Pkt pkt{};
    short running = 0;
    std::int64_t now = 0;
    for (std::uint32_t pos = 0; pos < block.length;) {
        now = std::min<std::int64_t>(now + read_delta(block.data, pos), INT32_MAX);
        if (!read_event(block.data, pos, pkt, running, nullptr, nullptr))
            continue;
        if (pkt.IsNoteOff()) {
            const auto open =
                std::find_if(events.begin(), events.end(), [&](const MfxEvent& event) {
                    return event.isNote() && event.duration == MfxEvent::kOpen &&
                           event.key == pkt.data1 && event.channel == (pkt.status & 15);
                });
            if (open != events.end())
                open->duration = static_cast<std::uint32_t>(now - open->time);
            continue;
        }
        MfxEvent event = pkt;
        if (event.type == MfxEvent::NotChannel)
            continue;
        event.time = static_cast<std::int32_t>(now);
        if (event.isNote())
            event.duration = MfxEvent::kOpen;
        events.push_back(event);
    }
    return events;
}

void expectSameDecoding(const Bytes& data)
{
    MIDIFILE file;
    mf_init(&file);
    _track* block = mf_add_track(&file);
    mf_add_tblk(block, static_cast<std::uint32_t>(data.size()));
    std::copy(data.begin(), data.end(), block->data);
    block->length = block->capacity;
    std::vector<MfxEvent> decoded;
    OwnedText name;
    OwnedText subName;
    TrackDecoder(*block, decoded, name, subName).decode();
    const std::vector<MfxEvent> expected = decodeStepByStep(*block);
    EXPECT_TRUE(std::equal(decoded.begin(), decoded.end(), expected.begin(), expected.end(), same));
    mf_free(&file);
}

} // namespace

// Loading -----------------------------------------------------------------------------------------

TEST(TrackFile, ATempoTrackInFrontGivesMeterAndTempo)
{
    const Bytes conductor =
        Bytes{0, 0xFF, 0x58, 4, 3, 2, 24, 8, 0, 0xFF, 0x51, 3, 0x09, 0x27, 0xC0} + kTrackEnd;
    const Bytes ignored = Bytes{0, 0xFF, 0x58, 4, 7, 3, 24, 8} + oneNote(100) + kTrackEnd;
    CMidiTrack track;
    ASSERT_EQ(load(track, midiFile(96, {conductor, kTrackEnd, ignored})), 0);
    EXPECT_EQ(track.numerator, 3);
    EXPECT_EQ(track.denominator, 4);
    EXPECT_EQ(track.beatUnit, 4);
    EXPECT_EQ(track.tempo, 600000u);
    EXPECT_EQ(track.ticksPerQuarter, 96);
    EXPECT_EQ(track.GetLen(), 1);
}

TEST(TrackFile, TheLastTrackWithNotesIsThePattern)
{
    const Bytes high = Bytes{0, 0x90, 80, 1, 9, 0x80, 80, 0} + kTrackEnd;
    CMidiTrack track;
    ASSERT_EQ(load(track,
                   midiFile(96, {oneNote(1) + kTrackEnd, oneNote(1) + kTrackEnd, high, kTrackEnd})),
              0);
    EXPECT_EQ(track.lowKey, 80);
}

TEST(TrackFile, TheFirstMeterAndTempoOfTheTrackCount)
{
    const Bytes data = Bytes{0, 0xFF, 0x58, 4,    6, 3, 24, 8, 0, 0xFF, 0x58, 4, 2, 2, 24,
                             8, 0,    0xFF, 0x51, 3, 0, 0,  1, 0, 0xFF, 0x51, 3, 0, 0, 2} +
                       oneNote(1);
    CMidiTrack track;
    ASSERT_EQ(load(track, midiFile(96, {data})), 0);
    EXPECT_EQ(track.numerator, 6);
    EXPECT_EQ(track.denominator, 8);
    EXPECT_EQ(track.tempo, 1u);
}

TEST(TrackFile, AMeterOnTheStatusOfAnotherEventIsNone)
{
    const Bytes data = Bytes{0, 0xFF, 1, 0, 0, 0x58, 4, 7, 4, 24, 8};
    CMidiTrack track;
    ASSERT_EQ(load(track, midiFile(96, {data + oneNote(1)})), 0);
    EXPECT_EQ(track.numerator, 4);
    EXPECT_EQ(track.denominator, 4);
    ASSERT_EQ(load(track, midiFile(96, {data + kTrackEnd, oneNote(1)})), 0);
    EXPECT_EQ(track.numerator, 4); // alike when the notes are on another track
}

TEST(TrackFile, ATempoOnTheStatusOfAnotherEventCounts)
{
    const Bytes data = Bytes{0, 0xFF, 1, 0, 0, 0x51, 3, 0x09, 0x27, 0xC0};
    CMidiTrack track;
    ASSERT_EQ(load(track, midiFile(96, {data + oneNote(1)})), 0);
    EXPECT_EQ(track.tempo, 600000u);
    ASSERT_EQ(load(track, midiFile(96, {data + kTrackEnd, oneNote(1)})), 0);
    EXPECT_EQ(track.tempo, 600000u);
}

TEST(TrackFile, PressureAndWheelKeepTheirValues)
{
    const Bytes data{0, 0xA2, 60, 70, 1, 0xD2, 71, 1, 0xE2, 127, 127, 1, 0xE2, 0, 0};
    CMidiTrack track;
    ASSERT_EQ(load(track, midiFile(240, {data + kTrackEnd})), 0);
    ASSERT_EQ(track.events.size(), 4u);
    EXPECT_EQ(track.events[0].type, MfxEvent::KeyAftertouch);
    EXPECT_EQ(track.events[0].key, 60);
    EXPECT_EQ(track.events[0].amount, 70);
    EXPECT_EQ(track.events[1].type, MfxEvent::ChannelAftertouch);
    EXPECT_EQ(track.events[1].amount, 71);
    EXPECT_EQ(track.events[2].wheel(), 8191);
    EXPECT_EQ(track.events[3].wheel(), -8192);
    EXPECT_EQ(track.events[3].channel, 2);
    EXPECT_EQ(events(track), data);
}

TEST(TrackFile, ANoteWithoutAnEndStaysOpen)
{
    CMidiTrack track;
    ASSERT_EQ(load(track, midiFile(96, {Bytes{5, 0x90, 60, 100} + kTrackEnd})), 0);
    EXPECT_EQ(track.events[0].duration, MfxEvent::kOpen);
    EXPECT_EQ(track.lastTick, 5);
}

TEST(TrackFile, OverlappingNotesOfOneKeyEndInTheirOrder)
{
    CMidiTrack track;
    ASSERT_EQ(load(track, midiFile(96, {Bytes{0, 0x90, 60, 1, 10, 60, 2, 10, 60, 0, 10, 60, 0}})),
              0);
    ASSERT_EQ(track.events.size(), 2u);
    EXPECT_EQ(track.events[0].duration, 20u);
    EXPECT_EQ(track.events[1].duration, 20u);
}

TEST(TrackFile, AnEndOnAnotherChannelEndsNothing)
{
    CMidiTrack track;
    ASSERT_EQ(load(track, midiFile(96, {Bytes{0, 0x90, 60, 1, 10, 0x81, 60, 0, 10, 0x80, 60, 0}})),
              0);
    EXPECT_EQ(track.events[0].duration, 20u);
}

TEST(TrackFile, ProgramChangesAndMetaEventsAreDropped)
{
    CMidiTrack track;
    ASSERT_EQ(load(track, midiFile(96, {Bytes{0, 0xC0, 5, 0, 0xB0, 1, 64, 0, 0xFF, 1, 1, 'x'} +
                                        oneNote(1)})),
              0);
    ASSERT_EQ(track.events.size(), 2u);
    EXPECT_EQ(track.events[0].type, MfxEvent::Controller);
}

TEST(TrackFile, TheNameIsCutAtItsFirstSlash)
{
    CMidiTrack track;
    const std::string name = "Rock/Verse 1";
    Bytes data{0, 0xFF, 3, 12};
    data.insert(data.end(), name.begin(), name.end());
    ASSERT_EQ(load(track, midiFile(96, {data + oneNote(1)})), 0);
    EXPECT_STREQ(track.name.c_str(), "Rock");
    EXPECT_STREQ(track.subName.c_str(), "Verse 1");
}

TEST(TrackFile, ALaterLyricReplacesTheName)
{
    CMidiTrack track;
    ASSERT_EQ(load(track, midiFile(96, {Bytes{0, 0xFF, 3, 3, 'a', '/', 'b', 0, 0xFF, 5, 1, 'l'} +
                                        oneNote(1)})),
              0);
    EXPECT_STREQ(track.name.c_str(), "l");
    EXPECT_FALSE(track.subName.exists());
}

TEST(TrackFile, ANameThatRunsPastItsTrackIsCutThere)
{
    CMidiTrack track;
    ASSERT_EQ(load(track, midiFile(96, {Bytes{0, 0xFF, 3, 100, 'a', 'b'}})), 0);
    EXPECT_STREQ(track.name.c_str(), "ab");
}

TEST(TrackFile, LoadCountsEveryRecordButARecordsLoadOnlyNotes)
{
    const Bytes bytes = midiFile(96, {oneNote(10) + Bytes{50, 0xB0, 1, 1}});
    CMidiTrack track;
    ASSERT_EQ(load(track, bytes), 0);
    EXPECT_EQ(track.lastTick, 60);
    MIDIFILE file;
    mf_init(&file);
    stringStream stream(text(bytes));
    ASSERT_EQ(mf_load(&file, stream), 0);
    track.LoadMidiFile(file);
    EXPECT_EQ(track.lastTick, 10);
    mf_free(&file);
}

TEST(TrackFile, ARefusedFileLeavesTheTrack)
{
    CMidiTrack track;
    ASSERT_EQ(load(track, midiFile(480, {oneNote(10)})), 0);
    EXPECT_EQ(load(track, {'M', 'T', 'h', 'd'}), 1);
    EXPECT_EQ(track.ticksPerQuarter, 480);
    EXPECT_EQ(track.GetLen(), 1);
}

TEST(TrackFile, AFileWithoutTracksIsAnEmptyPattern)
{
    CMidiTrack track;
    ASSERT_EQ(load(track, midiFile(480, {})), 0);
    EXPECT_TRUE(track.events.empty());
    EXPECT_EQ(track.numberOfBars(), 0);
}

TEST(TrackFile, AnAbsurdMeterMakesNoBars)
{
    CMidiTrack track;
    ASSERT_EQ(load(track, midiFile(96, {Bytes{0, 0xFF, 0x58, 4, 0, 255, 0, 0} + oneNote(5)})), 0);
    EXPECT_EQ(track.numberOfBars(), 0);
}

TEST(TrackFile, TimesStopAtTheEndOfTheScale)
{
    CMidiTrack track;
    const Bytes far{0x8F, 0xFF, 0xFF, 0xFF, 0x7F, 0x90, 60, 1};
    ASSERT_EQ(load(track, midiFile(96, {far + far})), 0);
    EXPECT_EQ(track.events[0].time, INT32_MAX);
    EXPECT_EQ(track.events[1].time, INT32_MAX);
}

TEST(TrackFile, EveryTruncationOfAFileIsReadSafely)
{
    const Bytes whole =
        midiFile(96, {Bytes{0, 0xFF, 0x58, 4, 3, 2, 24, 8, 0, 0xFF, 3, 2, 'h', 'i'} + oneNote(9) +
                          Bytes{0, 0xF0, 3, 1, 2, 3, 0, 0xB0, 1, 2} + kTrackEnd,
                      oneNote(5) + kTrackEnd});
    for (std::size_t length = 0; length < whole.size(); ++length) {
        const Bytes cut(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(length));
        CMidiTrack track;
        const int result = load(track, cut);
        EXPECT_EQ(result == 0, readNaively(cut).has_value()) << "cut to " << length;
    }
}

TEST(TrackDecoder, DecodesAsTheByteByByteReadersDo)
{
    std::mt19937 random(20240607);
    for (int round = 0; round < 3000; ++round) {
        Bytes data(random() % 200);
        for (auto& byte : data) // mostly low bytes and note statuses, so that events happen
            byte =
                static_cast<std::uint8_t>(random() % 4 == 0 ? 0x80 + random() % 128 : random() % 8);
        expectSameDecoding(data);
    }
}

// Saving ------------------------------------------------------------------------------------------

TEST(TrackFile, AnEmptyPatternIsJustItsHead)
{
    const Bytes file = save(CMidiTrack());
    EXPECT_EQ(file, midiFile(240, {kHead + kTrackEnd}, 0));
}

TEST(TrackFile, NotesAreWrittenAsOnAndOff)
{
    CMidiTrack track;
    track.insert(note(10, 60, 20, 100, 3));
    EXPECT_EQ(events(track), (Bytes{10, 0x93, 60, 100, 20, 0x83, 60, 100}));
}

TEST(TrackFile, AnEndComesBeforeAStartAtItsTime)
{
    CMidiTrack track;
    track.insert(note(0, 60, 10, 1));
    track.insert(note(10, 60, 10, 2));
    EXPECT_EQ(events(track),
              (Bytes{0, 0x90, 60, 1, 10, 0x80, 60, 1, 0, 0x90, 60, 2, 10, 0x80, 60, 2}));
}

TEST(TrackFile, OfEqualEndsTheNewerIsWrittenFirst)
{
    CMidiTrack track;
    track.insert(note(0, 60, 10, 1));
    track.insert(note(0, 62, 10, 2));
    EXPECT_EQ(events(track),
              (Bytes{0, 0x90, 60, 1, 0, 0x90, 62, 2, 10, 0x80, 62, 2, 0, 0x80, 60, 1}));
}

TEST(TrackFile, MixerControllersAndPatchesStayOutOfTheFile)
{
    CMidiTrack track;
    for (const int number : {0, 7, 10, 32, 39, 42, 1})
        track.insert(controller(5, number, 9));
    MfxEvent patch{};
    patch.type = MfxEvent::Patch;
    track.insert(patch);
    EXPECT_EQ(events(track), (Bytes{5, 0xB0, 1, 9}));
}

TEST(TrackFile, TheNameStandsInFrontOfTheFirstEventAtItsTime)
{
    CMidiTrack track;
    track.name = "A b-c";
    track.subName = "xy";
    track.insert(note(10, 60, 1, 1));
    EXPECT_EQ(events(track), (Bytes{10, 0xFF, 3, 8,    'A', '_', 'b', '_',  'c', 0,
                                    0,  0,    0, 0x90, 60,  1,   1,   0x80, 60,  1}));
}

TEST(TrackFile, ANameBeforeTheFirstTickDoesNotShiftThePattern)
{
    CMidiTrack track;
    track.name = "A";
    track.insert(controller(-5, 1, 9));
    track.insert(note(10, 60, 1, 1));
    EXPECT_EQ(events(track),
              (Bytes{0, 0xFF, 3, 1, 'A', 0, 0xB0, 1, 9, 10, 0x90, 60, 1, 1, 0x80, 60, 1}));
}

TEST(TrackFile, AnEventOutOfOrderDoesNotShiftThoseBehindIt)
{
    CMidiTrack track;
    track.events = {controller(20, 1, 1), controller(10, 2, 2), controller(30, 3, 3)};
    EXPECT_EQ(events(track), (Bytes{20, 0xB0, 1, 1, 0, 0xB0, 2, 2, 10, 0xB0, 3, 3}));
}

TEST(TrackFile, AnEmptyPatternHasNoName)
{
    CMidiTrack track;
    track.name = "A";
    EXPECT_EQ(events(track), Bytes{});
}

TEST(TrackFile, ALongNameDoesNotHideThePattern)
{
    CMidiTrack track;
    track.name = std::string(300, 'n').c_str();
    track.subName = "sub";
    track.insert(note(0, 60, 10));
    CMidiTrack loaded;
    ASSERT_EQ(load(loaded, save(track)), 0);
    EXPECT_EQ(std::string(loaded.name.c_str()), std::string(127, 'n'));
    EXPECT_EQ(loaded.GetLen(), 1);
}

TEST(TrackFile, AnOpenNoteIsOpenAgainAfterLoading)
{
    CMidiTrack track;
    track.insert(note(0, 60, 10));
    track.insert(note(20, 60, MfxEvent::kOpen));
    EXPECT_EQ(events(track), (Bytes{0, 0x90, 60, 100, 10, 0x80, 60, 100, 10, 0x90, 60, 100}));
    CMidiTrack loaded;
    ASSERT_EQ(load(loaded, save(track)), 0);
    EXPECT_EQ(notesOf(loaded), notesOf(track));
}

TEST(TrackFile, TheBlockHasItsCustomarySize)
{
    CMidiTrack track;
    track.insert(note(0, 60, 10));
    MIDIFILE file;
    mf_init(&file);
    track.SaveMidiFile(file, 4, 2, 12000, 0);
    EXPECT_EQ(file.tracks->capacity, 20021u);
    mf_free(&file);
    for (int i = 0; i < 2600; ++i) // 8 bytes each: 20,800 and the head
        track.insert(note(20 * i, 60, 10));
    mf_init(&file);
    track.SaveMidiFile(file, 4, 2, 12000, 0);
    EXPECT_EQ(file.tracks->capacity, 21021u);
    EXPECT_EQ(file.format, 0);
    EXPECT_EQ(file.ntracks, 1);
    mf_free(&file);
}

namespace {

struct Maps : IMfxMeterMap, IMfxTempoMap, IMfxKeySigMap
{
    void GetMeter(std::int32_t tick, std::int32_t* beats, std::int32_t* power) const override
    {
        EXPECT_EQ(tick, 0);
        *beats = 7;
        *power = 3;
    }

    std::int32_t GetTempo(std::int32_t) const override { return 6000; }

    std::int32_t GetKeySig(std::int32_t) const override { return -2; }
};

} // namespace

TEST(TrackFile, TheHostsMapsSetMeterTempoAndKey)
{
    Maps maps;
    stringStream stream;
    CMidiTrack().Save(stream, &maps, &maps, &maps);
    const Bytes bytes{stream.text().begin(), stream.text().end()};
    EXPECT_EQ(trackBytes(bytes),
              (Bytes{0, 0xFF, 0x58, 4,    7, 3,    12,   8,    0, 0xFF, 0x59, 2, 0xFE,
                     0, 0,    0xFF, 0x51, 3, 0x0F, 0x42, 0x40, 0, 0xFF, 0x2F, 0}));
}

TEST(TrackFile, ATempoTooSlowForAFileIsTheSlowestThere)
{
    MIDIFILE file;
    mf_init(&file);
    CMidiTrack().SaveMidiFile(file, 4, 2, 100, 0); // one beat a minute: 60 seconds each
    std::uint32_t pos = 0;
    std::uint32_t tempo = 0;
    std::int32_t ticks = 0;
    short running = 0;
    ASSERT_TRUE(read_tempo(file.tracks, pos, tempo, ticks, running));
    EXPECT_EQ(tempo, 0xFFFFFFu); // not 60 seconds less what three bytes can't say
    mf_free(&file);
}

TEST(TrackFile, ManyNotesThatEndTogetherAreWrittenNewestFirst)
{
    CMidiTrack track;
    for (int i = 0; i < 100; ++i)
        track.insert(note(i, i, static_cast<std::uint32_t>(120 - i)));
    const Bytes all = events(track);
    for (std::size_t i = 0; i < 100; ++i)
        EXPECT_EQ(all[400 + 4 * i + 2], 99 - i);
}

TEST(TrackFile, SavingThenLoadingIsTheIdentity)
{
    std::mt19937 random(7);
    for (int round = 0; round < 200; ++round) {
        CMidiTrack track;
        track.ticksPerQuarter = static_cast<std::int32_t>(24 + random() % 1000);
        std::int32_t now = 0;
        for (int i = 0; i < 100;
             ++i) { // a key sounds once at a time, so that ends belong to their starts
            now += static_cast<std::int32_t>(random() % 100);
            const auto length = static_cast<std::uint32_t>(random() % 2000 % 100);
            track.insert(note(now, static_cast<int>(random() % 128), length,
                              static_cast<int>(1 + random() % 127),
                              static_cast<int>(random() % 16)));
            now += static_cast<std::int32_t>(length);
        }
        CMidiTrack loaded;
        ASSERT_EQ(load(loaded, save(track)), 0);
        EXPECT_EQ(notesOf(loaded), notesOf(track));
        EXPECT_EQ(loaded.lastTick, track.lastTick);
        EXPECT_EQ(loaded.keyPresent, track.keyPresent);
        EXPECT_EQ(loaded.ticksPerQuarter, track.ticksPerQuarter);
    }
}

TEST(TrackFile, AFullStreamDoesNotStopTheProgram)
{
    struct Full : OutputStream
    {
        using OutputStream::Write;

        std::uint32_t Write(const void*, std::uint32_t) override { return 0; }
    } full;

    CMidiTrack track;
    track.insert(note(0, 60, 10));
    EXPECT_EQ(track.Save(full), 0);
}
