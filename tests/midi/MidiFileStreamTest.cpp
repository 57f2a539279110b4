// Files through streams of every habit: those that count bytes, those that count blocks, those that
// hand out a little at a time.
#include "midi/MidiFile.h"
#include "tests/midi/MidiBytes.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <unistd.h>

using namespace Korvanel;

namespace {

/// A record and a real file to read it from.
class MidiFileStream : public testing::Test
{
protected:
    MidiFileStream() { mf_init(&file); }

    ~MidiFileStream() override
    {
        mf_free(&file);
        std::filesystem::remove(mPath);
    }

    const char* path() const { return mPath.c_str(); }

    /// Through the stream that says 1 for a whole block and 0 for a torn one.
    int loadByBlocks(const Bytes& bytes)
    {
        std::ofstream(mPath, std::ios::binary) << text(bytes);
        File opened(mPath.c_str(), File::ReadMode, 0);
        EXPECT_TRUE(opened.isOpen());
        SimpleStream<File> stream(opened);
        return mf_load(&file, stream);
    }

    static Bytes held(const _track* block) { return {block->data, block->data + block->length}; }

    MIDIFILE file{};

private:
    std::filesystem::path mPath =
        std::filesystem::temp_directory_path() / ("kv-midi-stream-" + std::to_string(::getpid()));
};

Bytes counting(std::size_t size)
{
    Bytes bytes(size);
    for (std::size_t i = 0; i < size; ++i)
        bytes[i] = static_cast<std::uint8_t>(i * 7 + i / 256);
    return bytes;
}

/// Hands out at most three bytes of a block at a time.
class Trickle : public InputStream
{
public:
    explicit Trickle(Bytes bytes)
        : mBytes(std::move(bytes))
    {
    }

    using InputStream::Read;

    std::uint32_t Read(void* data, std::uint32_t size) override
    {
        const std::size_t most = size > 4 ? 3 : size; // the header's fields come whole
        const std::size_t count = std::min(most, mBytes.size() - mPosition);
        std::copy_n(mBytes.begin() + static_cast<std::ptrdiff_t>(mPosition), count,
                    static_cast<std::uint8_t*>(data));
        mPosition += count;
        return static_cast<std::uint32_t>(count);
    }

private:
    Bytes mBytes;
    std::size_t mPosition = 0;
};

} // namespace

TEST_F(MidiFileStream, APatternLoadsWholeThroughAStreamThatCountsBlocks)
{
    ASSERT_EQ(loadByBlocks(midiFile(480, {{1, 2, 3}, {}, {4}, {5, 6}})), 0);
    EXPECT_EQ(file.division, 480);
    ASSERT_EQ(file.ntracks, 4);
    EXPECT_EQ(held(file.tracks), (Bytes{1, 2, 3}));
    EXPECT_EQ(held(file.tracks->next), Bytes{});
    EXPECT_EQ(held(file.tracks->next->next), Bytes{4});
    EXPECT_EQ(held(mf_last_track(&file)), (Bytes{5, 6}));
}

TEST_F(MidiFileStream, APatternSavedByBlocksLoadsByBlocks)
{
    CMidiTrack track;
    track.insert(note(0, 36, 10));
    track.insert(note(240, 38, 100));
    {
        File opened(path(), File::WriteMode, 0);
        SimpleStream<File> stream(opened);
        EXPECT_EQ(track.Save(stream), 0);
    }
    CMidiTrack loaded;
    File opened(path(), File::ReadMode, 0);
    SimpleStream<File> stream(opened);
    ASSERT_EQ(loaded.Load(stream, nullptr, nullptr), 0);
    EXPECT_EQ(save(loaded), save(track));
    EXPECT_EQ(loaded.GetLen(), 2);
    EXPECT_EQ(loaded.lastTick, 340);
}

TEST_F(MidiFileStream, ALongTrackLoadsWholeThroughAStreamThatCountsBlocks)
{
    const Bytes data = counting(200'001); // more than one piece
    ASSERT_EQ(loadByBlocks(midiFile(96, {data, {9}})), 0);
    EXPECT_EQ(held(file.tracks), data);
    EXPECT_EQ(held(file.tracks->next), Bytes{9});
}

TEST_F(MidiFileStream, AShortTrackThroughAStreamThatCountsBlocksKeepsWhatArrived)
{
    Bytes bytes = midiFile(96, {counting(70'000)});
    bytes.resize(bytes.size() - 1000);
    ASSERT_EQ(loadByBlocks(bytes), 0);
    const Bytes whole = counting(70'000);
    EXPECT_EQ(held(file.tracks), Bytes(whole.begin(), whole.begin() + 69'000));
    EXPECT_EQ(file.tracks->capacity, 69'000u);
}

TEST_F(MidiFileStream, AFalseLengthCostsNoMemoryThroughAStreamThatCountsBlocks)
{
    Bytes bytes = midiFile(96, {{1, 2}});
    bytes[18] = 0xFF; // four gigabytes
    ASSERT_EQ(loadByBlocks(bytes), 0);
    EXPECT_EQ(held(file.tracks), (Bytes{1, 2}));
    EXPECT_EQ(file.tracks->capacity, 2u);
}

TEST_F(MidiFileStream, ATornHeaderThroughAStreamThatCountsBlocksIsRefused)
{
    const Bytes bytes = midiFile(96, {{1}});
    for (std::size_t length = 0; length < 8; ++length)
        EXPECT_EQ(
            loadByBlocks({bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(length)}), -3)
            << "cut to " << length;
}

TEST_F(MidiFileStream, AStreamThatHandsOutALittleAtATimeLoadsWhole)
{
    const Bytes data = counting(1000);
    Trickle stream(midiFile(96, {data, {7}}));
    ASSERT_EQ(mf_load(&file, stream), 0);
    EXPECT_EQ(held(file.tracks), data);
    EXPECT_EQ(held(file.tracks->next), Bytes{7});
}

TEST_F(MidiFileStream, AFalseLengthIsNeverBelievedByMoreThanAMegabyte)
{
    Bytes bytes = midiFile(96, {Bytes(3'000'000)});
    bytes[18] = 0xFF; // four gigabytes

    struct Watched : stringStream
    {
        using InputStream::Read;
        using stringStream::stringStream;

        std::uint32_t Read(void* data, std::uint32_t size) override
        {
            largestRead = std::max(largestRead, size);
            return stringStream::Read(data, size);
        }

        std::uint32_t largestRead = 0;
    } stream(text(bytes));

    ASSERT_EQ(mf_load(&file, stream), 0);
    EXPECT_EQ(file.tracks->length, 3'000'000u);
    EXPECT_EQ(file.tracks->capacity, 3'000'000u);
    EXPECT_LE(stream.largestRead, 1u << 20); // it was asked for as much as the block had grown by
}
