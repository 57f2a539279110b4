#include "shared/Panes/kvBitmap.h"

#include "shared/Panes/kvGraphics.h"

#include <utility>

namespace Korvanel {

toolkit::PenMode penModeFor(RasterOperation rop, toolkit::PenMode unchanged)
{
    switch (rop) {
    case RopCopy:
    case RopCopyAgain:
        return toolkit::PenMode::copy;
    case RopOr:
        return toolkit::PenMode::join;
    case RopXor:
        return toolkit::PenMode::exclusive;
    }
    return unchanged;
}

void Bitmap::BitBlt(GraphicsContext& g, const Rect& to)
{
    draw(g, {0, 0, mWidth, mHeight}, to, RopCopy);
}

void Bitmap::BitBlt(GraphicsContext& g, Point at, RasterOperation rop)
{
    draw(g, {0, 0, mWidth, mHeight}, {at.x, at.y, mWidth, mHeight}, rop);
}

SurfaceBitmap::SurfaceBitmap(std::unique_ptr<toolkit::Surface> surface)
    : Bitmap(surface == nullptr ? 0 : surface->bounds().right,
             surface == nullptr ? 0 : surface->bounds().bottom)
    , mSurface(std::move(surface))
{
}

void SurfaceBitmap::draw(GraphicsContext& g, const Rect& from, const Rect& to, RasterOperation rop)
{
    toolkit::Surface* port = g.port();
    if (mSurface == nullptr || port == nullptr)
        return;
    port->copyFrom(*mSurface, platformRect(from), platformRect(to.shiftedBy(g.GetOrigin())),
                   penModeFor(rop, port->penMode()));
}

} // namespace Korvanel
