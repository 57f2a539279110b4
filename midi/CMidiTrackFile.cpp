// A track from and to a Standard MIDI File.
#include "midi/CMidiTrack.h"
#include "midi/MfxMaps.h"
#include "midi/MidiFile.h"
#include "midi/TrackDecoder.h"
#include "midi/TrackEncoder.h"

#include <algorithm>
#include <bit>
#include <utility>

namespace Korvanel {

namespace {

constexpr short kDefaultPower = 2;
constexpr std::uint32_t kDefaultTempo = 500000;
constexpr int kDefaultBpm = 12000; ///< in hundredths

/// A file record that frees itself.
struct OwnedMidiFile
{
    OwnedMidiFile() { mf_init(&file); }

    ~OwnedMidiFile() { mf_free(&file); }

    OwnedMidiFile(const OwnedMidiFile&) = delete;
    OwnedMidiFile& operator=(const OwnedMidiFile&) = delete;

    MIDIFILE file{};
};

/// Files may hold any power; a beat finer than 15 bits can say becomes 0, a meter without bars.
std::int16_t noteValue(unsigned power)
{
    return static_cast<std::int16_t>(power < 15 ? 1 << power : 0);
}

short lowestBit(std::int16_t value)
{
    const auto bits = static_cast<std::uint16_t>(value);
    return bits == 0 ? short{-1} : static_cast<short>(std::countr_zero(bits));
}

} // namespace

int CMidiTrack::Load(InputStream& stream, const char*, const Meter*)
{
    OwnedMidiFile owned;
    if (mf_load(&owned.file, stream) != kMfOk)
        return 1;
    CMidiTrack loaded; // memory may run out on the way
    loaded.lastTick = loaded.takePattern(owned.file);
    *this = std::move(loaded);
    return 0;
}

void CMidiTrack::LoadMidiFile(const MIDIFILE& file)
{
    takePattern(file);
}

/// Leaves the statistics as of the notes. @return the last end of any event
std::int32_t CMidiTrack::takePattern(const MIDIFILE& file)
{
    Clear();
    ticksPerQuarter = file.division;
    numerator = 4;
    denominator = beatUnit = 4;
    tempo = kDefaultTempo;
    const _track* source = mf_last_netrack(const_cast<MIDIFILE*>(&file));
    if (source == nullptr)
        return lastTick;

    TrackDecoder decoder(*source, events, name, subName);
    decoder.decode();
    // Meter and tempo are the first track's. Mostly that is the source, and the one pass has seen
    // them.
    short beats = 4;
    short power = kDefaultPower;
    if (source == file.tracks) {
        const auto meter = decoder.meter().value_or(TrackDecoder::Meter{4, kDefaultPower});
        beats = meter.numerator;
        power = meter.denominatorPower;
        tempo = decoder.tempo().value_or(kDefaultTempo);
    } else {
        std::uint32_t pos = 0;
        std::int32_t ticks = 0;
        short running = 0;
        get_meter(file.tracks, beats, power);
        read_tempo(file.tracks, pos, tempo, ticks, running);
    }
    numerator = beats;
    denominator = beatUnit = noteValue(static_cast<unsigned>(power));

    keyPresent = decoder.keyPresent();
    keyCount = static_cast<std::int32_t>(std::count(keyPresent.begin(), keyPresent.end(), 1));
    if (keyCount > 0) {
        const auto first = std::find(keyPresent.begin(), keyPresent.end(), 1);
        const auto last = std::find(keyPresent.rbegin(), keyPresent.rend(), 1);
        lowKey = static_cast<std::int16_t>(first - keyPresent.begin());
        highKey = static_cast<std::int16_t>(keyPresent.rend() - last - 1);
    }
    lastTick = decoder.lastNoteEnd();
    return decoder.lastEnd();
}

void CMidiTrack::SaveMidiFile(MIDIFILE& file, int beats, short denominatorPower, int hundredthsBpm,
                              int keySignature) const
{
    file.format = 0;
    file.ntracks = 1;
    file.division = static_cast<std::uint16_t>(ticksPerQuarter);
    _track* block = mf_add_track(&file);
    if (block == nullptr)
        return;
    TrackEncoder encoder(*block);
    encoder.head(beats, denominatorPower, hundredthsBpm, keySignature);
    if (!events.empty()) {
        encoder.name(name, subName, events.front().time);
        encoder.events(events);
    }
    encoder.end();
}

int CMidiTrack::Save(OutputStream& stream) const
{
    return Save(stream, nullptr, nullptr, nullptr);
}

int CMidiTrack::Save(OutputStream& stream, IMfxMeterMap* meterMap, IMfxTempoMap* tempoMap,
                     IMfxKeySigMap* keySigMap) const
{
    std::int32_t beats = numerator;
    std::int32_t power = lowestBit(denominator);
    if (meterMap != nullptr)
        meterMap->GetMeter(0, &beats, &power);
    const int bpm = tempoMap != nullptr ? tempoMap->GetTempo(0) : kDefaultBpm;
    const int keys = keySigMap != nullptr ? keySigMap->GetKeySig(0) : 0;
    OwnedMidiFile owned;
    SaveMidiFile(owned.file, beats, static_cast<short>(power), bpm, keys);
    return mf_save(&owned.file, stream);
}

} // namespace Korvanel
