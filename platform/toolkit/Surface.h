/// The drawing port of the whole system: a 32-bit picture in memory that panes draw into and that
/// the window shows with one copy. All arithmetic is on integers, so a drawing has the same pixels
/// on every machine.
#pragma once
#include "platform/toolkit/SurfaceRegion.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <vector>

namespace toolkit {

/// How a drawn colour meets the pixel: bit by bit on its red, green and blue.
enum class PenMode : std::uint16_t { copy = 8, join = 9, exclusive = 10 };

/// How much of a colour each pixel of a glyph takes, 0 to 255; borrowed for one call.
struct CoverageMask
{
    const std::uint8_t* bytes;
    int width;
    int height;
    int stride; ///< bytes from row to row
};

/// Callers speak in logical coordinates, which the scale turns into device pixels edge by edge; a
/// line of one logical pixel is thus as wide as the scale, and never blurred. Nothing is drawn
/// outside the clip. Thread: one at a time.
class Surface
{
public:
    /// @param bounds   the logical rectangle that it covers; its corner need not be (0, 0)
    /// @param across,down  the scale; what is below one to one is brought there, so that no line
    ///                     vanishes
    /// @return every pixel 0, the clip its bounds, pen black in copy mode; null when `bounds` is
    ///         empty, larger than 32,767 device pixels either way, or memory is short
    static std::unique_ptr<Surface> create(const SurfaceRect& bounds, SurfaceScale across,
                                           SurfaceScale down);

    static std::unique_ptr<Surface> create(const SurfaceRect& bounds, SurfaceScale both = {})
    {
        return create(bounds, both, both);
    }

    Surface(const Surface&) = delete;
    Surface& operator=(const Surface&) = delete;

    SurfaceRect bounds() const { return mBounds; }

    SurfaceScale scaleAcross() const { return mAcross; }

    SurfaceScale scaleDown() const { return mDown; }

    int deviceWidth() const { return mDevice.right - mDevice.left; }

    int deviceHeight() const { return mDevice.bottom - mDevice.top; }

    /// Rows of deviceWidth pixels without gaps, 0xXXRRGGBB. The top byte says nothing: 0 where
    /// nothing was drawn yet, 255 elsewhere.
    std::span<const std::uint32_t> pixels() const { return mPixels; }

    /// @param x,y  device pixels from the picture's corner, inside it
    std::uint32_t pixel(int x, int y) const { return mPixels[indexOf(x, y)]; }

    /// May reach past the bounds; clip() gives it back as it was set.
    void setClip(SurfaceRegion clip);

    const SurfaceRegion& clip() const { return mClip; }

    void setPenMode(PenMode mode) { mMode = mode; }

    PenMode penMode() const { return mMode; }

    void setForeground(std::uint32_t rgb) { mForeground = rgb & rgbBits; }

    std::uint32_t foreground() const { return mForeground; } ///< 0x00RRGGBB

    /// Both ends are drawn, each pixel once; the pen hangs right of and below its point. A line has
    /// the same pixels whichever end comes first.
    void line(SurfacePoint from, SurfacePoint to);
    void frameRect(const SurfaceRect& rect); ///< one logical pixel wide, inside `rect`
    void paintRect(const SurfaceRect& rect);
    void frameRegion(const SurfaceRegion& region); ///< one logical pixel wide, inside the region
    void paintRegion(const SurfaceRegion& region);

    /// Even-odd: where the outline runs round a point twice, it is outside. A pixel belongs to the
    /// polygon that has its centre, so that neighbours neither overlap nor leave a gap.
    void paintPolygon(std::span<const SurfacePoint> outline);

    /// Lays `rgb` over the pixels as far as the mask covers them, whatever the pen mode.
    /// @param at  the mask's corner in device pixels, in which the logical (0, 0) is (0, 0)
    void drawMask(SurfacePoint at, const CoverageMask& mask, std::uint32_t rgb);

    /// Copies a rectangle of `source`, this surface not excluded, stretched to `to` where the
    /// sizes differ (the nearest pixel). Parts that `source` does not have are left out.
    void copyFrom(const Surface& source, const SurfaceRect& from, const SurfaceRect& to,
                  PenMode mode);

private:
    static constexpr std::uint32_t rgbBits = 0x00FFFFFF;
    static constexpr std::uint32_t opaque = 0xFF000000;

    Surface(const SurfaceRect& bounds, SurfaceScale across, SurfaceScale down);

    static SurfaceRect scaled(const SurfaceRect& rect, SurfaceScale across, SurfaceScale down);

    std::size_t indexOf(int x, int y) const
    {
        return static_cast<std::size_t>(y) * static_cast<std::size_t>(deviceWidth()) +
               static_cast<std::size_t>(x);
    }

    /// The pixel of a place in device coordinates, inside the picture.
    std::uint32_t* rowAt(std::int32_t x, std::int32_t y)
    {
        return mPixels.data() + indexOf(x - mDevice.left, y - mDevice.top);
    }

    /// The clip in device pixels; never reaches past mDevice.
    const SurfaceRegion& deviceClip() const { return mClipIsScaled ? mScaledClip : mClip; }

    SurfaceRect toDevice(const SurfaceRect& rect) const { return scaled(rect, mAcross, mDown); }

    SurfacePoint toDevice(SurfacePoint point) const
    {
        return {scaledEdge(point.x, mAcross), scaledEdge(point.y, mDown)};
    }

    void paintDevice(const SurfaceRect& device);
    void paintPart(const SurfaceRect& part);
    void slantedLine(SurfacePoint from, SurfacePoint to);
    void paintCrossings(std::int32_t y, std::vector<std::int32_t>& crossings);

    SurfaceRect mBounds;
    SurfaceScale mAcross;
    SurfaceScale mDown;
    SurfaceRect mDevice; ///< the bounds in device pixels
    std::vector<std::uint32_t> mPixels;
    SurfaceRegion mClip;
    SurfaceRegion mScaledClip; ///< the clip in device pixels, where it is another than mClip
    bool mClipIsScaled = false;
    PenMode mMode = PenMode::copy;
    std::uint32_t mForeground = 0;
};

} // namespace toolkit
