#include "bench/hosted/Cycles.h"

#include "bench/Inputs.h"

#include <lv2/atom/forge.h>
#include <lv2/midi/midi.h>
#include <lv2/time/time.h>

namespace bench {

namespace {

constexpr int kNotes = 16; ///< of a bar
constexpr std::int64_t kNoteFrames = kBarFrames / kNotes;
constexpr std::uint8_t kVelocity = 100;

std::uint8_t keyOf(int note)
{
    return static_cast<std::uint8_t>(40 + note % kNotes);
}

/// Writes one sequence.
class Writer
{
public:
    explicit Writer(LV2_URID_Map& map)
        : mMap(map)
        , mWords(256)
    {
        lv2_atom_forge_init(&mForge, &map);
        lv2_atom_forge_set_buffer(&mForge, reinterpret_cast<std::uint8_t*>(mWords.data()),
                                  mWords.size() * sizeof mWords[0]);
        lv2_atom_forge_sequence_head(&mForge, &mSequence, 0);
    }

    void midi(std::int64_t frame, const std::uint8_t* bytes, std::uint32_t size)
    {
        lv2_atom_forge_frame_time(&mForge, frame);
        lv2_atom_forge_atom(&mForge, size, number(LV2_MIDI__MidiEvent));
        lv2_atom_forge_write(&mForge, bytes, size);
    }

    void position(bool rolls)
    {
        lv2_atom_forge_frame_time(&mForge, 0);
        LV2_Atom_Forge_Frame object{};
        lv2_atom_forge_object(&mForge, &object, 0, number(LV2_TIME__Position));
        put(LV2_TIME__speed, rolls ? 1 : 0);
        put(LV2_TIME__beatsPerMinute, 120);
        put(LV2_TIME__beatsPerBar, 4);
        put(LV2_TIME__barBeat, 0);
        lv2_atom_forge_key(&mForge, number(LV2_TIME__beatUnit));
        lv2_atom_forge_int(&mForge, 4);
        for (const char* name : {LV2_TIME__bar, LV2_TIME__frame}) {
            lv2_atom_forge_key(&mForge, number(name));
            lv2_atom_forge_long(&mForge, 0);
        }
        lv2_atom_forge_pop(&mForge, &object);
    }

    Cycle finish()
    {
        lv2_atom_forge_pop(&mForge, &mSequence);
        mWords.resize((mForge.offset + sizeof mWords[0] - 1) / sizeof mWords[0]);
        return Cycle(mWords);
    }

private:
    LV2_URID number(const char* uri) { return mMap.map(mMap.handle, uri); }

    void put(const char* uri, float value)
    {
        lv2_atom_forge_key(&mForge, number(uri));
        lv2_atom_forge_float(&mForge, value);
    }

    LV2_URID_Map& mMap;
    std::vector<std::uint64_t> mWords;
    LV2_Atom_Forge mForge{};
    LV2_Atom_Forge_Frame mSequence{};
};

} // namespace

std::vector<Message> patternNotes()
{
    std::vector<Message> notes;
    for (int i = 0; i < 4 * kNotes; ++i) {
        notes.push_back({i * kNoteFrames, {0x90, keyOf(i), kVelocity}});
        notes.push_back({i * kNoteFrames + kNoteFrames / 2, {0x80, keyOf(i), 64}});
    }
    return notes;
}

std::string patternFile()
{
    constexpr std::uint16_t kPpq = 96;
    constexpr std::uint8_t kHalf = kPpq / 8; ///< of a sixteenth
    Bytes file = fileHead(kPpq);
    for (int i = 0; i < kNotes; ++i) {
        const std::uint8_t before = i == 0 ? 0 : kHalf;
        file.insert(file.end(), {before, 0x90, keyOf(i), kVelocity, kHalf, 0x80, keyOf(i), 64});
    }
    file.push_back(kHalf);
    file.insert(file.end(), kTrackEnd.begin() + 1, kTrackEnd.end());
    setChunkLength(file);
    return {file.begin(), file.end()};
}

std::vector<Cycle> makeCycles(LV2_URID_Map& map, std::uint32_t frames,
                              const std::vector<Message>& messages)
{
    std::vector<Cycle> cycles;
    auto message = messages.begin();
    for (std::int64_t start = 0; start < kPeriodFrames; start += frames) {
        Writer writer(map);
        for (; message != messages.end() && message->frame < start + frames; ++message)
            writer.midi(message->frame - start, message->bytes.data(), 3);
        cycles.push_back(writer.finish());
    }
    return cycles;
}

Cycle makeStart(LV2_URID_Map& map, bool rolls)
{
    const std::array<std::uint8_t, 2> program{0xC0, 0};
    Writer writer(map);
    writer.midi(0, program.data(), 2);
    writer.position(rolls);
    return writer.finish();
}

} // namespace bench
