/// Areas of any shape, for clipping, drawing and redrawing.
#pragma once
#include "platform/toolkit/SurfaceRegion.h"
#include "shared/Panes/kvGeometry.h"

#include <utility>

namespace Korvanel {

/// The edges of a rectangle as the platform counts them; what passes the 32-bit plane is cut off.
toolkit::SurfaceRect platformRect(const Rect& rect);

/// A set of pixels. Copying copies the set. Thread: one at a time.
class Region
{
public:
    Region() = default; ///< empty
    explicit Region(const Rect& rect);
    explicit Region(toolkit::SurfaceRegion platform);

    void Copy(const Region& other) { mRegion = other.mRegion; }

    void Offset(int dx, int dy) { mRegion.translate(dx, dy); }

    bool Contains(const Point& point) const { return mRegion.contains({point.x, point.y}); }

    bool Intersects(const Rect& rect) const { return mRegion.touches(platformRect(rect)); }

    bool IsEmpty() const { return mRegion.empty(); }

    void Empty() { mRegion.clear(); }

    void Union(const Region& other) { mRegion.unite(other.mRegion); }

    void Intersect(const Region& other) { mRegion.intersect(other.mRegion); }

    void Subtract(const Region& other) { mRegion.subtract(other.mRegion); }

    void Complement(const Region& other); ///< what `other` has and this had not

    void Xor(const Region& other) { mRegion.exclusiveOr(other.mRegion); }

    static Region Union(const Region& a, const Region& b);
    static Region Intersection(const Region& a, const Region& b);
    static Region Difference(const Region& a, const Region& b);      ///< a without b
    static Region Complementation(const Region& a, const Region& b); ///< b without a
    static Region Xor(const Region& a, const Region& b);

    const toolkit::SurfaceRegion& platform() const& { return mRegion; }

    toolkit::SurfaceRegion platform() && { return std::move(mRegion); }

    friend bool operator==(const Region&, const Region&) = default;

private:
    toolkit::SurfaceRegion mRegion;
};

} // namespace Korvanel
