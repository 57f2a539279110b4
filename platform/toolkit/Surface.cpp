#include "platform/toolkit/Surface.h"

#include <algorithm>
#include <new>
#include <utility>

namespace toolkit {

namespace {

constexpr int longestSide = 32'767;

template <typename Mix>
void mixRows(std::uint32_t* row, const SurfaceRect& part, std::size_t stride, Mix mix)
{
    const auto width = static_cast<std::size_t>(part.right - part.left);
    for (std::int32_t y = part.top; y < part.bottom; ++y, row += stride)
        for (std::size_t x = 0; x < width; ++x)
            row[x] = mix(row[x]);
}

std::uint32_t blendedChannel(std::uint32_t below, std::uint32_t above, unsigned shift,
                             std::uint32_t cover)
{
    const std::uint32_t old = below >> shift & 0xFF;
    const std::uint32_t fresh = above >> shift & 0xFF;
    return (old * (255 - cover) + fresh * cover + 127) / 255 << shift;
}

SurfaceScale atLeastOneToOne(SurfaceScale scale)
{
    return {std::max(scale.device, scale.logical), scale.logical};
}

} // namespace

SurfaceRect Surface::scaled(const SurfaceRect& rect, SurfaceScale across, SurfaceScale down)
{
    return {scaledEdge(rect.left, across), scaledEdge(rect.top, down),
            scaledEdge(rect.right, across), scaledEdge(rect.bottom, down)};
}

std::unique_ptr<Surface> Surface::create(const SurfaceRect& bounds, SurfaceScale across,
                                         SurfaceScale down)
{
    if (bounds.empty())
        return nullptr;
    across = atLeastOneToOne(across);
    down = atLeastOneToOne(down);
    const SurfaceRect device = scaled(bounds, across, down);
    if (device.empty() || device.right - device.left > longestSide ||
        device.bottom - device.top > longestSide)
        return nullptr;
    try {
        return std::unique_ptr<Surface>(new Surface(bounds, across, down));
    } catch (const std::bad_alloc&) {
        return nullptr;
    }
}

Surface::Surface(const SurfaceRect& bounds, SurfaceScale across, SurfaceScale down)
    : mBounds(bounds)
    , mAcross(across)
    , mDown(down)
    , mDevice(toDevice(bounds))
    , mPixels(static_cast<std::size_t>(deviceWidth()) * static_cast<std::size_t>(deviceHeight()))
{
    setClip(SurfaceRegion(bounds));
}

void Surface::setClip(SurfaceRegion clip)
{
    mClip = std::move(clip);
    const SurfaceRect extents = mClip.extents();
    mClipIsScaled =
        !mAcross.isOneToOne() || !mDown.isOneToOne() || intersection(extents, mDevice) != extents;
    if (!mClipIsScaled) // the most common clip is not copied
        return;
    mScaledClip = mClip.scaled(mAcross, mDown);
    mScaledClip.intersect(SurfaceRegion(mDevice));
}

void Surface::paintRect(const SurfaceRect& rect)
{
    if (!rect.empty())
        paintDevice(toDevice(rect));
}

void Surface::paintDevice(const SurfaceRect& device)
{
    deviceClip().visitWithin(device, [this](const SurfaceRect& part) { paintPart(part); });
}

void Surface::paintPart(const SurfaceRect& part)
{
    const auto stride = static_cast<std::size_t>(deviceWidth());
    std::uint32_t* row = rowAt(part.left, part.top);
    const std::uint32_t colour = mForeground | opaque;
    switch (mMode) {
    case PenMode::copy:
        mixRows(row, part, stride, [colour](std::uint32_t) { return colour; });
        break;
    case PenMode::join:
        mixRows(row, part, stride, [colour](std::uint32_t below) { return below | colour; });
        break;
    case PenMode::exclusive:
        mixRows(row, part, stride,
                [rgb = mForeground](std::uint32_t below) { return (below ^ rgb) | opaque; });
        break;
    }
}

void Surface::frameRect(const SurfaceRect& rect)
{
    if (rect.empty())
        return;
    // four sides that share no corner: in exclusive mode a pixel drawn twice would be as before
    const std::int32_t upper = rect.top + 1;
    const std::int32_t lower = std::max(upper, rect.bottom - 1);
    paintRect({rect.left, rect.top, rect.right, upper});
    paintRect({rect.left, lower, rect.right, rect.bottom});
    paintRect({rect.left, upper, rect.left + 1, lower});
    paintRect({std::max(rect.left + 1, rect.right - 1), upper, rect.right, lower});
}

void Surface::frameRegion(const SurfaceRegion& region)
{
    paintRegion(region.border());
}

void Surface::paintRegion(const SurfaceRegion& region)
{
    region.visitWithin(region.extents(), [this](const SurfaceRect& part) { paintRect(part); });
}

void Surface::drawMask(SurfacePoint at, const CoverageMask& mask, std::uint32_t rgb)
{
    const SurfaceRect whole{at.x, at.y, at.x + mask.width, at.y + mask.height};
    deviceClip().visitWithin(whole, [&](const SurfaceRect& part) {
        for (std::int32_t y = part.top; y < part.bottom; ++y) {
            std::uint32_t* pixel = rowAt(part.left, y);
            const std::uint8_t* cover =
                mask.bytes + std::ptrdiff_t{y - at.y} * mask.stride + (part.left - at.x);
            for (std::int32_t x = part.left; x < part.right; ++x, ++pixel, ++cover)
                if (*cover != 0)
                    *pixel = blendedChannel(*pixel, rgb, 16, *cover) |
                             blendedChannel(*pixel, rgb, 8, *cover) |
                             blendedChannel(*pixel, rgb, 0, *cover) | opaque;
        }
    });
}

} // namespace toolkit
