/// Writes a pattern's events into a fresh track block. CMidiTrack saves through it; nobody else
/// needs it.
#pragma once
#include "midi/CMidiTrack.h"
#include "midi/MidiFile.h"

#include <cstdint>
#include <vector>

namespace Korvanel {

/// The block grows in large steps while events are written and is trimmed at the end. When memory
/// runs out, what did not fit is left out and the block stays whole.
class TrackEncoder
{
public:
    /// Gives the track its first block.
    explicit TrackEncoder(_track& block);

    void head(int beats, short denominatorPower, int hundredthsBpm, int keySignature);
    /// The name stands in front of the first event, at its time.
    void name(const OwnedText& name, const OwnedText& subName, std::int32_t firstTime);
    void events(const std::vector<MfxEvent>& events);
    void end();

private:
    /// A note's end that is still to be written. Earlier ends go first, and of equal ones the
    /// newer.
    struct PendingOff
    {
        std::uint64_t order;
        std::uint32_t message; ///< status lowest, then key and velocity

        std::int32_t time() const { return static_cast<std::int32_t>(order >> 32); }

        friend bool operator<(const PendingOff& a, const PendingOff& b)
        {
            return a.order > b.order;
        }
    };

    bool room(std::uint32_t bytes);

    void put(unsigned byte) { mBlock.data[mBlock.length++] = static_cast<unsigned char>(byte); }

    void putDelta(std::int32_t time);
    void putMeta(unsigned type, std::uint32_t length);
    void putEvent(std::int32_t time, std::uint32_t message, int length);
    void putMessage(std::int32_t time, const Pkt& pkt);
    void putOff(const PendingOff& off);
    void putEndsUpTo(std::int32_t time);
    void keepEnd(const MfxEvent& note);

    _track& mBlock;
    std::int32_t mLastTime = 0;
    std::uint32_t mNotes = 0;
    std::vector<PendingOff> mPending; ///< a heap, the next end first
};

} // namespace Korvanel
