// A context's clip, and the picture in the background.
#include "shared/Panes/kvGraphics.h"

#include <utility>

namespace Korvanel {

// The vertical shift has the sign that SetClipping has, so that with an origin below the top the
// clip read is not the clip set. Panes clip with the origin at (0, 0), where it makes no
// difference; drawings that rely on it stay as they are
// (GraphicsClipping.ReadingTheClipShiftsItDownByAVerticalOrigin).
void GraphicsContext::GetClipping(Region& clip) const
{
    if (mPort == nullptr) {
        clip.Empty();
        return;
    }
    clip = Region(mPort->clip());
    clip.Offset(wrappedDifference(0, mOrigin.x), mOrigin.y);
}

void GraphicsContext::SetClipping(Region& clip)
{
    installClip(Region(clip));
}

void GraphicsContext::installClip(Region clip)
{
    if (mPort == nullptr)
        return;
    clip.Offset(mOrigin.x, mOrigin.y);
    mPort->setClip(std::move(clip).platform());
}

void GraphicsContext::IntersectClipping(const Rect& rect)
{
    Region clip;
    GetClipping(clip);
    clip.Intersect(Region(rect.shiftedBy(mOrigin)));
    installClip(std::move(clip));
}

void GraphicsContext::ExcludeClipping(const Rect& rect)
{
    Region clip;
    GetClipping(clip);
    clip.Subtract(Region(rect.shiftedBy(mOrigin)));
    installClip(std::move(clip));
}

bool GraphicsContext::Visible(const Rect& rect) const
{
    return mPort != nullptr && mPort->clip().touches(onPort(rect));
}

GWorld GraphicsContext::CreateOffscreen(const Rect& area) const
{
    const toolkit::SurfaceRect bounds = platformRect(area);
    return mPort == nullptr
               ? toolkit::Surface::create(bounds)
               : toolkit::Surface::create(bounds, mPort->scaleAcross(), mPort->scaleDown());
}

void GraphicsContext::AttachOffscreen(GWorld world)
{
    DetachOffscreen();
    if (world == nullptr)
        return;
    mOffscreen = std::move(world);
    mSavedPort = std::exchange(mPort, mOffscreen.get());
    SetRop(RopCopy);
}

GWorld GraphicsContext::DetachOffscreen()
{
    if (mOffscreen == nullptr)
        return nullptr;
    mPort = std::exchange(mSavedPort, nullptr);
    if (mPort != nullptr)
        mPort->copyFrom(*mOffscreen, mOffscreen->bounds(), mOffscreen->bounds(),
                        toolkit::PenMode::copy);
    return std::move(mOffscreen);
}

} // namespace Korvanel
