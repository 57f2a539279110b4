// Files that need more memory than there is. A child process is given little and says how it went.
#include "midi/MidiFile.h"
#include "tests/midi/MidiBytes.h"
#include "tests/support/MemoryLimit.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>
#include <new>

using namespace Korvanel;

namespace {

constexpr int kAsExpected = 7;

/// A file whose first track never runs out of bytes.
class Endless : public stringStream
{
public:
    using InputStream::Read;
    using stringStream::stringStream;

    std::uint32_t Read(void* data, std::uint32_t size) override
    {
        const std::uint32_t came = stringStream::Read(data, size);
        std::memset(static_cast<char*>(data) + came, 0, size - came);
        return size;
    }
};

int loadEndless()
{
    Bytes bytes = midiFile(96, {{}});
    bytes[18] = 0xFF; // four gigabytes, and they come
    Endless stream(text(bytes));
    MIDIFILE file;
    mf_init(&file);
    const MemoryLimit limit(std::size_t{32} << 20);
    const int result = mf_load(&file, stream);
    mf_free(&file);
    return result;
}

/// The block fits, the events that it holds do not.
bool keepsItsNotesWithoutMemory()
{
    CMidiTrack track;
    track.insert(note(5, 60, 10));
    track.name = "old";
    const std::string bytes = text(midiFile(96, {Bytes(std::size_t{8} << 20)}));
    stringStream stream(bytes);
    const MemoryLimit limit(std::size_t{16} << 20);
    try {
        track.Load(stream, nullptr, nullptr);
        return false;
    } catch (const std::bad_alloc&) {
        return track.GetLen() == 1 && track.lastTick == 15 && track.ticksPerQuarter == 240 &&
               std::strcmp(track.name.c_str(), "old") == 0;
    }
}

/// Sanitizers reserve more addresses than any limit allows.
class MidiMemory : public testing::Test
{
protected:
    void SetUp() override
    {
#ifdef KV_SANITIZED
        GTEST_SKIP() << "the sanitizer's memory cannot be limited";
#endif
        testing::GTEST_FLAG(death_test_style) = "fast";
    }
};

} // namespace

TEST_F(MidiMemory, ATrackThatDoesNotFitIsOutOfMemory)
{
    EXPECT_EXIT(std::_Exit(loadEndless() == kMfNoMemory ? kAsExpected : 1),
                testing::ExitedWithCode(kAsExpected), "");
}

TEST_F(MidiMemory, ATrackStaysAsItWasWhenItsEventsDoNotFit)
{
    EXPECT_EXIT(std::_Exit(keepsItsNotesWithoutMemory() ? kAsExpected : 1),
                testing::ExitedWithCode(kAsExpected), "");
}
