/// Standard MIDI Files as raw records: tracks are undecoded byte blocks. The track model turns a
/// record into a pattern and back. docs/formats/midi-file.md describes the bytes.
///
/// Ticks are the file's own. Multi-byte numbers in files are big-endian. Thread: one at a time per
/// record.
#pragma once
#include "midi/Pkt.h"
#include "shared/System/kvStream.h"

#include <cstdint>

namespace Korvanel {

/// One track chunk. Made by mf_add_track on the C heap and freed by mf_free.
struct _track
{
    std::uint32_t tag;      ///< 0
    std::uint32_t capacity; ///< bytes that `data` may hold
    std::uint32_t length;   ///< bytes held; the writers append here
    unsigned char* data;    ///< on the C heap; zeroed guard bytes follow the capacity
    _track* next;
};

struct MIDIFILE
{
    std::uint16_t format;
    std::uint16_t ntracks;
    std::uint16_t division; ///< ticks per quarter
    _track* tracks;         ///< owned list
};

enum MfResult : int {
    kMfOk = 0,
    kMfCannotOpen = -1,
    kMfNoMemory = -2, ///< also: the block is large enough already
    kMfBadData = -3,  ///< wrong magic, header length or chunk type
};

/// Bytes of 0 behind every block's capacity. The parsers know only a position, so a block that ends
/// inside an event must be followed by bytes that end any event: with 0 there, no number and no
/// length goes on.
constexpr std::uint32_t kGuardBytes = 16;

// Records and blocks ----------------------------------------------------------------------------

void mf_init(MIDIFILE* file); ///< format 1, no tracks, division 96
/// Appends an empty track; does not count it in `ntracks`. @return null when out of memory
_track* mf_add_track(MIDIFILE* file);
_track* mf_last_track(MIDIFILE* file);               ///< null when there is none
int mf_add_tblk(_track* track, std::uint32_t size);  ///< gives the track a block of `size` bytes
int mf_grow_tblk(_track* track, std::uint32_t size); ///< kMfNoMemory when it has `size` already
void mf_trim_tblk(_track* track,
                  std::uint32_t size);          ///< gives back what is above `size`, if unused
int copy_track(_track* dst, const _track* src); ///< replaces dst's block by a copy of src's bytes
void mf_free(MIDIFILE* file);                   ///< frees every track; the record is then empty
/// The last track, from the second on, that holds a note; the first when none does; null for a
/// record without tracks.
_track* mf_last_netrack(MIDIFILE* file);

// Whole files -----------------------------------------------------------------------------------

/// Reads a file into an initialised record. On failure it may hold some tracks: mf_free it in any
/// case. A short source is no failure: a block then holds what arrived, at the cost of that and at
/// most a megabyte. The stream may count bytes or, as one over a File does, blocks. Exceptions of
/// the stream pass through.
/// @return an MfResult
int mf_load(MIDIFILE* file, InputStream& stream);
int mf_load(MIDIFILE* file, const char* path);
/// Writes the first `ntracks` tracks. @return 0; a failed write is not reported
int mf_save(const MIDIFILE* file, OutputStream& stream);
/// As above, but without the tracks' lengths: a raw dump that mf_load does not read back. Nobody
/// here uses it; it stays as callers know it.
int mf_save(const MIDIFILE* file, const char* path);

// Reading events --------------------------------------------------------------------------------
// `pos` is a byte index into a block, below its length, and is moved behind what was read, possibly
// beyond the length.

std::uint32_t read_delta(const unsigned char* data,
                         std::uint32_t& pos); ///< one variable-length number, in ticks
/// One event. The length of a meta event is taken from one byte, so those of 128 bytes and more are
/// not understood.
/// @param running     the status in force, 0 at the start of a track; system statuses become it too
/// @param text        meta and system-exclusive events: their bytes, inside the block or past it;
/// may be null
/// @param textLength  as declared; the caller cuts it to the block; may be null
/// @return false for the end-of-track event only
bool read_event(unsigned char* data, std::uint32_t& pos, Pkt& pkt, short& running,
                unsigned char** text, std::int32_t* textLength);
/// The next set-tempo event at or behind `pos`.
/// @param tempo  microseconds per quarter  @param ticks  from `pos` to the event
/// @return false at the end of the track
bool read_tempo(const _track* track, std::uint32_t& pos, std::uint32_t& tempo, std::int32_t& ticks,
                short& running);
bool get_meter(const _track* track, short& numerator, short& denominatorPower);
bool set_meter(_track* track, short numerator,
               short denominatorPower); ///< overwrites the first meter in place
bool set_sig(_track* track,
             short value); ///< overwrites the major/minor byte of the first key signature
/// Time in ticks and milliseconds over the track's tempo events. A tempo event also times the ticks
/// before it, back to the event before; that is how positions have always been counted here.
std::int32_t msec2tick(const _track* track, std::uint32_t msec, std::int32_t division);
std::int32_t tick2msec(const _track* track, std::uint32_t tick, std::int32_t division);

// Writing events, each at the track's length ------------------------------------------------------

void write_byte(_track* track, std::uint32_t& pos,
                short byte); ///< grows the block by 1000 bytes when full
/// Groups of 7 bits, most significant first. A group of 0 inside the number is left out: exact
/// below 16384 and where no inner group is 0. Files of ours have always been written so.
void write_delta(_track* track, std::uint32_t& pos, std::int32_t delta);
void write_event(_track* track, std::uint32_t& pos, const Pkt& pkt);
void write_midievent(_track* track, std::int32_t delta, const Pkt& pkt);
void write_metaevent_header(_track* track, std::int32_t delta, short type);
/// @param ...  `length` ints, a byte each
void write_metaevent(_track* track, std::int32_t delta, short type, std::int32_t length, ...);
void write_ulong(std::uint32_t value, OutputStream& stream);

} // namespace Korvanel
