/// Points and rectangles of panes and drawings, in logical pixels.
#pragma once
#include <cstdint>

namespace Korvanel {

struct Point
{
    std::int32_t x = 0;
    std::int32_t y = 0;

    friend bool operator==(const Point&, const Point&) = default;
};

/// Places may come from a host: sums wrap around instead of being undefined.
constexpr std::int32_t wrappedSum(std::int32_t a, std::int32_t b)
{
    return static_cast<std::int32_t>(static_cast<std::uint32_t>(a) + static_cast<std::uint32_t>(b));
}

constexpr std::int32_t wrappedDifference(std::int32_t a, std::int32_t b)
{
    return static_cast<std::int32_t>(static_cast<std::uint32_t>(a) - static_cast<std::uint32_t>(b));
}

constexpr Point operator+(Point a, Point b)
{
    return {wrappedSum(a.x, b.x), wrappedSum(a.y, b.y)};
}

constexpr Point operator-(Point a, Point b)
{
    return {wrappedDifference(a.x, b.x), wrappedDifference(a.y, b.y)};
}

/// Without width or height, or with negative ones, it is empty: it contains no point.
struct Rect
{
    std::int32_t x = 0;
    std::int32_t y = 0;
    std::int32_t width = 0;
    std::int32_t height = 0;

    constexpr Point origin() const { return {x, y}; }

    /// The left and top edges belong to it, the right and bottom edges do not.
    constexpr bool contains(Point p) const
    {
        return x <= p.x && std::int64_t{p.x} < std::int64_t{x} + width && y <= p.y &&
               std::int64_t{p.y} < std::int64_t{y} + height;
    }

    constexpr Rect shiftedBy(Point by) const
    {
        return {wrappedSum(x, by.x), wrappedSum(y, by.y), width, height};
    }

    friend bool operator==(const Rect&, const Rect&) = default;
};

} // namespace Korvanel
