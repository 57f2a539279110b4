/// Areas of a surface: clips, invalid parts, shapes. Each is a set of pixels kept as a banded list
/// of rectangles, as Surface and the framework's Region use it.
#pragma once
#include <cstdint>
#include <pixman.h>

namespace toolkit {

struct SurfacePoint
{
    std::int32_t x = 0;
    std::int32_t y = 0;

    friend bool operator==(const SurfacePoint&, const SurfacePoint&) = default;
};

/// Right and bottom lie outside. Without width or height it is empty, however it is turned.
struct SurfaceRect
{
    std::int32_t left = 0;
    std::int32_t top = 0;
    std::int32_t right = 0;
    std::int32_t bottom = 0;

    bool empty() const { return right <= left || bottom <= top; }

    friend bool operator==(const SurfaceRect&, const SurfaceRect&) = default;
};

/// The pixels that both have; empty when there are none.
SurfaceRect intersection(const SurfaceRect& a, const SurfaceRect& b);

/// How many device pixels stand for how many logical ones, each above 0; one number alone is a
/// percentage.
struct SurfaceScale
{
    int device = 100;
    int logical = 100;

    bool isOneToOne() const { return device == logical; }

    /// Device pixels of one logical pixel where that may not differ from place to place.
    int wholePixels() const { return device / logical; }

    friend bool operator==(const SurfaceScale&, const SurfaceScale&) = default;
};

/// A coordinate in device pixels: the floor, so that neighbours stay neighbours at every scale.
/// @return kept within 2^28 of zero, so that products of two lengths fit into 64 bits
std::int32_t scaledEdge(std::int32_t edge, SurfaceScale scale);

/// A value. Out of memory leaves it empty. Thread: one at a time.
class SurfaceRegion
{
public:
    SurfaceRegion();
    explicit SurfaceRegion(const SurfaceRect& rect);
    SurfaceRegion(const SurfaceRegion& other);
    SurfaceRegion& operator=(const SurfaceRegion& other);
    SurfaceRegion(SurfaceRegion&& other) noexcept;            ///< leaves `other` empty
    SurfaceRegion& operator=(SurfaceRegion&& other) noexcept; ///< may exchange the two
    ~SurfaceRegion();

    void clear();
    void unite(const SurfaceRegion& other);
    void intersect(const SurfaceRegion& other);
    void subtract(const SurfaceRegion& other);
    void exclusiveOr(const SurfaceRegion& other);

    /// What leaves the 32-bit plane is cut off.
    void translate(std::int32_t dx, std::int32_t dy);

    bool empty() const;
    bool contains(SurfacePoint point) const;
    bool touches(const SurfaceRect& rect) const; ///< at least one pixel is shared
    SurfaceRect extents() const;                 ///< the smallest rectangle around it
    bool operator==(const SurfaceRegion& other) const;

    /// The pixels with a neighbour, edge or corner, outside the region.
    SurfaceRegion border() const;

    /// The same area in device pixels, each edge by scaledEdge.
    SurfaceRegion scaled(SurfaceScale across, SurfaceScale down) const;

    /// Calls `visit` with each part of `area` that lies in the region, from the top down and in a
    /// band from the left; no two parts overlap.
    template <typename Visit>
    void visitWithin(const SurfaceRect& area, Visit visit) const
    {
        for (const pixman_box32_t *box = firstEndingBelow(area.top), *end = last();
             box != end && box->y1 < area.bottom; ++box) {
            const SurfaceRect part = intersection(area, {box->x1, box->y1, box->x2, box->y2});
            if (!part.empty())
                visit(part);
        }
    }

private:
    const pixman_box32_t* firstEndingBelow(std::int32_t y) const;
    const pixman_box32_t* last() const;

    pixman_region32_t mRegion;
};

} // namespace toolkit
