#include "platform/toolkit/SurfaceRegion.h"

#include <algorithm>
#include <utility>
#include <vector>

namespace toolkit {

namespace {

// The library takes its operands as mutable and changes none but the first.
pixman_region32_t* operand(const pixman_region32_t& region)
{
    return const_cast<pixman_region32_t*>(&region);
}

/// The coordinates that a move leaves on the plane.
std::pair<std::int32_t, std::int32_t> movableAlong(std::int32_t distance)
{
    return {INT32_MIN - std::min(distance, 0), INT32_MAX - std::max(distance, 0)};
}

} // namespace

SurfaceRect intersection(const SurfaceRect& a, const SurfaceRect& b)
{
    return {std::max(a.left, b.left), std::max(a.top, b.top), std::min(a.right, b.right),
            std::min(a.bottom, b.bottom)};
}

std::int32_t scaledEdge(std::int32_t edge, SurfaceScale scale)
{
    constexpr std::int64_t limit = 1 << 28;
    std::int64_t scaled = edge;
    if (!scale.isOneToOne()) {
        const std::int64_t product = std::int64_t{edge} * scale.device;
        scaled = product / scale.logical - (product % scale.logical < 0 ? 1 : 0);
    }
    return static_cast<std::int32_t>(std::clamp(scaled, -limit, limit));
}

SurfaceRegion::SurfaceRegion()
{
    pixman_region32_init(&mRegion);
}

SurfaceRegion::SurfaceRegion(const SurfaceRect& rect)
{
    pixman_box32_t box{rect.left, rect.top, rect.right, rect.bottom};
    if (rect.empty())
        pixman_region32_init(&mRegion);
    else
        pixman_region32_init_with_extents(&mRegion, &box);
}

SurfaceRegion::SurfaceRegion(const SurfaceRegion& other)
    : SurfaceRegion()
{
    pixman_region32_copy(&mRegion, operand(other.mRegion));
}

SurfaceRegion& SurfaceRegion::operator=(const SurfaceRegion& other)
{
    if (this != &other)
        pixman_region32_copy(&mRegion, operand(other.mRegion));
    return *this;
}

// The library's record holds no address within itself, so it moves as it is.
SurfaceRegion::SurfaceRegion(SurfaceRegion&& other) noexcept
    : SurfaceRegion()
{
    std::swap(mRegion, other.mRegion);
}

SurfaceRegion& SurfaceRegion::operator=(SurfaceRegion&& other) noexcept
{
    std::swap(mRegion, other.mRegion);
    return *this;
}

SurfaceRegion::~SurfaceRegion()
{
    pixman_region32_fini(&mRegion);
}

void SurfaceRegion::clear()
{
    pixman_region32_clear(&mRegion);
}

void SurfaceRegion::unite(const SurfaceRegion& other)
{
    pixman_region32_union(&mRegion, &mRegion, operand(other.mRegion));
}

void SurfaceRegion::intersect(const SurfaceRegion& other)
{
    pixman_region32_intersect(&mRegion, &mRegion, operand(other.mRegion));
}

void SurfaceRegion::subtract(const SurfaceRegion& other)
{
    pixman_region32_subtract(&mRegion, &mRegion, operand(other.mRegion));
}

void SurfaceRegion::exclusiveOr(const SurfaceRegion& other)
{
    SurfaceRegion onlyOther(other);
    onlyOther.subtract(*this);
    subtract(other);
    unite(onlyOther);
}

void SurfaceRegion::translate(std::int32_t dx, std::int32_t dy)
{
    if (dx == 0 && dy == 0)
        return;
    // the library wraps around at the plane's end
    const auto [left, right] = movableAlong(dx);
    const auto [top, bottom] = movableAlong(dy);
    const SurfaceRect all = extents();
    if (all.left < left || all.top < top || all.right > right || all.bottom > bottom)
        intersect(SurfaceRegion({left, top, right, bottom}));
    pixman_region32_translate(&mRegion, dx, dy);
}

bool SurfaceRegion::empty() const
{
    return !pixman_region32_not_empty(operand(mRegion));
}

bool SurfaceRegion::contains(SurfacePoint point) const
{
    return pixman_region32_contains_point(operand(mRegion), point.x, point.y, nullptr) != 0;
}

bool SurfaceRegion::touches(const SurfaceRect& rect) const
{
    pixman_box32_t box{rect.left, rect.top, rect.right, rect.bottom};
    return !rect.empty() &&
           pixman_region32_contains_rectangle(operand(mRegion), &box) != PIXMAN_REGION_OUT;
}

SurfaceRect SurfaceRegion::extents() const
{
    const pixman_box32_t* box = pixman_region32_extents(operand(mRegion));
    return {box->x1, box->y1, box->x2, box->y2};
}

bool SurfaceRegion::operator==(const SurfaceRegion& other) const
{
    return pixman_region32_equal(operand(mRegion), operand(other.mRegion)) != 0;
}

SurfaceRegion SurfaceRegion::border() const
{
    SurfaceRegion inside(*this);
    constexpr SurfacePoint directions[] = {{1, 0}, {0, 1}};
    for (const auto& [dx, dy] : directions) { // a square shrinks by its width, then by its height
        SurfaceRegion before(inside);
        SurfaceRegion after(inside);
        before.translate(-dx, -dy);
        after.translate(dx, dy);
        inside.intersect(before);
        inside.intersect(after);
    }
    SurfaceRegion edge(*this);
    edge.subtract(inside);
    return edge;
}

SurfaceRegion SurfaceRegion::scaled(SurfaceScale across, SurfaceScale down) const
{
    int count = 0;
    const pixman_box32_t* boxes = pixman_region32_rectangles(operand(mRegion), &count);
    std::vector<pixman_box32_t> device;
    device.reserve(static_cast<std::size_t>(count));
    for (int i = 0; i < count; ++i) {
        const pixman_box32_t box{scaledEdge(boxes[i].x1, across), scaledEdge(boxes[i].y1, down),
                                 scaledEdge(boxes[i].x2, across), scaledEdge(boxes[i].y2, down)};
        if (box.x1 < box.x2 && box.y1 < box.y2) // the far ends of the plane fold into its limit
            device.push_back(box);
    }
    SurfaceRegion result;
    pixman_region32_fini(&result.mRegion);
    pixman_region32_init_rects(&result.mRegion, device.data(), static_cast<int>(device.size()));
    return result;
}

const pixman_box32_t* SurfaceRegion::firstEndingBelow(std::int32_t y) const
{
    int count = 0;
    const pixman_box32_t* boxes = pixman_region32_rectangles(operand(mRegion), &count);
    if (count == 1) // the common clip; what does not meet it falls out at the intersection
        return boxes;
    return std::partition_point(boxes, boxes + count,
                                [y](const pixman_box32_t& box) { return box.y2 <= y; });
}

const pixman_box32_t* SurfaceRegion::last() const
{
    int count = 0;
    const pixman_box32_t* boxes = pixman_region32_rectangles(operand(mRegion), &count);
    return boxes + count;
}

} // namespace toolkit
