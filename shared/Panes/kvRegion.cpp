#include "shared/Panes/kvRegion.h"

#include <algorithm>
#include <limits>
#include <utility>

namespace Korvanel {

namespace {

std::int32_t farEdge(std::int32_t edge, std::int32_t length)
{
    using Limits = std::numeric_limits<std::int32_t>;
    return static_cast<std::int32_t>(
        std::clamp<std::int64_t>(std::int64_t{edge} + length, Limits::min(), Limits::max()));
}

} // namespace

toolkit::SurfaceRect platformRect(const Rect& rect)
{
    return {rect.x, rect.y, farEdge(rect.x, rect.width), farEdge(rect.y, rect.height)};
}

Region::Region(const Rect& rect)
    : mRegion(platformRect(rect))
{
}

Region::Region(toolkit::SurfaceRegion platform)
    : mRegion(std::move(platform))
{
}

void Region::Complement(const Region& other)
{
    *this = Difference(other, *this);
}

Region Region::Union(const Region& a, const Region& b)
{
    Region result(a);
    result.Union(b);
    return result;
}

Region Region::Intersection(const Region& a, const Region& b)
{
    Region result(a);
    result.Intersect(b);
    return result;
}

Region Region::Difference(const Region& a, const Region& b)
{
    Region result(a);
    result.Subtract(b);
    return result;
}

Region Region::Complementation(const Region& a, const Region& b)
{
    return Difference(b, a);
}

Region Region::Xor(const Region& a, const Region& b)
{
    Region result(a);
    result.Xor(b);
    return result;
}

} // namespace Korvanel
