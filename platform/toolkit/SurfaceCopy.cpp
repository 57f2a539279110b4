#include "platform/toolkit/Surface.h"

#include <vector>

namespace toolkit {

namespace {

/// Where a stretched copy finds each of its columns or rows.
class Stretch
{
public:
    Stretch(std::int32_t from, std::int32_t fromEnd, std::int32_t to, std::int32_t toEnd)
        : mFrom(from)
        , mTo(to)
        , mLength(std::int64_t{fromEnd} - from)
        , mSteps(std::int64_t{toEnd} - to)
    {
    }

    std::int32_t sourceOf(std::int32_t place) const
    {
        std::int64_t along = std::int64_t{place} - mTo;
        if (mLength != mSteps) // a window's copy is never stretched, and a division per pixel shows
            along = along * mLength / mSteps;
        return static_cast<std::int32_t>(mFrom + along);
    }

private:
    std::int32_t mFrom;
    std::int32_t mTo;
    std::int64_t mLength;
    std::int64_t mSteps;
};

std::uint32_t mixed(PenMode mode, std::uint32_t below, std::uint32_t above)
{
    switch (mode) {
    case PenMode::join:
        return below | above;
    case PenMode::exclusive:
        return below ^ above;
    case PenMode::copy:
        break;
    }
    return above;
}

} // namespace

void Surface::copyFrom(const Surface& source, const SurfaceRect& from, const SurfaceRect& to,
                       PenMode mode)
{
    const SurfaceRect found = source.toDevice(from);
    const SurfaceRect wanted = toDevice(to);
    if (found.empty() || wanted.empty())
        return;
    const Stretch across(found.left, found.right, wanted.left, wanted.right);
    const Stretch down(found.top, found.bottom, wanted.top, wanted.bottom);
    // onto itself it reads from a copy: the parts may overlap
    const std::vector<std::uint32_t> before =
        &source == this ? mPixels : std::vector<std::uint32_t>();
    const std::uint32_t* pixels = &source == this ? before.data() : source.mPixels.data();

    deviceClip().visitWithin(wanted, [&](const SurfaceRect& part) {
        for (std::int32_t y = part.top; y < part.bottom; ++y) {
            const std::int32_t sourceY = down.sourceOf(y) - source.mDevice.top;
            if (sourceY < 0 || sourceY >= source.deviceHeight())
                continue;
            std::uint32_t* pixel = rowAt(part.left, y);
            for (std::int32_t x = part.left; x < part.right; ++x, ++pixel) {
                const std::int32_t sourceX = across.sourceOf(x) - source.mDevice.left;
                if (sourceX >= 0 && sourceX < source.deviceWidth())
                    *pixel = mixed(mode, *pixel, pixels[source.indexOf(sourceX, sourceY)]) | opaque;
            }
        }
    });
}

} // namespace toolkit
