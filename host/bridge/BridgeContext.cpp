#include "host/bridge/BridgeContext.h"

#include "host/bridge/BridgeTransport.h"
#include "midi/TickMath.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr auto kRelaxed = std::memory_order_relaxed;

} // namespace

void BridgeContext::update(const HostPosition& position)
{
    mTempo.store(position.tempo, kRelaxed);
    mNumerator.store(position.numerator, kRelaxed);
    mDenominator.store(position.denominator, kRelaxed);
    mBar.store(position.bar, kRelaxed);
    mBarTick.store(std::llround(position.barStart * BridgeTransport::kTicksPerQuarter), kRelaxed);
}

int BridgeContext::QuarterNoteLength()
{
    return BridgeTransport::kTicksPerQuarter;
}

std::int64_t BridgeContext::beatLength() const
{
    return std::max<std::int64_t>(
        BridgeTransport::kTicksPerQuarter * 4 / mDenominator.load(kRelaxed), 1);
}

std::int64_t BridgeContext::barLength() const
{
    return beatLength() * mNumerator.load(kRelaxed);
}

std::int32_t BridgeContext::BarPosition(int bar, int beat, int tick)
{
    const std::int64_t bars = std::int64_t{bar} - mBar.load(kRelaxed);
    return Korvanel::toTicks(mBarTick.load(kRelaxed) + bars * barLength() +
                             std::int64_t{beat} * beatLength() + tick);
}

void BridgeContext::GetBar(std::int32_t at, int* bar, int* beat, int* tick)
{
    const std::int64_t fromBar = at - mBarTick.load(kRelaxed);
    const std::int64_t bars = Korvanel::floorDivide(fromBar, barLength());
    const std::int64_t inBar = fromBar - bars * barLength();
    Korvanel::storeTicks(bar, mBar.load(kRelaxed) + bars);
    Korvanel::storeTicks(beat, inBar / beatLength());
    Korvanel::storeTicks(tick, inBar % beatLength());
}
