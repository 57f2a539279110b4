/// Points and rectangles of windows and controls, in window points: the unit that is one pixel at
/// scale 1 whatever the display's density. The y axis points down.
#pragma once
#include <cstdint>

namespace toolkit {

struct Point
{
    std::int32_t x = 0;
    std::int32_t y = 0;

    bool operator==(const Point&) const = default;
};

struct Rect
{
    std::int32_t x = 0;
    std::int32_t y = 0;
    std::int32_t width = 0;
    std::int32_t height = 0;

    bool operator==(const Rect&) const = default;

    /// The left and top edges count, the right and bottom ones do not.
    bool contains(Point p) const
    {
        return p.x >= x && p.x - x < width && p.y >= y && p.y - y < height;
    }

    Point centre() const { return {x + width / 2, y + height / 2}; }
};

} // namespace toolkit
