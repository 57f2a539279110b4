/// Where the event view's play cursor stands.
#pragma once
#include <cstdint>

/// What CLooper::GetLastTick says of a pattern without any length.
constexpr std::int32_t kLastTickOfNothing = 1;

/// @param width     of the pattern's picture, pixels
/// @param loopTick  in the pattern; below 0 before the song's beginning
/// @param lastTick  the pattern's length in ticks
/// @return pixels from the picture's left edge, 0 for a pattern without length; below 0 for a
///         negative tick
constexpr std::int32_t cursorColumn(std::int32_t width, std::int32_t loopTick,
                                    std::int32_t lastTick)
{
    if (lastTick <= kLastTickOfNothing)
        return 0;
    return static_cast<std::int32_t>(std::int64_t{width} * loopTick / lastTick);
}
