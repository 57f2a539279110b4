// The slanted shapes of a surface: each is worked out row by row from the clip's rows alone, so
// that a shape's cost does not grow with what lies outside the picture.
#include "platform/toolkit/Surface.h"

#include <algorithm>

namespace toolkit {

namespace {

std::int64_t floorDivided(std::int64_t a, std::int64_t b) // b > 0
{
    return a / b - (a % b < 0 ? 1 : 0);
}

std::int64_t ceilDivided(std::int64_t a, std::int64_t b)
{
    return -floorDivided(-a, b);
}

/// A line without thickness, downwards from (x, y); `step` is its way sideways, +1 or -1.
struct Slope
{
    std::int64_t x;
    std::int64_t y;
    std::int64_t width;
    std::int64_t height;
    std::int64_t step;
};

struct Span
{
    std::int64_t from;
    std::int64_t to; ///< included
};

/// The pixels of one row: those whose distance to the line is at most a half.
Span spanOfRow(const Slope& line, std::int64_t row)
{
    const std::int64_t down = row - line.y;
    Span along;
    if (line.height >= line.width) {
        along.from = (2 * down * line.width + line.height) / (2 * line.height);
        along.to = along.from;
    } else {
        const std::int64_t first = 2 * line.width * down - line.width;
        along.from = std::max<std::int64_t>(0, ceilDivided(first, 2 * line.height));
        along.to = std::min(line.width, ceilDivided(first + 2 * line.width, 2 * line.height) - 1);
    }
    if (line.step > 0)
        return {line.x + along.from, line.x + along.to};
    return {line.x - along.to, line.x - along.from};
}

} // namespace

void Surface::line(SurfacePoint from, SurfacePoint to)
{
    if (from.x != to.x && from.y != to.y) {
        slantedLine(from, to);
        return;
    }
    const auto [left, right] = std::minmax(from.x, to.x);
    const auto [top, bottom] = std::minmax(from.y, to.y);
    if (right < INT32_MAX && bottom < INT32_MAX)
        paintRect({left, top, right + 1, bottom + 1});
}

void Surface::slantedLine(SurfacePoint from, SurfacePoint to)
{
    if (from.y > to.y)
        std::swap(from, to);
    const SurfacePoint begin = toDevice(from);
    const SurfacePoint end = toDevice(to);
    const std::int64_t x = begin.x;
    const std::int64_t y = begin.y;
    const std::int64_t endX = end.x;
    const std::int64_t endY = end.y;
    const Slope slope{x, y, std::abs(endX - x), std::max<std::int64_t>(1, endY - y),
                      endX < x ? -1 : 1};
    // a thicker pen covers, in each row, what the thin line has in the rows that hang above it
    const std::int64_t pen = std::min(mAcross.wholePixels(), mDown.wholePixels());
    const SurfaceRect area = deviceClip().extents();
    const std::int64_t last = std::min<std::int64_t>(endY + pen, area.bottom);
    for (std::int64_t row = std::max<std::int64_t>(y, area.top); row < last; ++row) {
        const Span upper = spanOfRow(slope, std::max(y, row - pen + 1));
        const Span lower = spanOfRow(slope, std::min(endY, row));
        const std::int64_t left = std::min(upper.from, lower.from);
        const std::int64_t right = std::max(upper.to, lower.to) + pen;
        paintDevice({static_cast<std::int32_t>(left), static_cast<std::int32_t>(row),
                     static_cast<std::int32_t>(right), static_cast<std::int32_t>(row + 1)});
    }
}

void Surface::paintPolygon(std::span<const SurfacePoint> outline)
{
    std::vector<SurfacePoint> points;
    points.reserve(outline.size());
    std::int32_t lowest = INT32_MIN;
    std::int32_t highest = INT32_MAX;
    for (const SurfacePoint& point : outline) {
        points.push_back(toDevice(point));
        lowest = std::max(lowest, points.back().y);
        highest = std::min(highest, points.back().y);
    }
    const SurfaceRect area = deviceClip().extents();
    std::vector<std::int32_t> crossings;
    for (std::int32_t y = std::max(highest, area.top); y < std::min(lowest, area.bottom); ++y) {
        crossings.clear();
        for (std::size_t i = 0; i < points.size(); ++i) {
            SurfacePoint a = points[i == 0 ? points.size() - 1 : i - 1];
            SurfacePoint b = points[i];
            if (a.y > b.y)
                std::swap(a, b);
            if (y < a.y || y >= b.y)
                continue;
            // the first pixel whose centre is not left of the side, at the height of the centres
            const std::int64_t height = std::int64_t{b.y} - a.y;
            const std::int64_t along =
                (2 * (std::int64_t{y} - a.y) + 1) * (std::int64_t{b.x} - a.x);
            crossings.push_back(
                static_cast<std::int32_t>(a.x + ceilDivided(along - height, 2 * height)));
        }
        paintCrossings(y, crossings);
    }
}

void Surface::paintCrossings(std::int32_t y, std::vector<std::int32_t>& crossings)
{
    std::sort(crossings.begin(), crossings.end());
    for (std::size_t i = 0; i + 1 < crossings.size(); i += 2)
        if (crossings[i] < crossings[i + 1])
            paintDevice({crossings[i], y, crossings[i + 1], y + 1});
}

} // namespace toolkit
