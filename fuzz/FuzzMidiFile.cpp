// Whole files: loading, decoding and saving any bytes; the fast decoder gives what the byte-by-byte
// readers give, and a stream that counts blocks gives the same file as one that counts bytes.
#include "fuzz/HeapLimit.h"
#include "midi/CMidiTrack.h"
#include "midi/MidiFile.h"

#include <algorithm>
#include <cstdlib>
#include <string>

using namespace Korvanel;

namespace {

/// Says 1 for a block that came whole and 0 for a torn one, as a stream over a File does.
class BlockStream : public stringStream
{
public:
    using InputStream::Read;
    using stringStream::stringStream;

    std::uint32_t Read(void* data, std::uint32_t size) override
    {
        return size > 0 && stringStream::Read(data, size) == size ? 1 : 0;
    }
};

void require(bool holds)
{
    if (!holds)
        std::abort();
}

bool ascending(const CMidiTrack& track)
{
    return std::is_sorted(track.events.begin(), track.events.end(),
                          [](const MfxEvent& a, const MfxEvent& b) { return a.time < b.time; });
}

/// How many notes begin in the block, counted with the public readers.
std::size_t noteOns(_track& block)
{
    std::size_t count = 0;
    short running = 0;
    Pkt pkt{};
    for (std::uint32_t pos = 0; pos < block.length;) {
        read_delta(block.data, pos);
        read_event(block.data, pos, pkt, running, nullptr, nullptr);
        count += pkt.IsNoteOn() ? 1 : 0;
    }
    return count;
}

void checkTrack(MIDIFILE& file)
{
    CMidiTrack track;
    track.LoadMidiFile(file);
    require(ascending(track));
    if (_track* source = mf_last_netrack(&file))
        require(static_cast<std::size_t>(track.GetLen()) == noteOns(*source));
    track.updateKeysStat();
    track.numberOfBars();
    stringStream saved;
    track.Save(saved);
    stringStream in(saved.text());
    CMidiTrack again;
    require(again.Load(in, nullptr, nullptr) == 0);
}

void checkSameByBlocks(const MIDIFILE& file, const std::string& bytes)
{
    BlockStream stream(bytes);
    MIDIFILE other;
    mf_init(&other);
    require(mf_load(&other, stream) == kMfOk && other.ntracks == file.ntracks);
    const _track* b = other.tracks;
    for (const _track* a = file.tracks; a != nullptr; a = a->next, b = b->next)
        require(a->length == b->length && std::equal(a->data, a->data + a->length, b->data));
    mf_free(&other);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const HeapLimit limit;
    const std::string bytes(reinterpret_cast<const char*>(data), size);
    stringStream stream(bytes);
    MIDIFILE file;
    mf_init(&file);
    if (mf_load(&file, stream) == kMfOk) {
        checkSameByBlocks(file, bytes);
        checkTrack(file);
    }
    mf_free(&file);
    return 0;
}
