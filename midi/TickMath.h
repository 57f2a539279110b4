/// Arithmetic on ticks: computed in 64 bits and narrowed to the nearest 32-bit value, so that times
/// stay in order however large they get. Thread: any.
#pragma once
#include <algorithm>
#include <cstdint>
#include <limits>

namespace Korvanel {

constexpr std::int32_t kLastTick = std::numeric_limits<std::int32_t>::max();

constexpr std::int32_t toTicks(std::int64_t ticks)
{
    return static_cast<std::int32_t>(
        std::clamp<std::int64_t>(ticks, std::numeric_limits<std::int32_t>::min(), kLastTick));
}

/// `ticks` of one resolution in another, rounded towards zero. Resolutions are ticks per quarter; a
/// resolution of 0 converts nothing.
constexpr std::int64_t convertTicks(std::int64_t ticks, std::int32_t toPpq, std::int32_t fromPpq)
{
    if (ticks == 0 || toPpq == fromPpq || fromPpq == 0)
        return ticks;
    return ticks * toPpq / fromPpq;
}

/// Rounded down, as positions before the start of the song need it. @param by  above 0
constexpr std::int64_t floorDivide(std::int64_t value, std::int64_t by)
{
    return value / by - (value % by < 0 ? 1 : 0);
}

/// Answers through a pointer that may be null, where nobody asked.
constexpr void storeTicks(std::int32_t* target, std::int64_t ticks)
{
    if (target != nullptr)
        *target = toTicks(ticks);
}

} // namespace Korvanel
