/// What a host hands over in each cycle, and the pattern that is played through all plug-ins.
#pragma once
#include <lv2/urid/urid.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace bench {

constexpr double kSampleRate = 48000;
constexpr std::int64_t kBarFrames = 96000; ///< at 120 BPM in 4/4
/// After four bars everything starts anew: whole cycles of every length.
constexpr std::int64_t kPeriodFrames = 4 * kBarFrames;

/// A message at a frame of its cycle, or of the song.
struct Message
{
    std::int64_t frame;
    std::array<std::uint8_t, 3> bytes;

    friend bool operator==(const Message&, const Message&) = default;
};

/// The bytes of one cycle's sequence of atoms, as they lie in a port.
class Cycle
{
public:
    explicit Cycle(std::vector<std::uint64_t> words)
        : mWords(std::move(words))
    {
    }

    const void* data() const { return mWords.data(); }

    std::size_t size() const { return mWords.size() * sizeof(std::uint64_t); }

private:
    std::vector<std::uint64_t> mWords;
};

/// The notes of four bars: one of sixteen keys on each sixteenth, which lasts half of it.
std::vector<Message> patternNotes();
/// One bar of the same as a Standard MIDI File.
std::string patternFile();

/// The period in cycles of some frames each, with the messages in their places.
std::vector<Cycle> makeCycles(LV2_URID_Map& map, std::uint32_t frames,
                              const std::vector<Message>& messages);
/// A cycle that chooses program 0 and says that the transport stands or rolls from the start of the
/// song.
Cycle makeStart(LV2_URID_Map& map, bool rolls);

} // namespace bench
