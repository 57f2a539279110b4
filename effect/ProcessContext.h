/// How the engine speaks to whoever takes its events: the host's queue, nobody, or an exporter.
#pragma once
#include "effect/MidiEffect.h"
#include "midi/MfxEvent.h"

#include <cstdint>

namespace Korvanel {
class MidiQueue;
}

/// Takes events and converts between ticks and bars. Thread: of the slice.
class ProcessContext
{
public:
    std::int32_t ppq = 240; ///< ticks per quarter of the times that this context speaks

    virtual ~ProcessContext() = default;
    virtual void outputEvent(MfxEvent& event) = 0;
    virtual std::int32_t convertMbtToTicks(int bar, int beat, int tick) const = 0;
    virtual void convertTicksToMbt(std::int32_t at, int* bar, int* beat, int* tick) const = 0;
    /// `at` moved up to a beat. A beat past `maxBeat` becomes `maxBeat` of the next bar, not its
    /// first beat.
    virtual std::int32_t roundTick(std::int32_t at, int maxBeat) const;

    /// A length in ticks of `lengthPpq` per quarter, rounded up to a beat and given in the same
    /// ticks.
    std::int32_t roundUnit(std::int32_t length, std::int32_t lengthPpq) const;
};

/// Speaks the host's time and takes no events.
class ProcessContext_for_MidiContext : public ProcessContext
{
public:
    static Korvanel::NullMidiContext nullContext;

    /// Null stands for `nullContext`. The resolution is asked for once, here. The host keeps the
    /// context.
    explicit ProcessContext_for_MidiContext(Korvanel::MidiContext* context = nullptr);

    void outputEvent(MfxEvent& event) override;
    std::int32_t convertMbtToTicks(int bar, int beat, int tick) const override;
    void convertTicksToMbt(std::int32_t at, int* bar, int* beat, int* tick) const override;

private:
    Korvanel::MidiContext* mContext;
};

/// Puts events into the host's queue for one slice. [audio thread]
class LooperProcessContext : public ProcessContext
{
public:
    LooperProcessContext(Korvanel::MidiQueue& queue, std::int32_t sliceStart);

    /// A record that is no channel message is inserted as well, as an all-zero event at its time:
    /// hosts count on one queue event for each that the engine plays.
    void outputEvent(MfxEvent& event) override;
    std::int32_t convertMbtToTicks(int bar, int beat, int tick) const override;
    void convertTicksToMbt(std::int32_t at, int* bar, int* beat, int* tick) const override;

private:
    Korvanel::MidiQueue& mQueue;
    std::int32_t mSliceStart;
};

/// Every effect's context before Initialize and after Terminate. Lives as long as the module.
extern ProcessContext_for_MidiContext defaultProcessContext;
