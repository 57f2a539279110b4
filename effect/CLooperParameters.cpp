// Parameters, positions and the velocity curve.
#include "effect/CLooper.h"
#include "midi/TickMath.h"

#include <algorithm>

using Korvanel::convertTicks;
using Korvanel::ScopedLock;
using Korvanel::toTicks;

namespace {

constexpr auto kRelaxed = std::memory_order_relaxed;

} // namespace

// Parameters --------------------------------------------------------------------------------------

CLooper::NumRange CLooper::getDnDRepeat() const
{
    return {1, 999, mDnDRepeat.load(kRelaxed)};
}

CLooper::NumRange CLooper::getVeloPlus() const
{
    return {-127, 127, mParams.veloPlus.load(kRelaxed)};
}

CLooper::NumRange CLooper::getRandomVeloMin() const
{
    return {-127, 0, mParams.randomVeloMin.load(kRelaxed)};
}

CLooper::NumRange CLooper::getRandomVeloMax() const
{
    return {0, 127, mParams.randomVeloMax.load(kRelaxed)};
}

CLooper::NumRange CLooper::getRandomVeloStrength() const
{
    return {0, 100, mParams.randomVeloStrength.load(kRelaxed)};
}

void CLooper::setDnDRepeat(int repeat)
{
    mDnDRepeat.store(repeat, kRelaxed);
}

void CLooper::setVeloPlus(int shift)
{
    mParams.veloPlus.store(shift, kRelaxed);
}

void CLooper::setRandomVeloMin(int step)
{
    mParams.randomVeloMin.store(step, kRelaxed);
}

void CLooper::setRandomVeloMax(int step)
{
    mParams.randomVeloMax.store(step, kRelaxed);
}

void CLooper::setRandomVeloStrength(int percent)
{
    mParams.randomVeloStrength.store(percent, kRelaxed);
}

void CLooper::setFlag(LooperParameters::Flag which, bool on)
{
    const auto bit = static_cast<std::uint8_t>(which);
    if (on)
        mParams.flags.fetch_or(bit, kRelaxed);
    else
        mParams.flags.fetch_and(static_cast<std::uint8_t>(~bit), kRelaxed);
}

bool CLooper::flag(LooperParameters::Flag which) const
{
    return (mParams.flags.load(kRelaxed) & which) != 0;
}

void CLooper::VelocityShift(int shift)
{
    setVeloPlus(std::clamp(shift, -127, 127));
    broadcast_to_listeners(&Listener::update);
}

void CLooper::TempoType(int type)
{
    const int stored = type < 0 || type > 2 ? 1 : type;
    mTempoType.store(stored, kRelaxed);
    if (mLooper != nullptr)
        mLooper->TempoType(stored);
}

void CLooper::SetChPort(std::int16_t channel, std::int16_t port)
{
    mChannel = channel;
    mPort = port;
    broadcast_to_listeners(&Listener::RefreshChPort);
}

int CLooper::recalc_velo(int v) const
{
    const std::int64_t lo = mVeloRangeLow;
    const std::int64_t hi = mVeloRangeHigh;
    const std::int64_t mid = lo <= 99 && hi >= 101 ? 100 : (lo + hi) / 2;
    if (v <= mid)
        return toTicks(hi + (v - mid) * (hi - lo) / (mid - 1));
    // Above the middle the curve goes on past the range; the editor shows it so.
    return toTicks(hi + (hi - lo) / 2 + ((hi - lo) * (v - 127) / 2) / (127 - mid));
}

// Positions ---------------------------------------------------------------------------------------

std::int32_t CLooper::GetLastTick(const Korvanel::CMidiTrack* track) const
{
    const ScopedLock hold(mEdit);
    const std::int64_t length = (track == nullptr ? mSourceTrack : *track).barsLength();
    const int type = tempoType();
    return toTicks(std::max<std::int64_t>(type == 0   ? length * 2
                                          : type == 1 ? length
                                                      : length / 2,
                                          1));
}

std::int32_t CLooper::GetMeasures(const Korvanel::CMidiTrack* track) const
{
    const ScopedLock hold(mEdit);
    return (track == nullptr ? mSourceTrack : *track).numberOfBars();
}

std::int32_t CLooper::getCurrentTick() const
{
    if (mContext == nullptr || mLooper == nullptr)
        return 0;
    const ScopedLock hold(mEdit);
    return toTicks(convertTicks(mLooper->nextFrom(), mSourceTrack.ticksPerQuarter, mContext->ppq));
}

std::int32_t CLooper::getCurrentLoopTick() const
{
    const std::int32_t length = GetLastTick(nullptr);
    const std::int32_t tick = getCurrentTick();
    return tick < 0 ? tick : tick % length;
}

std::int32_t CLooper::repetitionIn(const ProcessContext& ctx) const
{
    const ScopedLock hold(mEdit);
    const std::int64_t length =
        convertTicks(mSourceTrack.barsLength(), ctx.ppq, mSourceTrack.ticksPerQuarter);
    return length == 0 ? Korvanel::Looper::kLengthOfNothing : toTicks(length);
}

std::int32_t CLooper::FindLoop(std::int32_t at, const ProcessContext& ctx) const
{
    return at % repetitionIn(ctx);
}

std::int32_t CLooper::NextLoop(std::int32_t at, const ProcessContext& ctx) const
{
    return toTicks(std::int64_t{at} + repetitionIn(ctx));
}
