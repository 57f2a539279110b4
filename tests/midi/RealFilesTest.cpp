// MIDI files that nobody here wrote: game music from Debian's packages and files made by another
// writer.
#include "midi/MidiFile.h"
#include "tests/midi/MidiBytes.h"
#include "tests/midi/NaiveReader.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

using namespace Korvanel;
namespace fs = std::filesystem;

namespace {

std::vector<fs::path> filesIn(const char* folder)
{
    std::vector<fs::path> found;
    if (fs::is_directory(folder))
        for (const auto& entry : fs::recursive_directory_iterator(folder))
            if (entry.path().extension() == ".mid")
                found.push_back(entry.path());
    std::sort(found.begin(), found.end());
    return found;
}

Bytes contents(const fs::path& path)
{
    std::ifstream in(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), {}};
}

/// The times that a file of ours can carry: a delta whose inner groups are 0 is written shorter
/// than it is.
std::int64_t carried(std::int64_t delta)
{
    std::int64_t value = 0;
    for (const int shift : {28, 21, 14, 7})
        if (const auto group = delta >> shift & 0x7F; group != 0)
            value = value << 7 | group;
    return value << 7 | (delta & 0x7F);
}

bool survivesWriting(const CMidiTrack& track)
{
    std::vector<std::int64_t> moments;
    for (const MfxEvent& event : track.events) {
        moments.push_back(event.time);
        if (event.isNote() && event.duration != MfxEvent::kOpen)
            moments.push_back(std::int64_t{event.time} + event.duration);
    }
    std::sort(moments.begin(), moments.end());
    std::int64_t last = 0;
    for (const std::int64_t moment : moments) {
        if (carried(moment - last) != moment - last)
            return false;
        last = moment;
    }
    return true;
}

struct Source
{
    const char* name;
    const char* folder;
    std::size_t atLeast;
};

class RealFiles : public testing::TestWithParam<Source>
{
};

} // namespace

TEST_P(RealFiles, AreThere)
{
    EXPECT_GE(filesIn(GetParam().folder).size(), GetParam().atLeast) << GetParam().folder;
}

TEST_P(RealFiles, LoadAsAnotherReaderReadsThemOrAreRefused)
{
    for (const fs::path& path : filesIn(GetParam().folder)) {
        const Bytes bytes = contents(path);
        const auto expected = readNaively(bytes);
        CMidiTrack track;
        ASSERT_EQ(load(track, bytes), expected ? 0 : 1) << path;
        if (!expected)
            continue;
        EXPECT_EQ(notesOf(track), expected->notes) << path;
        EXPECT_EQ(track.events.size(),
                  expected->notes.size() + static_cast<std::size_t>(expected->otherRecords))
            << path;
        EXPECT_EQ(track.ticksPerQuarter, expected->division) << path;
        EXPECT_EQ(track.numerator, expected->numerator) << path;
        EXPECT_EQ(track.denominator, 1 << expected->power) << path;
        EXPECT_EQ(track.tempo, expected->tempo) << path;
    }
}

TEST_P(RealFiles, KeepTheirNotesThroughSavingAndLoading)
{
    std::size_t compared = 0;
    for (const fs::path& path : filesIn(GetParam().folder)) {
        CMidiTrack track;
        if (load(track, contents(path)) != 0 || !survivesWriting(track))
            continue;
        CMidiTrack again;
        ASSERT_EQ(load(again, save(track)), 0) << path;
        EXPECT_EQ(notesOf(again), notesOf(track)) << path;
        ++compared;
    }
    EXPECT_GE(compared, GetParam().atLeast / 2);
}

INSTANTIATE_TEST_SUITE_P(, RealFiles,
                         testing::Values(Source{"openttd", KV_OPENTTD_MIDI_DIR, 20},
                                         Source{"planetblupi", KV_PLANETBLUPI_MIDI_DIR, 8},
                                         Source{"npm", KV_NPM_MIDI_DIR, 18}),
                         [](const auto& source) { return source.param.name; });
