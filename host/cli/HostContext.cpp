#include "host/cli/HostContext.h"

#include "midi/TickMath.h"

HostContext::HostContext(int ticksPerQuarter, double tempo, Meter meter)
    : mTicksPerQuarter(ticksPerQuarter)
    , mTempo(tempo)
    , mMeter(meter)
{
}

std::int32_t HostContext::BarPosition(int bar, int beat, int tick)
{
    return Korvanel::toTicks(std::int64_t{bar} * barLength() + std::int64_t{beat} * beatLength() +
                             tick);
}

void HostContext::GetBar(std::int32_t at, int* bar, int* beat, int* tick)
{
    const std::int32_t inBar = at % barLength();
    Korvanel::storeTicks(bar, at / barLength());
    Korvanel::storeTicks(beat, inBar / beatLength());
    Korvanel::storeTicks(tick, inBar % beatLength());
}
