/// Turns whole notes into on and off, and knows what sounds: no note hangs, none is switched off
/// twice.
#pragma once
#include "effect/MidiQueue.h"

#include <array>
#include <cstdint>
#include <functional>
#include <vector>

/// A message on its way out.
struct TimedMessage
{
    std::int32_t time; ///< host ticks
    std::array<std::uint8_t, 3> bytes;
    std::uint8_t length; ///< 2 or 3

    friend bool operator==(const TimedMessage&, const TimedMessage&) = default;
};

/// At most one note sounds for each channel and key: a repeat ends the first. A note without a
/// known end sounds until then or until the stop. Messages come out in the order of time. Events
/// come in so, but for those of one call.
class NoteTracker
{
public:
    using Out = std::vector<TimedMessage>;

    /// Takes a slice's events, which end before `end`, and gives every message up to there.
    void play(std::vector<Korvanel::MidiEvent> events, std::int32_t end, Out& out);
    /// Switches off everything that sounds.
    void stop(std::int32_t time, Out& out);

    bool silent() const { return mSounding.empty(); }

private:
    struct Sounding
    {
        std::int64_t end;
        std::uint8_t channel;
        std::uint8_t key;
    };

    void start(const Korvanel::MidiEvent& event, Out& out);
    void endThrough(std::int64_t time, Out& out);

    std::vector<Sounding> mSounding;
};
