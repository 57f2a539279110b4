/// What the benchmarks measure with: MIDI files and patterns, the same on every machine and in
/// every run.
#pragma once
#include "midi/MfxEvent.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <vector>

namespace bench {

using Bytes = std::vector<std::uint8_t>;

/// A Standard MIDI File of format 0.
struct InputFile
{
    std::string name; ///< its size, as a row of the results is called
    Bytes bytes;
    std::size_t notes;
};

/// A drum pattern of 1 KB without running status, as patterns are exported; a song of 100 KB and a
/// file of 10 MB, both polyphonic on eight channels with controllers and wheel, with running status
/// and note-ons of velocity 0 for note-offs, as sequencers write.
std::vector<InputFile> makeFiles();

/// Notes of a pattern at kPatternPpq, ascending by time.
constexpr std::int32_t kPatternPpq = 240;
constexpr std::int32_t kPatternBar = 4 * kPatternPpq;
constexpr int kNotesPerBar = 64;

/// Bars of kNotesPerBar notes, evenly spaced.
std::vector<MfxEvent> makeDensePattern(int bars);
/// One note in the first bar and one that ends with the last: hardly any slice meets them.
std::vector<MfxEvent> makeSparsePattern(int bars);

// What files are made of --------------------------------------------------------------------------

constexpr std::array<std::uint8_t, 4> kTrackEnd{0x00, 0xFF, 0x2F, 0x00};

/// File header, the only track's header, meter 4/4, no sharps or flats, 120 BPM.
Bytes fileHead(std::uint16_t ppq);
/// Sets the length of the only track, which ends with the file.
void setChunkLength(std::span<std::uint8_t> file);

/// Note-ons in all tracks of a file, or 0 when it is none.
std::size_t countNotes(std::span<const std::uint8_t> file);

} // namespace bench
