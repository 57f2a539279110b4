#include "midi/MidiFile.h"

#include "tests/midi/MidiBytes.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <memory>
#include <unistd.h>

using namespace Korvanel;

namespace {

class MidiFile : public testing::Test
{
protected:
    MidiFile() { mf_init(&file); }

    ~MidiFile() override { mf_free(&file); }

    int load(const Bytes& bytes)
    {
        stringStream stream(text(bytes));
        return mf_load(&file, stream);
    }

    /// A track with these bytes.
    _track* track(const Bytes& bytes)
    {
        _track* made = mf_add_track(&file);
        mf_add_tblk(made, static_cast<std::uint32_t>(bytes.size()));
        std::memcpy(made->data, bytes.data(), bytes.size());
        made->length = made->capacity;
        return made;
    }

    static Bytes held(const _track* block) { return {block->data, block->data + block->length}; }

    MIDIFILE file{};
};

Bytes written(void (*write)(_track*))
{
    MIDIFILE file;
    mf_init(&file);
    _track* block = mf_add_track(&file);
    mf_add_tblk(block, 16);
    write(block);
    Bytes bytes{block->data, block->data + block->length};
    mf_free(&file);
    return bytes;
}

template <std::int32_t Delta>
Bytes delta()
{
    return written([](_track* block) { write_delta(block, block->length, Delta); });
}

} // namespace

TEST_F(MidiFile, AFreshRecordHasNoTracks)
{
    EXPECT_EQ(file.format, 1);
    EXPECT_EQ(file.ntracks, 0);
    EXPECT_EQ(file.division, 96);
    EXPECT_EQ(mf_last_track(&file), nullptr);
    EXPECT_EQ(mf_last_netrack(&file), nullptr);
}

TEST_F(MidiFile, AddingATrackAppendsWithoutCountingIt)
{
    _track* first = mf_add_track(&file);
    _track* second = mf_add_track(&file);
    EXPECT_EQ(file.tracks, first);
    EXPECT_EQ(mf_last_track(&file), second);
    EXPECT_EQ(file.ntracks, 0);
}

TEST_F(MidiFile, ABlockGrowsOnlyUpwards)
{
    _track* block = mf_add_track(&file);
    EXPECT_EQ(mf_add_tblk(block, 10), 0);
    EXPECT_EQ(mf_grow_tblk(block, 10), -2);
    EXPECT_EQ(mf_grow_tblk(block, 11), 0);
    EXPECT_EQ(block->capacity, 11u);
}

TEST_F(MidiFile, AnAddedTrackHasNoBlockUntilAByteIsWritten)
{
    _track* block = mf_add_track(&file);
    EXPECT_EQ(block->tag, 0u);
    EXPECT_EQ(block->length, 0u);
    EXPECT_EQ(block->data, nullptr);
    EXPECT_EQ(block->next, nullptr);
    write_byte(block, block->length, 5);
    EXPECT_EQ(held(block), Bytes{5});
    EXPECT_EQ(block->capacity, 1000u);
}

TEST_F(MidiFile, ASmallerBlockHoldsNoMoreThanItsSize)
{
    _track* block = track({0, 0x90, 60, 1});
    ASSERT_EQ(mf_add_tblk(block, 2), 0);
    EXPECT_EQ(block->capacity, 2u);
    EXPECT_LE(block->length, 2u); // the readers stop at the length
}

TEST_F(MidiFile, CopyingATrackTakesItsBytesOnly)
{
    _track* from = track({1, 2, 3});
    _track* to = track({9});
    EXPECT_EQ(copy_track(to, from), 0);
    EXPECT_EQ(held(to), (Bytes{1, 2, 3}));
    EXPECT_EQ(to->capacity, 3u);
    EXPECT_EQ(copy_track(to, to), 0);
    EXPECT_EQ(held(to), (Bytes{1, 2, 3}));
}

TEST_F(MidiFile, LoadsHeaderAndTracks)
{
    ASSERT_EQ(load(midiFile(480, {{1, 2}, {3, 4, 5}}, 0)), 0);
    EXPECT_EQ(file.format, 0);
    EXPECT_EQ(file.ntracks, 2);
    EXPECT_EQ(file.division, 480);
    EXPECT_EQ(held(file.tracks), (Bytes{1, 2}));
    EXPECT_EQ(held(file.tracks->next), (Bytes{3, 4, 5}));
    EXPECT_EQ(file.tracks->capacity, 2u);
}

TEST_F(MidiFile, AWrongMagicIsRefused)
{
    Bytes bytes = midiFile(96, {});
    bytes[3] = 'x';
    EXPECT_EQ(load(bytes), -3);
    EXPECT_EQ(load({}), -3);
}

TEST_F(MidiFile, AHeaderOfEightBytesIsRefused)
{
    Bytes bytes = midiFile(96, {{}});
    bytes[7] = 8;
    EXPECT_EQ(load(bytes), -3);
}

TEST_F(MidiFile, AnotherChunkIsRefusedNotSkipped)
{
    Bytes bytes = midiFile(96, {{1}, {2}});
    bytes[14] = 'X';
    EXPECT_EQ(load(bytes), -3);
}

TEST_F(MidiFile, ManyDeclaredTracksWithoutDataAreRefusedAtOnce)
{
    Bytes bytes = midiFile(96, {});
    bytes[10] = bytes[11] = 0xFF;
    EXPECT_EQ(load(bytes), -3);
}

TEST_F(MidiFile, AShortTrackKeepsWhatArrived)
{
    Bytes bytes = midiFile(96, {{1, 2, 3, 4}});
    bytes.resize(bytes.size() - 2);
    ASSERT_EQ(load(bytes), 0);
    EXPECT_EQ(held(file.tracks), (Bytes{1, 2}));
}

TEST_F(MidiFile, AFalseTrackLengthCostsNoMemory)
{
    Bytes bytes = midiFile(96, {{1, 2}});
    bytes[18] = 0xFF; // four gigabytes
    ASSERT_EQ(load(bytes), 0);
    EXPECT_EQ(file.tracks->length, 2u);
    EXPECT_EQ(file.tracks->capacity, 2u);
}

TEST_F(MidiFile, AThrowingStreamPassesThroughAndLeaksNothing)
{
    const Bytes bytes = midiFile(96, {{1, 2, 3, 4}});
    StreamBuffer* buffer =
        new StreamBuffer(bytes.data(), static_cast<std::uint32_t>(bytes.size() - 1));
    MemoryStream stream(*buffer);
    EXPECT_THROW(mf_load(&file, stream), StreamBufferException);
    buffer->Release();
}

TEST_F(MidiFile, LoadsByPathAndSaysWhenItCannot)
{
    const auto path =
        std::filesystem::temp_directory_path() / ("kv-midi-" + std::to_string(::getpid()));
    const Bytes bytes = midiFile(96, {{1, 2}});
    std::ofstream(path, std::ios::binary) << text(bytes);
    EXPECT_EQ(mf_load(&file, path.c_str()), 0);
    EXPECT_EQ(held(file.tracks), (Bytes{1, 2}));
    std::filesystem::remove(path);
    EXPECT_EQ(mf_load(&file, path.c_str()), -1);
}

TEST_F(MidiFile, SavesWhatItLoaded)
{
    const Bytes bytes = midiFile(480, {{1, 2}, {}, {3}}, 1);
    ASSERT_EQ(load(bytes), 0);
    stringStream stream;
    EXPECT_EQ(mf_save(&file, stream), 0);
    EXPECT_EQ(stream.text(), text(bytes));
}

TEST_F(MidiFile, ATrackThatNeverHadABlockIsSavedEmpty)
{
    mf_add_track(&file);
    file.ntracks = 1;
    Bytes bytes(22);
    SimpleMemoryStream stream(bytes.data()); // copies whatever it is given, null too
    EXPECT_EQ(mf_save(&file, stream), 0);
    EXPECT_EQ(bytes, midiFile(96, {{}}));
}

TEST_F(MidiFile, SavingByPathLeavesTheTrackLengthsOut)
{
    const auto path =
        std::filesystem::temp_directory_path() / ("kv-midi-" + std::to_string(::getpid()));
    ASSERT_EQ(load(midiFile(96, {{1, 2}})), 0);
    EXPECT_EQ(mf_save(&file, path.c_str()), 0);
    std::ifstream in(path, std::ios::binary);
    const std::string all{std::istreambuf_iterator<char>(in), {}};
    EXPECT_EQ(all.substr(14), "MTrk\x01\x02");
    std::filesystem::remove(path);
    EXPECT_EQ(mf_save(&file, "/nonexistent/folder/x.mid"), 0);
}

TEST_F(MidiFile, TheLastTrackWithNotesIsFoundFromTheSecondOn)
{
    const Bytes noted = oneNote(10) + kTrackEnd;
    _track* conductor = track(noted);
    track(kTrackEnd);
    _track* drums = track(noted);
    track(kTrackEnd);
    EXPECT_EQ(mf_last_netrack(&file), drums);
    mf_free(&file);
    conductor = track(kTrackEnd);
    track(kTrackEnd);
    EXPECT_EQ(mf_last_netrack(&file), conductor);
}

TEST_F(MidiFile, ReadsVariableLengths)
{
    const Bytes bytes{0x00, 0x7F, 0x81, 0x00, 0xFF, 0x7F, 0x81, 0x80, 0x00};
    std::uint32_t pos = 0;
    EXPECT_EQ(read_delta(bytes.data(), pos), 0u);
    EXPECT_EQ(read_delta(bytes.data(), pos), 127u);
    EXPECT_EQ(read_delta(bytes.data(), pos), 128u);
    EXPECT_EQ(read_delta(bytes.data(), pos), 16383u);
    EXPECT_EQ(read_delta(bytes.data(), pos), 16384u);
    EXPECT_EQ(pos, bytes.size());
}

TEST_F(MidiFile, RunningStatusOverVelocityZeroGivesNoteOffs)
{
    _track* block = track({0x91, 60, 100, 60, 0, 62, 5});
    Pkt pkt{};
    short running = 0;
    std::uint32_t pos = 0;
    EXPECT_TRUE(read_event(block->data, pos, pkt, running, nullptr, nullptr));
    EXPECT_EQ(pkt.status, 0x91);
    EXPECT_TRUE(read_event(block->data, pos, pkt, running, nullptr, nullptr));
    EXPECT_EQ(pkt.status, 0x81);
    EXPECT_EQ(running, 0x91);
    EXPECT_TRUE(read_event(block->data, pos, pkt, running, nullptr, nullptr));
    EXPECT_TRUE(pkt.IsNoteOn());
    EXPECT_EQ(pos, 7u);
}

TEST_F(MidiFile, AMetaEventGivesItsTextAndTheTrackEndSaysFalse)
{
    _track* block = track({0xFF, 3, 2, 'h', 'i', 0xFF, 0x2F, 0});
    Pkt pkt{};
    short running = 0;
    std::uint32_t pos = 0;
    unsigned char* name = nullptr;
    std::int32_t length = 0;
    EXPECT_TRUE(read_event(block->data, pos, pkt, running, &name, &length));
    EXPECT_EQ(pkt.status, 0xFF);
    EXPECT_EQ(pkt.data1, 3);
    EXPECT_EQ(std::string(name, name + length), "hi");
    EXPECT_EQ(running, 0xFF);
    EXPECT_FALSE(read_event(block->data, pos, pkt, running, nullptr, nullptr));
    EXPECT_EQ(pos, 8u);
}

TEST_F(MidiFile, SystemExclusiveIsSteppedOver)
{
    _track* block = track({0xF0, 0x03, 1, 2, 0xF7, 0x90, 1, 2});
    Pkt pkt{};
    short running = 0;
    std::uint32_t pos = 0;
    EXPECT_TRUE(read_event(block->data, pos, pkt, running, nullptr, nullptr));
    EXPECT_EQ(pos, 5u);
}

TEST_F(MidiFile, AHugeSystemExclusiveStopsBehindTheBlock)
{
    _track* block = track({0xF0, 0x8F, 0xFF, 0xFF, 0xFF, 0x7F});
    Pkt pkt{};
    short running = 0;
    std::uint32_t pos = 0;
    EXPECT_TRUE(read_event(block->data, pos, pkt, running, nullptr, nullptr));
    EXPECT_EQ(pos, UINT32_MAX); // not round to the start
}

TEST_F(MidiFile, OtherSystemStatusesHaveNoData)
{
    _track* block = track({0xF8, 0x90, 1, 2});
    Pkt pkt{};
    short running = 0;
    std::uint32_t pos = 0;
    EXPECT_TRUE(read_event(block->data, pos, pkt, running, nullptr, nullptr));
    EXPECT_EQ(pos, 1u);
}

TEST_F(MidiFile, ReadsTempoWithTheTicksUpToIt)
{
    const _track* block =
        track({10, 0x90, 1, 1, 5, 0xFF, 0x51, 3, 0x07, 0xA1, 0x20, 0, 0xFF, 0x2F, 0});
    std::uint32_t pos = 0;
    std::uint32_t tempo = 0;
    std::int32_t ticks = 0;
    short running = 0;
    ASSERT_TRUE(read_tempo(block, pos, tempo, ticks, running));
    EXPECT_EQ(tempo, 500000u);
    EXPECT_EQ(ticks, 15);
    EXPECT_FALSE(read_tempo(block, pos, tempo, ticks, running));
}

TEST_F(MidiFile, MeterAndKeyAreReadAndOverwrittenInPlace)
{
    _track* block =
        track({0, 0xFF, 0x58, 4, 6, 3, 24, 8, 0, 0xFF, 0x59, 2, 1, 0, 0, 0xFF, 0x2F, 0});
    short numerator = 0;
    short power = 0;
    ASSERT_TRUE(get_meter(block, numerator, power));
    EXPECT_EQ(numerator, 6);
    EXPECT_EQ(power, 3);
    EXPECT_TRUE(set_meter(block, 3, 2));
    EXPECT_TRUE(set_sig(block, 1));
    EXPECT_EQ(held(block),
              (Bytes{0, 0xFF, 0x58, 4, 3, 2, 24, 8, 0, 0xFF, 0x59, 2, 1, 1, 0, 0xFF, 0x2F, 0}));
}

TEST_F(MidiFile, MeterAndKeyCountOnlyWithTheirOwnStatus)
{
    // Two meters and two keys; the first of each runs on the status of the text in front.
    _track* block = track({0, 0xFF, 1,    0,    0, 0x58, 2, 7, 4,    0,    0x59, 2, 5,
                           1, 0,    0xFF, 0x58, 2, 6,    3, 0, 0xFF, 0x59, 2,    1, 0});
    short numerator = 0;
    short power = 0;
    ASSERT_TRUE(get_meter(block, numerator, power));
    EXPECT_EQ(numerator, 6);
    EXPECT_EQ(power, 3);
    EXPECT_TRUE(set_meter(block, 3, 2));
    EXPECT_TRUE(set_sig(block, 1));
    EXPECT_EQ(held(block), (Bytes{0, 0xFF, 1,    0,    0, 0x58, 2, 7, 4,    0,    0x59, 2, 5,
                                  1, 0,    0xFF, 0x58, 2, 3,    2, 0, 0xFF, 0x59, 2,    1, 1}));
}

TEST_F(MidiFile, WithoutAMeterBeforeTheEndThereIsNone)
{
    _track* block = track({0, 0xFF, 0x2F, 0, 0, 0xFF, 0x58, 4, 6, 3, 24, 8});
    short numerator = 0;
    short power = 0;
    EXPECT_FALSE(get_meter(block, numerator, power));
    EXPECT_FALSE(set_meter(block, 1, 1));
    EXPECT_FALSE(set_sig(block, 1));
}

TEST_F(MidiFile, TicksAndMillisecondsConvert)
{
    const _track* block = track({0, 0xFF, 0x51, 3, 0x07, 0xA1, 0x20, 0, 0xFF, 0x2F, 0});
    EXPECT_EQ(tick2msec(block, 960, 480), 1000);
    EXPECT_EQ(msec2tick(block, 1000, 480), 960);
}

TEST_F(MidiFile, ATempoEventAlsoTimesTheTicksBeforeIt)
{
    // 250000 after 480 ticks: those 480 last 250 ms too.
    const _track* block = track({0x83, 0x60, 0xFF, 0x51, 3, 0x03, 0xD0, 0x90, 0, 0xFF, 0x2F, 0});
    EXPECT_EQ(tick2msec(block, 480, 480), 250);
    EXPECT_EQ(tick2msec(block, 960, 480), 500);
    EXPECT_EQ(msec2tick(block, 500, 480), 960);
    EXPECT_EQ(tick2msec(block, 100, 480), 52); // inside the segment, at its own tempo
}

TEST_F(MidiFile, MillisecondsThatEndInsideASegmentTakeTheTempoOfTheEventThatEndsIt)
{
    // 480 ticks of 250 ms, 480 ticks of a second, and so on at that tempo.
    const _track* block = track({0x83, 0x60, 0xFF, 0x51, 3,    0x03, 0xD0, 0x90, 0x83, 0x60,
                                 0xFF, 0x51, 3,    0x0F, 0x42, 0x40, 0,    0xFF, 0x2F, 0});
    EXPECT_EQ(msec2tick(block, 100, 480), 192);
    EXPECT_EQ(msec2tick(block, 249, 480), 478); // 478.08
    EXPECT_EQ(msec2tick(block, 250, 480), 480);
    EXPECT_EQ(msec2tick(block, 750, 480), 720);
    EXPECT_EQ(msec2tick(block, 1750, 480), 1200);
}

TEST_F(MidiFile, ADivisionOfNoneConvertsToSomethingHarmless)
{
    const _track* block = track({0, 0xFF, 0x51, 3, 0, 0, 0, 0, 0xFF, 0x2F, 0});
    tick2msec(block, 960, 0);
    msec2tick(block, 1000, 0);
    SUCCEED(); // under the sanitizers a bad conversion stops
}

TEST(MidiWrite, DeltasBelow16384AreExact)
{
    EXPECT_EQ(delta<0>(), (Bytes{0x00}));
    EXPECT_EQ(delta<127>(), (Bytes{0x7F}));
    EXPECT_EQ(delta<128>(), (Bytes{0x81, 0x00}));
    EXPECT_EQ(delta<16383>(), (Bytes{0xFF, 0x7F}));
}

TEST(MidiWrite, AnInnerGroupOfZeroIsLeftOut)
{
    EXPECT_EQ(delta<16384>(), (Bytes{0x81, 0x00}));
    EXPECT_EQ(delta<16384 + 128>(), (Bytes{0x81, 0x81, 0x00}));
}

TEST(MidiWrite, ABlockGrowsByAThousandBytes)
{
    MIDIFILE file;
    mf_init(&file);
    _track* block = mf_add_track(&file);
    mf_add_tblk(block, 1);
    write_byte(block, block->length, 1);
    EXPECT_EQ(block->capacity, 1u);
    write_byte(block, block->length, 2);
    EXPECT_EQ(block->capacity, 1001u);
    EXPECT_EQ(block->length, 2u);
    mf_free(&file);
}

TEST(MidiWrite, EventsCarryTheirStatusAlways)
{
    const Bytes bytes = written([](_track* block) {
        write_midievent(block, 5, Pkt{0x90, 60, 100});
        write_midievent(block, 0, Pkt{0x90, 61, 100});
        write_midievent(block, 128, Pkt{0xC0, 7, 99});
    });
    EXPECT_EQ(bytes, (Bytes{5, 0x90, 60, 100, 0, 0x90, 61, 100, 0x81, 0x00, 0xC0, 7}));
}

TEST(MidiWrite, AMetaEventTakesItsBytesFromTheArguments)
{
    const Bytes bytes =
        written([](_track* block) { write_metaevent(block, 0, 0x51, 3, 7, 0xA1, 0x20); });
    EXPECT_EQ(bytes, (Bytes{0, 0xFF, 0x51, 3, 0x07, 0xA1, 0x20}));
}
