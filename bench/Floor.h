/// The floor: the same jobs by hand, with nothing checked and all memory ready. It says what the
/// machine needs for the work itself, so that a result can be judged without another machine's
/// numbers.
#pragma once
#include "bench/NoteQueue.h"
#include "midi/MfxEvent.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace bench {

// Files -------------------------------------------------------------------------------------------

/// Decodes the events of one track chunk into paired records. It trusts the bytes: whole events, an
/// end for every note, no key twice at a time. @return the records written
std::size_t floorRead(std::span<const std::uint8_t> chunk, MfxEvent* out);

/// Writes a whole file of one track. `out` has the room. @return the bytes written
std::size_t floorWrite(std::span<const MfxEvent> events, std::uint16_t ppq, std::uint8_t* out);

// Slices ------------------------------------------------------------------------------------------

/// Plays notes of a pattern whose times are host ticks already.
class FloorPlayer
{
public:
    /// @param ratio  host ticks per pattern tick
    FloorPlayer(const std::vector<MfxEvent>& events, std::int32_t ratio, std::int32_t loopLength,
                bool random);

    void process(std::int32_t from, std::int32_t to, NoteQueue& queue);

private:
    struct Item
    {
        std::int32_t tick;
        MfxEvent event;
    };

    void seek(std::int32_t from);
    int velocityOf(const MfxEvent& event);

    std::vector<Item> mItems;
    std::int32_t mLoopLength;
    std::int64_t mOffset = 0;
    std::size_t mCursor = 0;
    std::int32_t mNext = 0;
    bool mRandom;
    std::uint32_t mState = 1;
};

} // namespace bench
