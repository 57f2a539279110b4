/// A pattern in memory: one list of events in which every note is a single record with a duration,
/// its musical frame, and a census of its keys. The engine plays it, the editor draws and edits it.
#pragma once
#include "midi/MfxEvent.h"
#include "midi/OwnedText.h"

#include <array>
#include <cstdint>
#include <vector>

class IMfxMeterMap;
class IMfxTempoMap;
class IMfxKeySigMap;

namespace Korvanel {

class InputStream;
class OutputStream;
struct MIDIFILE;
struct Meter;

/// Keys that belong together, as instrument groups are counted.
struct LGroups
{
    std::int32_t id;
    char keys[8]; ///< zero-terminated unless full
};

static_assert(sizeof(LGroups) == 12);

/// Keys of which only one may sound at a time. A list of groups ends with one whose count is 0.
struct MonoGroup
{
    std::uint8_t count;
    std::uint8_t keys[20]; ///< ascending, zero-terminated unless full
};

static_assert(sizeof(MonoGroup) == 21);

/// Times are ticks of the track's own resolution; they stop at the largest 32-bit value instead of
/// wrapping. Keys above 127, which only damaged files hold, stay in the list but are not in the
/// census.
///
/// The key statistics describe the notes in `events`. Every operation that removes or moves notes
/// recomputes them, except where it says otherwise; whoever changes `events` directly calls
/// updateKeysStat. Thread: one at a time.
class CMidiTrack
{
public:
    using iterator = std::vector<MfxEvent>::iterator;

    std::int32_t ticksPerQuarter = 240;
    std::int16_t numerator = 4; ///< beats per bar
    std::int16_t denominator =
        4;                     ///< the beat's note value: 4 is a quarter; 0 after a damaged meter
    std::int16_t beatUnit = 4; ///< set with the denominator
    OwnedText subName;         ///< of a name "name/subName", the second part
    OwnedText name;
    std::vector<MfxEvent> events;       ///< ascending by time
    std::uint32_t tempo = 500000;       ///< microseconds per quarter
    std::int16_t lowKey = 127;          ///< 127 when there is no note
    std::int16_t highKey = 0;           ///< 0 when there is no note
    std::int32_t lastTick = -1;         ///< the largest end of an event; -1 when there is none
    std::int32_t keyCount = 0;          ///< distinct keys
    std::array<char, 128> keyPresent{}; ///< 1 where a note of that key exists

    CMidiTrack() = default;
    CMidiTrack(const CMidiTrack&) = default;
    CMidiTrack& operator=(const CMidiTrack&) = default;
    CMidiTrack(CMidiTrack&&) = default;
    CMidiTrack& operator=(CMidiTrack&&) = default;
    virtual ~CMidiTrack();

    /// Empties the list, the names and the statistics; resolution, meter and tempo stay.
    void Clear();

    // Queries -----------------------------------------------------------------------------------
    int numberOfBeatsPerBar() const { return numerator; }

    std::int32_t barLength() const;    ///< ticks; 0 for a meter that makes no bar
    std::int32_t numberOfBars() const; ///< bars up to the last event's end; 0 for an empty track
    std::int64_t barsLength() const;   ///< ticks of all bars
    std::int32_t GetFirst() const;     ///< start of the first note, or -1
    std::int32_t GetLast() const;      ///< start of the last note, or -1
    int GetLen() const;                ///< how many notes
    int GetNumOfKey(int key) const;    ///< the key's rank among those present, from 0; -1 if absent
    int GetKey(int i) const;           ///< the i-th present key; -1 if there is none
    int GetInstruments() const;        ///< distinct keys, counted from the list
    /// @param map  128 instrument slots, taken modulo 32  @return a bit for each slot that some
    /// note uses
    std::uint32_t GetInstrumentMask(const char* map) const;
    /// Notes on a grid, the first step in the highest of `steps` bits. A note up to a quarter of a
    /// step early counts for the next one. @param count  receives the set bits among the lowest 16;
    /// may be null
    std::uint32_t GetMask(int stepsPerWhole, int steps, int* count) const;
    /// @param counts  n + 1 numbers: present keys in each group, then those in none
    void CountLGroups(const LGroups* groups, int n, int* counts) const;
    /// A weight of the intervals between notes, short ones weighing more.
    /// @param histogram  receives five counters, four bits each, which spill when above 15
    std::int32_t GetRhythmComplexity(std::int32_t& histogram) const;

    // Editing -----------------------------------------------------------------------------------
    void insert(const MfxEvent& event); ///< behind all events that are not later
    void Delete(iterator& at);          ///< `at` is then at the following event
    /// Takes meter, tempo and events of `src`, without its names. @param keep  128 flags; notes of
    /// other keys stay out; null keeps all
    void Copy(const CMidiTrack& src, const bool* keep);
    void Filter(const bool* keep);                         ///< erases notes of keys not kept
    void ApplyMap(const char* map);                        ///< each note's key becomes map[key]
    void TransposeNote(int from, int to);                  ///< leaves the statistics as they were
    void FixedLength(std::int32_t ticks);                  ///< of every note
    void Quantize(std::int32_t grid, std::int32_t length); ///< does nothing for grid < 1
    void EatEmptyBars(std::int32_t barTicks); ///< moves the first note into the first bar
    /// Cuts to quarters [start, start + length), or all from `start` on for length 0, and moves
    /// them to `offset`. Of the statistics only lastTick follows: the span's end.
    void Slice(int start, int offset, int length);
    void DeleteDoubles(std::int32_t window); ///< leaves the statistics as they were
    void DeleteDoubles(std::int32_t window, const MonoGroup* groups, bool check);
    /// Gives the notes of `key` the key `newKey`, and erases those that double a note of it (with
    /// `check`) or meet one of its groups sounding within `window` ticks. @param groups  may be
    /// null
    void TransposeNote(int key, int newKey, const MonoGroup* groups, std::int32_t window,
                       bool check);

    // Key statistics ----------------------------------------------------------------------------
    void clearKeysStat();
    void onInsertion(const MfxEvent& event);
    void updateKeysStat();
    void copyKeyStat(const CMidiTrack& other);
    void copyFrame(const CMidiTrack& other); ///< resolution, meter and tempo
    void clearNames();
    void copyNames(const CMidiTrack& other);

    // Files -------------------------------------------------------------------------------------
    /// Reads a Standard MIDI File. Exceptions of the stream pass through. In every failure the
    /// track stays as it was.
    /// @param name, meter  not used  @return 0; 1 when the data are no MIDI file
    int Load(InputStream& stream, const char* name, const Meter* meter);
    /// Takes the pattern out of a file record: the last track with notes, under the first track's
    /// meter and tempo. The statistics count the notes only; updateKeysStat counts everything.
    void LoadMidiFile(const MIDIFILE& file);
    /// Fills an empty record with one track. @param hundredthsBpm  12000 is 120 BPM
    void SaveMidiFile(MIDIFILE& file, int beats, short denominatorPower, int hundredthsBpm,
                      int keySignature) const;
    int Save(OutputStream& stream) const; ///< at 120 BPM, whatever the tempo. @return 0
    /// As above; each map that is given is asked for its value at tick 0.
    int Save(OutputStream& stream, IMfxMeterMap* meterMap, IMfxTempoMap* tempoMap,
             IMfxKeySigMap* keySigMap) const;

private:
    std::int32_t takePattern(const MIDIFILE& file);
    void transposeOrErase(int key, int newKey, const MonoGroup* groups, std::int32_t window,
                          bool check);
    bool meetsSoundingGroup(std::size_t note, int newKey, const MonoGroup* groups,
                            std::int32_t window, bool check) const;
};

} // namespace Korvanel
