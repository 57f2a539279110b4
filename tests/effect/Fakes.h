/// A host for effect tests: a queue that keeps what it gets, a context of any resolution, and
/// patterns by hand.
#pragma once
#include "effect/MidiEffect.h"
#include "effect/ProcessContext.h"
#include "midi/CMidiTrack.h"
#include "tests/support/ListQueue.h"

#include <vector>

/// Keeps the records that the engine plays.
class Recorder : public ProcessContext
{
public:
    explicit Recorder(std::int32_t resolution = 480) { ppq = resolution; }

    void outputEvent(MfxEvent& event) override { events.push_back(event); }

    std::int32_t convertMbtToTicks(int bar, int beat, int tick) const override
    {
        return (bar * 4 + beat) * ppq + tick;
    }

    void convertTicksToMbt(std::int32_t at, int* bar, int* beat, int* tick) const override
    {
        *bar = at / ppq / 4;
        *beat = at / ppq % 4;
        *tick = at % ppq;
    }

    std::vector<std::int32_t> times() const
    {
        std::vector<std::int32_t> all;
        for (const MfxEvent& event : events)
            all.push_back(event.time);
        return all;
    }

    std::vector<MfxEvent> events;
};

inline MfxEvent noteAt(std::int32_t time, std::uint32_t duration = 10, int key = 60,
                       int velocity = 100)
{
    MfxEvent event{};
    event.time = time;
    event.type = MfxEvent::Note;
    event.key = static_cast<std::uint8_t>(key);
    event.velocity = static_cast<std::uint8_t>(velocity);
    event.duration = duration;
    return event;
}

inline Korvanel::CMidiTrack pattern(std::int32_t resolution, const std::vector<MfxEvent>& events)
{
    Korvanel::CMidiTrack track;
    track.ticksPerQuarter = resolution;
    for (const MfxEvent& event : events)
        track.insert(event);
    return track;
}
