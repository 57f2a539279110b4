/// The host's musical time as the effect sees it.
#pragma once
#include "effect/MidiEffect.h"
#include "host/bridge/HostPosition.h"

#include <atomic>
#include <cstdint>

/// Bars are counted from the one that the host named last, in its meter, both ways. update belongs
/// to the audio thread, the rest to any: a question asked during an update may be answered half
/// from before it, which an editor shows for a moment and nothing plays.
class BridgeContext : public Korvanel::MidiContext
{
public:
    void update(const HostPosition& position);

    int QuarterNoteLength() override;

    double Tempo() override { return mTempo.load(std::memory_order_relaxed); }

    std::int32_t BarPosition(int bar, int beat, int tick) override;
    void GetBar(std::int32_t at, int* bar, int* beat, int* tick) override;

    int TimeSigNumerator() override { return mNumerator.load(std::memory_order_relaxed); }

    int TimeSigDenominator() override { return mDenominator.load(std::memory_order_relaxed); }

private:
    std::int64_t beatLength() const; ///< ticks, at least 1
    std::int64_t barLength() const;

    std::atomic<double> mTempo{120};
    std::atomic<int> mNumerator{4};
    std::atomic<int> mDenominator{4};
    std::atomic<int> mBar{0};
    std::atomic<std::int64_t> mBarTick{0}; ///< where that bar starts
};
