#include "bench/peers/PeerPlayers.h"

#include <smf.h>
#include <stdexcept>

namespace bench {

struct LibsmfPlayer::Song
{
    Song() = default;
    Song(const Song&) = delete;
    Song& operator=(const Song&) = delete;

    ~Song() { smf_delete(song); }

    smf_t* song = smf_new();
};

namespace {

void add(smf_track_t* track, unsigned status, const MfxEvent& note, std::int64_t tick)
{
    smf_event_t* event =
        smf_event_new_from_bytes(static_cast<int>(status | note.channel), note.key, note.velocity);
    smf_track_add_event_pulses(track, event, static_cast<int>(tick));
}

} // namespace

LibsmfPlayer::LibsmfPlayer(const std::vector<MfxEvent>& events, std::int32_t ratio,
                           std::int32_t loopLength)
    : mSong(std::make_unique<Song>())
    , mLoopLength(loopLength)
{
    smf_track_t* track = smf_track_new();
    smf_add_track(mSong->song, track);
    for (const MfxEvent& note : events) {
        const std::int64_t start = std::int64_t{note.time} * ratio;
        add(track, 0x90, note, start);
        add(track, 0x80, note, start + std::int64_t{note.duration} * ratio);
    }
    mLastTick = smf_get_length_pulses(mSong->song);
    smf_rewind(mSong->song);
}

LibsmfPlayer::~LibsmfPlayer() = default;

void LibsmfPlayer::process(std::int32_t from, std::int32_t to, NoteQueue& queue)
{
    smf_t* song = mSong->song;
    if (from != mNext) {
        mOffset = from / mLoopLength * mLoopLength;
        seek(static_cast<std::int32_t>(from - mOffset));
    }
    mNext = to + 1;
    for (;;) {
        const smf_event_t* event = smf_peek_next_event(song);
        if (event == nullptr) {
            smf_rewind(song);
            mOffset += mLoopLength;
            continue;
        }
        const std::int64_t tick = mOffset + event->time_pulses;
        if (tick > to)
            return;
        const unsigned char* bytes = event->midi_buffer;
        if ((bytes[0] & 0xF0) == 0x90)
            queue.addNote(static_cast<std::int32_t>(tick), bytes[0] & 0x0F, bytes[1], bytes[2], 0);
        smf_skip_next_event(song);
    }
}

/// libsmf complains about a position behind the last event: that is the next repetition.
void LibsmfPlayer::seek(std::int32_t tick)
{
    if (tick > mLastTick) {
        smf_rewind(mSong->song);
        mOffset += mLoopLength;
    } else if (smf_seek_to_pulses(mSong->song, tick) != 0) {
        throw std::runtime_error("libsmf cannot seek");
    }
}

} // namespace bench
