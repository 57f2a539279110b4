#include "effect/Looper.h"

#include "effect/ProcessContext.h"
#include "midi/CMidiTrack.h"

#include <algorithm>
#include <array>
#include <cstdlib>

namespace Korvanel {

namespace {

constexpr std::int32_t kLargestExactPpq = 1 << 16;

} // namespace

// TickRate ----------------------------------------------------------------------------------------

TickRate::TickRate(std::int32_t trackPpq, std::int32_t hostPpq, std::int32_t tempoType)
    : mFactor(1)
    , mHostPpq(hostPpq)
    , mTrackPpq(trackPpq)
    , mTempoType(tempoType)
    , mExactInDouble(trackPpq > 0 && trackPpq < kLargestExactPpq && hostPpq >= 0 &&
                     hostPpq < kLargestExactPpq)
{
    if (trackPpq != hostPpq && trackPpq != 0)
        mFactor = hostPpq % trackPpq == 0 ? hostPpq / trackPpq : 0;
}

/// With both resolutions below 2^16 the product is below 2^47, and a quotient that fits a tick is
/// further from the next whole number than a double's error, so the cheaper division cuts to the
/// same number as the whole-number one.
std::int64_t TickRate::divided(std::int32_t patternTicks) const
{
    const std::int64_t product = std::int64_t{patternTicks} * mHostPpq;
    if (!mExactInDouble)
        return product / mTrackPpq;
    return static_cast<std::int64_t>(static_cast<double>(product) / mTrackPpq);
}

// Looper ------------------------------------------------------------------------------------------

Looper::Looper(CMidiTrack& track, CriticalSection& lock, ProcessContext& context,
               LooperParameters* params)
    : mTrack(track)
    , mLock(lock)
    , mContext(context)
    , mParams(params)
{
}

TickRate Looper::rate() const
{
    return {mTrack.ticksPerQuarter, mContext.ppq, mTempoType};
}

std::int32_t Looper::ticksFor(std::int32_t patternTicks) const
{
    return rate().hostTicks(patternTicks);
}

std::int32_t Looper::loopLength() const
{
    return loopLength(rate());
}

std::int32_t Looper::loopLength(const TickRate& rate) const
{
    const std::int32_t length = rate.hostTicks(toTicks(mTrack.barsLength()));
    return length < 1 ? kLengthOfNothing : length;
}

void Looper::nextLoop()
{
    mLoopOffset += loopLength();
    mCursor = 0;
    mRewound = false;
}

void Looper::reset()
{
    mLoopOffset = 0;
    mCursor = 0;
    mRewound = true;
}

void Looper::setLoop(std::int32_t)
{
    reset();
}

void Looper::TempoType(int type)
{
    const ScopedLock hold(mLock);
    mTempoType = type;
    reset();
}

void Looper::process(std::int32_t from, std::int32_t to, ProcessContext& ctx, std::int32_t base)
{
    const ScopedLock hold(mLock);
    const std::int32_t expected = nextFrom();
    const bool contiguous = base == mBase && expected >= 0 && expected == from;
    mBase = base;
    if (!contiguous)
        reset();
    mNextFrom.store(toTicks(std::int64_t{to} + 1), std::memory_order_relaxed);
    if (mTrack.lastTick <= 0 || mTrack.events.empty())
        return;
    const TickRate rate = this->rate();
    if (mRewound)
        seek(std::min<std::int64_t>(from, std::int64_t{to} + 1), rate);
    play(from, to, ctx, rate);
}

/// Goes to the first event at or behind `from` of the first repetition that has one. A scan from
/// repetition 0 would play nothing before it, so it would arrive here as well, only later.
void Looper::seek(std::int64_t from, const TickRate& rate)
{
    const auto& events = mTrack.events;
    const std::int64_t length = loopLength(rate);
    const std::int64_t lastEvent = rate.hostTicks(events.back().time);
    const std::int64_t beyond = from - mBase - lastEvent;
    mLoopOffset = beyond > 0 ? (beyond + length - 1) / length * length : 0;
    const std::int64_t start = mLoopOffset + mBase;
    const auto first =
        std::partition_point(events.begin(), events.end(), [&](const MfxEvent& event) {
            return start + rate.hostTicks(event.time) < from;
        });
    mCursor = static_cast<std::size_t>(first - events.begin());
    mRewound = false;
}

void Looper::play(std::int32_t from, std::int32_t to, ProcessContext& ctx, const TickRate& rate)
{
    const auto& events = mTrack.events;
    for (;;) {
        if (mCursor >= events.size()) {
            mLoopOffset += loopLength(rate);
            mCursor = 0;
        }
        const MfxEvent& event = events[mCursor];
        const std::int64_t time = mLoopOffset + mBase + rate.hostTicks(event.time);
        if (time > to)
            return;
        if (time >= from && isOutputEvent(event))
            emit(event, static_cast<std::int32_t>(time), ctx, rate);
        ++mCursor;
    }
}

inline void Looper::emit(const MfxEvent& event, std::int32_t time, ProcessContext& ctx,
                         const TickRate& rate)
{
    std::uint32_t duration = event.duration;
    if (event.isNote() && duration != MfxEvent::kOpen)
        duration = static_cast<std::uint32_t>(rate.hostTicks(toTicks(duration)));
    // Field by field: whoever reads the copy in other pieces than it was written in waits for the
    // stores.
    MfxEvent copy{time,        event.port,     event.channel,         event.type,
                  event.key,   event.velocity, event.releaseVelocity, duration,
                  event.amount};
    if (event.isNote() && mParams != nullptr)
        applyParamsToNote(copy);
    ctx.outputEvent(copy);
}

bool Looper::isOutputEvent(const MfxEvent& event)
{
    return event.type != MfxEvent::Patch && event.type != MfxEvent::Wheel &&
           !isMixerController(event);
}

bool Looper::processPitchWheel(std::int32_t, int value)
{
    mWheelShift = value / 128;
    return true;
}

int Looper::randomStep(const LooperParameters& params)
{
    constexpr std::int64_t kZero = std::int64_t{1} << 30; ///< the draw that changes nothing
    const std::int64_t strength = params.randomVeloStrength.load(std::memory_order_relaxed);
    if (strength < 1)
        return 0;
    const std::int64_t r = mRandom.next();
    const std::array<std::int64_t, 2> limits{params.randomVeloMin.load(std::memory_order_relaxed),
                                             params.randomVeloMax.load(std::memory_order_relaxed)};
    // Looked up and not branched to: which way a draw goes cannot be foreseen.
    std::int64_t x = std::abs(r - kZero) * limits[r > kZero ? 1 : 0];
    if (strength <= 99) {
        // A draw that is a whole multiple of this keeps its full strength. It is how the effect has
        // always sounded.
        const std::int64_t d = strength * kZero / 100;
        if (r % d != 0)
            x = x / 100 * strength +
                x % 100 * strength / 100; // x * strength / 100, without its overflow
    }
    return static_cast<int>(x / kZero);
}

void Looper::applyParamsToNote(MfxEvent& note)
{
    const LooperParameters& params = *mParams;
    const std::uint8_t flags = params.flags.load(std::memory_order_relaxed);
    const std::int64_t old = note.velocity;
    std::int64_t v = old + params.veloPlus.load(std::memory_order_relaxed);
    if ((flags & LooperParameters::VelocityController) != 0)
        v += mVeloAdd;
    if ((flags & LooperParameters::PitchWheel) != 0)
        v += mWheelShift;
    if ((flags & LooperParameters::RandomVelocity) != 0)
        v += randomStep(params);
    if (v != old)
        note.velocity = static_cast<std::uint8_t>(std::clamp<std::int64_t>(v, 1, 127));
}

} // namespace Korvanel
