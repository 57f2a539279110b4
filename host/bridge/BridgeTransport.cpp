#include "host/bridge/BridgeTransport.h"

#include "midi/TickMath.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <limits>

namespace {

constexpr double kTicks = BridgeTransport::kTicksPerQuarter;
/// Ticks that arithmetic in doubles may be off by; a host's own arithmetic included.
constexpr double kExact = 1e-5;
/// Quarters that a host may round its position by: more than a tick of 480 to the quarter.
constexpr double kHostRounding = 1.0 / 240;
/// Quarters by which our own count may differ from the host's. Some hosts cut their positions down
/// to ticks of 1920 to the quarter, and following that would let every note jitter.
constexpr double kOwnCount = 4.0 / kTicks;
constexpr double kShortestLoop = 1.0 / 32; ///< quarters; a shorter one is a slip of the mouse
constexpr double kLargestTempo = 100'000;
constexpr double kLargestPosition = 1e9; ///< quarters; ticks end long before
constexpr double kTickLimit = kLargestPosition * kTicks;
/// The last tick that is played; the engine counts up to the one behind it.
constexpr std::int64_t kLast = Korvanel::kLastTick - 1;

/// The first tick not before a position, which may be late by `slack` ticks.
std::int64_t firstTick(double quarters, double slack)
{
    const double ticks = std::clamp(quarters * kTicks - slack, -kTickLimit, kTickLimit);
    const auto cut = static_cast<std::int64_t>(ticks); // and up, without a call
    return static_cast<double>(cut) < ticks ? cut + 1 : cut;
}

bool isPosition(double quarters)
{
    return std::abs(quarters) <= kLargestPosition; // false for what is no number
}

bool isTempo(double tempo)
{
    return tempo > 0 && tempo <= kLargestTempo;
}

bool isLoop(const HostPosition& position)
{
    return position.looping && isPosition(position.loopStart) && isPosition(position.loopEnd) &&
           position.loopEnd - position.loopStart >= kShortestLoop;
}

} // namespace

void BridgeTransport::prepare(double sampleRate)
{
    *this = {};
    mSampleRate = sampleRate > 0 ? sampleRate : 48000;
    mQuartersPerFrame = quartersPerFrame(mPosition.tempo);
}

HostPosition BridgeTransport::sensible(const HostPosition& position, const HostPosition& before)
{
    HostPosition result = position;
    if (!isTempo(position.tempo))
        result.tempo = before.tempo;
    if (position.numerator < 1 || position.denominator < 1) {
        result.numerator = before.numerator;
        result.denominator = before.denominator;
    }
    if (!isPosition(position.barStart)) {
        result.bar = before.bar;
        result.barStart = before.barStart;
    }
    result.looping = isLoop(position);
    return result;
}

BridgeTransport::Change BridgeTransport::report(std::int64_t frame, const HostPosition& reported)
{
    HostPosition position = sensible(reported, mPosition);
    if (!isPosition(position.quarters))
        position.quarters = quartersAt(frame);
    const bool wasPlaying = playing();
    const double expected = quartersAt(frame);
    const bool goesOn = wasPlaying && position.playing && agrees(frame, position);
    const bool sameTempo = position.tempo == mPosition.tempo;
    mPosition = position;
    mReportFrame = frame;
    mWraps = position.looping && position.quarters < position.loopEnd - kExact / kTicks;

    if (goesOn) {
        follow(frame, position.quarters - expected, sameTempo);
        return Change::None;
    }
    moveAnchor(frame, position.quarters);
    if (!position.playing)
        return wasPlaying ? Change::Stop : Change::None;
    jump(frame);
    if (!wasPlaying)
        return Change::Start;
    return position.quarters < expected ? Change::Loop : Change::Locate;
}

/// At a steady tempo our count stays within its bounds around the host's; where the tempo changes
/// the host knows better, unless it says the same.
void BridgeTransport::follow(std::int64_t frame, double ahead, bool sameTempo)
{
    const double expected = quartersAt(frame);
    if (!sameTempo)
        moveAnchor(frame, std::abs(ahead) <= kExact / kTicks ? expected : expected + ahead);
    else if (std::abs(ahead) > kOwnCount)
        moveAnchor(frame, expected + ahead - std::copysign(kOwnCount, ahead));
}

/// A tempo that has changed since the last report may have done so at any moment in between.
bool BridgeTransport::agrees(std::int64_t frame, const HostPosition& position) const
{
    const double before = quartersAt(frame);
    const double after = quartersAt(mReportFrame) + static_cast<double>(frame - mReportFrame) *
                                                        quartersPerFrame(position.tempo);
    return position.quarters >= std::min(before, after) - kHostRounding &&
           position.quarters <= std::max(before, after) + kHostRounding;
}

double BridgeTransport::quartersAt(std::int64_t frame) const
{
    if (!playing())
        return mAnchorQuarters;
    return mAnchorQuarters + static_cast<double>(frame - mAnchorFrame) * mQuartersPerFrame;
}

void BridgeTransport::moveAnchor(std::int64_t frame, double quarters)
{
    mAnchorFrame = frame;
    mAnchorQuarters = quarters;
    mQuartersPerFrame = quartersPerFrame(mPosition.tempo);
}

/// Hosts that count in frames put the start of a bar up to a frame behind its place; the note
/// there must be heard all the same.
void BridgeTransport::jump(std::int64_t frame)
{
    const double frameTicks = mQuartersPerFrame * kTicks;
    mNextTick = firstTick(quartersAt(frame), std::max(kExact, std::min(frameTicks, 1.0)));
}

// Loop --------------------------------------------------------------------------------------------

std::int64_t BridgeTransport::wrapBefore(std::int64_t end) const
{
    const std::int64_t loopEnd = firstTick(mPosition.loopEnd, kExact);
    if (tickAt(end) <= loopEnd)
        return end;
    return frameOf(loopEnd, mReportFrame, end - 1);
}

BridgeTransport::Slice BridgeTransport::takeToLoopEnd()
{
    return takeThrough(firstTick(mPosition.loopEnd, kExact) - 1);
}

void BridgeTransport::wrap(std::int64_t frame)
{
    mAnchorQuarters -= mPosition.loopEnd - mPosition.loopStart;
    mReportFrame = frame;
    mNextTick = firstTick(mPosition.loopStart, kExact);
}

// Ticks -------------------------------------------------------------------------------------------

std::int64_t BridgeTransport::tickAt(std::int64_t frame) const
{
    return firstTick(quartersAt(frame), kExact);
}

BridgeTransport::Slice BridgeTransport::take(std::int64_t end)
{
    if (!playing())
        return {0, -1};
    return takeThrough(tickAt(end) - 1);
}

BridgeTransport::Slice BridgeTransport::takeThrough(std::int64_t last)
{
    const std::int64_t from = mNextTick;
    if (last < from)
        return {0, -1};
    mNextTick = last + 1;
    if (from >= Korvanel::kLastTick || last < std::numeric_limits<std::int32_t>::min())
        return {0, -1};
    return {Korvanel::toTicks(from), Korvanel::toTicks(std::min<std::int64_t>(last, kLast))};
}

std::int64_t BridgeTransport::frameOf(std::int64_t tick, std::int64_t first,
                                      std::int64_t last) const
{
    if (mQuartersPerFrame <= 0 || last <= first)
        return first;
    const double quarters = static_cast<double>(tick) / kTicks - mAnchorQuarters;
    const double at = static_cast<double>(mAnchorFrame) + quarters / mQuartersPerFrame;
    std::int64_t frame = static_cast<std::int64_t>(
        std::clamp(at, static_cast<double>(first), static_cast<double>(last)));
    while (frame > first && tickAt(frame) > tick) // a division may miss the frame by one
        --frame;
    while (frame < last && tickAt(frame + 1) <= tick)
        ++frame;
    return frame;
}

std::int32_t BridgeTransport::nextTick() const
{
    return Korvanel::toTicks(mNextTick);
}
