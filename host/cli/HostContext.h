/// This host's musical time: one meter and one tempo.
#pragma once
#include "effect/MidiEffect.h"
#include "host/cli/PlayOptions.h"

#include <cstdint>

/// Ticks are of the resolution given. The effect reads it while it plays; it does not change.
class HostContext : public Korvanel::MidiContext
{
public:
    HostContext(int ticksPerQuarter, double tempo, Meter meter);

    int QuarterNoteLength() override { return mTicksPerQuarter; }

    double Tempo() override { return mTempo; }

    std::int32_t BarPosition(int bar, int beat, int tick) override;
    void GetBar(std::int32_t at, int* bar, int* beat, int* tick) override;

    int TimeSigNumerator() override { return mMeter.numerator; }

    int TimeSigDenominator() override { return mMeter.denominator; }

    std::int32_t beatLength() const { return mTicksPerQuarter * 4 / mMeter.denominator; } ///< ticks

    std::int32_t barLength() const { return beatLength() * mMeter.numerator; } ///< ticks

private:
    int mTicksPerQuarter;
    double mTempo;
    Meter mMeter;
};
