#include "shared/Panes/kvGraphics.h"

#include <utility>
#include <vector>

namespace Korvanel {

GraphicsContext::GraphicsContext(toolkit::Surface* port)
    : mPort(port)
{
    SetRop(RopCopy);
}

GraphicsContext::GraphicsContext(toolkit::Surface* port, const Rect& area)
    : GraphicsContext(port)
{
    GWorld world = CreateOffscreen(area);
    if (world == nullptr || port == nullptr)
        return;
    world->setClip(port->clip());
    AttachOffscreen(std::move(world));
}

GraphicsContext::~GraphicsContext()
{
    DetachOffscreen();
}

Point GraphicsContext::ChangeOrigin(const Point& origin)
{
    return std::exchange(mOrigin, origin);
}

void GraphicsContext::SetRop(RasterOperation rop)
{
    mRop = rop;
    if (mPort != nullptr)
        mPort->setPenMode(penModeFor(rop, mPort->penMode()));
}

Ref<Pen> GraphicsContext::SetPen(Pen* pen)
{
    return std::exchange(mPen, Ref<Pen>(pen));
}

Ref<Brush> GraphicsContext::SetBrush(Brush* brush)
{
    return std::exchange(mBrush, Ref<Brush>(brush));
}

Ref<Font> GraphicsContext::SetFont(Font* font)
{
    return std::exchange(mFont, Ref<Font>(font));
}

Ref<Font> GraphicsContext::GetFont() const
{
    return mFont ? mFont : Ref<Font>::adopt(new Font);
}

toolkit::SurfaceRect GraphicsContext::onPort(const Rect& rect) const
{
    return platformRect(rect.shiftedBy(mOrigin));
}

toolkit::SurfacePoint GraphicsContext::onPort(Point point) const
{
    const Point moved = point + mOrigin;
    return {moved.x, moved.y};
}

void GraphicsContext::useColor(const Color& color)
{
    if (mPort != nullptr)
        mPort->setForeground(rgbOf(color));
}

void GraphicsContext::DrawLine(Point from, Point to, Color color)
{
    useColor(color);
    DrawLine(from, to, static_cast<Pen*>(nullptr));
}

void GraphicsContext::DrawLine(Point from, Point to, Pen* pen)
{
    if (pen != nullptr)
        useColor(pen->GetColor());
    if (mPort != nullptr)
        mPort->line(onPort(from), onPort(to));
}

void GraphicsContext::DrawPolygon(const Point* points, int n, Pen* pen)
{
    if (n < 2 || mPort == nullptr)
        return;
    if (pen != nullptr)
        useColor(pen->GetColor());
    toolkit::SurfacePoint from = onPort(points[n - 1]);
    for (int i = 0; i < n; ++i) {
        const toolkit::SurfacePoint to = onPort(points[i]);
        mPort->line(from, to);
        from = to;
    }
}

void GraphicsContext::FillPolygon(const Point* points, int n, Brush* brush)
{
    if (n < 2 || mPort == nullptr)
        return;
    if (brush != nullptr)
        useColor(brush->GetColor());
    std::vector<toolkit::SurfacePoint> outline;
    outline.reserve(static_cast<std::size_t>(n));
    for (int i = 0; i < n; ++i)
        outline.push_back(onPort(points[i]));
    mPort->paintPolygon(outline);
}

void GraphicsContext::DrawRect(const Rect& rect, Color color)
{
    useColor(color);
    if (mPort != nullptr)
        mPort->frameRect(onPort(rect));
}

void GraphicsContext::FillRect(const Rect& rect, Color color)
{
    useColor(color);
    if (mPort != nullptr)
        mPort->paintRect(onPort(rect));
}

void GraphicsContext::DrawRegion(const Region& region, Pen* pen)
{
    if (pen != nullptr)
        useColor(pen->GetColor());
    Region moved(region);
    moved.Offset(mOrigin.x, mOrigin.y);
    if (mPort != nullptr)
        mPort->frameRegion(moved.platform());
}

void GraphicsContext::FillRegion(const Region& region, Brush* brush)
{
    if (brush != nullptr)
        useColor(brush->GetColor());
    Region moved(region);
    moved.Offset(mOrigin.x, mOrigin.y);
    if (mPort != nullptr)
        mPort->paintRegion(moved.platform());
}

void GraphicsContext::DrawBitmap(const Rect& to, Bitmap* bitmap)
{
    if (bitmap != nullptr)
        bitmap->BitBlt(*this, to);
}

void GraphicsContext::DrawBitmap(Point at, Bitmap* bitmap)
{
    if (bitmap != nullptr)
        bitmap->BitBlt(*this, at, mRop);
}

void GraphicsContext::DrawBitmap(Point at, Bitmap* bitmap, const Rect& part)
{
    if (bitmap != nullptr)
        bitmap->draw(*this, part, {at.x, at.y, part.width, part.height}, mRop);
}

} // namespace Korvanel
