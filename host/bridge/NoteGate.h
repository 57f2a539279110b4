/// The last stage before the host: turns whole notes into on and off, and knows what sounds. No
/// note hangs, none sounds twice on one channel and key, none is switched off twice.
///
/// Two kinds of notes come through: the pattern's, which end after their duration or at once when
/// the pattern falls silent, and those that somebody plays, which end when the player lets go.
#pragma once
#include "effect/MidiQueue.h"
#include "host/bridge/MidiSink.h"

#include <array>
#include <cstdint>
#include <limits>
#include <span>

/// [audio thread]; allocates nothing. Where the sink is full, a note-on is dropped and a note-off
/// is owed until there is room.
class NoteGate
{
public:
    static constexpr std::int64_t kNever = std::numeric_limits<std::int64_t>::max();

    /// The pattern's event: a note-on stands for a whole note whose end lies its duration behind
    /// its time, at least a tick; a negative duration has no end. What is no channel message and a
    /// note of velocity 0 are dropped.
    void play(std::uint32_t frame, const Korvanel::MidiEvent& event, MidiSink& sink);
    /// Any message that is passed on. A note-off that would end a note of the pattern, or nothing,
    /// stays here; of a key that has never come through here it goes on.
    void pass(std::uint32_t frame, std::span<const std::uint8_t> message, MidiSink& sink);

    std::int64_t nextEnd() const { return mHeapSize == 0 ? kNever : mHeap[0].end; } ///< tick

    void endNext(std::uint32_t frame, MidiSink& sink); ///< switches off the note of nextEnd
    void silencePattern(std::uint32_t frame, MidiSink& sink);
    void silenceAll(std::uint32_t frame, MidiSink& sink);

    /// Sends offs that found no room.
    void sendOwed(std::uint32_t frame, MidiSink& sink)
    {
        if (mOwedNotes > 0)
            sendAllOwed(frame, sink);
    }

    bool patternSounds() const { return mPatternNotes > 0; }

private:
    static constexpr std::size_t kKeys = 128;
    static constexpr std::size_t kNotes = 16 * kKeys;

    enum class Owner : std::uint8_t { None, Pattern, Player, Owed };

    struct End
    {
        std::int64_t end;    ///< tick
        std::uint32_t order; ///< of the note-ons, between ends at one tick
        std::uint16_t note;

        bool before(const End& other) const
        {
            return end != other.end ? end < other.end
                                    : static_cast<std::int32_t>(order - other.order) < 0;
        }
    };

    static std::size_t noteOf(std::uint8_t status, std::uint8_t key)
    {
        return (status & 0x0FU) * kKeys + (key & 0x7FU);
    }

    void sendAllOwed(std::uint32_t frame, MidiSink& sink);
    bool makeRoom(std::uint32_t frame, std::size_t note, MidiSink& sink);
    bool switchOff(std::uint32_t frame, std::size_t note, MidiSink& sink);
    void setOwner(std::size_t note, Owner owner);
    void silenceChannel(std::uint32_t frame, std::size_t channel, MidiSink& sink);
    void passOn(std::uint32_t frame, std::span<const std::uint8_t> message, MidiSink& sink);
    void passOff(std::uint32_t frame, std::span<const std::uint8_t> message, MidiSink& sink);

    void push(std::size_t note, std::int64_t end);
    void remove(std::size_t note);
    void place(std::size_t at, const End& end);
    void siftUp(std::size_t at, const End& end);
    void siftDown(std::size_t at, const End& end);

    // What every block looks at lies before what only notes need.
    std::size_t mHeapSize = 0;
    int mPatternNotes = 0;
    int mOwedNotes = 0;
    std::uint32_t mOrder = 0;
    std::array<Owner, kNotes> mOwners{};
    std::array<bool, kNotes> mKnown{}; ///< whether a note has come through since the start
    std::array<std::uint16_t, kNotes> mPlaces{}; ///< in the heap, from 1; 0: not there
    std::array<End, kNotes> mHeap{};             ///< the earliest end first
};
