/// Players that loop a pattern with what a peer offers: a sequence, its cursor and its seek.
#pragma once
#include "bench/NoteQueue.h"
#include "midi/MfxEvent.h"

#include <cstdint>
#include <memory>
#include <vector>

namespace bench {

/// Times are host ticks; each note is put out once, with its duration.
class JucePlayer
{
public:
    /// @param ratio  host ticks per pattern tick
    JucePlayer(const std::vector<MfxEvent>& events, std::int32_t ratio, std::int32_t loopLength);
    ~JucePlayer();
    void process(std::int32_t from, std::int32_t to, NoteQueue& queue);

private:
    struct Song;
    std::unique_ptr<Song> mSong;
    std::int32_t mLoopLength;
    std::int64_t mOffset = 0;
    int mCursor = 0;
    std::int32_t mNext = 0;
};

/// libsmf does not pair: the note-off is found in its own time and no duration is put out.
class LibsmfPlayer
{
public:
    LibsmfPlayer(const std::vector<MfxEvent>& events, std::int32_t ratio, std::int32_t loopLength);
    ~LibsmfPlayer();
    void process(std::int32_t from, std::int32_t to, NoteQueue& queue);

private:
    struct Song;

    void seek(std::int32_t tick);

    std::unique_ptr<Song> mSong;
    std::int32_t mLoopLength;
    std::int64_t mOffset = 0;
    std::int32_t mNext = 0;
    std::int32_t mLastTick = 0;
};

} // namespace bench
