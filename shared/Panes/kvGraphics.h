/// The drawing of panes: a port with a movable origin, current tools, clipping, text, and drawing
/// in the background that reaches the window in one copy.
#pragma once
#include "platform/toolkit/FontEngine.h"
#include "platform/toolkit/Surface.h"
#include "shared/Panes/kvBitmap.h"
#include "shared/Panes/kvColor.h"
#include "shared/Panes/kvGeometry.h"
#include "shared/Panes/kvRegion.h"
#include "shared/Panes/kvTools.h"

#include <memory>

namespace Korvanel {

/// A picture behind the window; whoever holds it disposes of it.
using GWorld = std::unique_ptr<toolkit::Surface>;

/// Where text stands in its rectangle: one of the first three and one of the others, added up.
/// 12 puts the baseline on the rectangle's top.
enum Alignment : int {
    AlignLeft = 0,
    AlignCentre = 1,
    AlignRight = 2,
    AlignTop = 0,
    AlignMiddle = 4,
    AlignBottom = 8
};

/// Lives for one drawing pass. Every coordinate given to it is shifted by the origin before it
/// reaches the port. A drawing without a tool takes the port's last colour, unless it says
/// otherwise. Text lengths below 0 mean up to the terminator; null text is empty.
/// Thread: user interface.
class GraphicsContext
{
public:
    /// @param port  stays the caller's and outlives the context; null swallows every drawing
    explicit GraphicsContext(toolkit::Surface* port);

    /// Draws in the background, on a picture of `area` that has the port's clip and reaches the
    /// port when it is detached. Without memory for it, drawing goes to the port.
    GraphicsContext(toolkit::Surface* port, const Rect& area);
    GraphicsContext(const GraphicsContext&) = delete;
    GraphicsContext& operator=(const GraphicsContext&) = delete;

    /// Detaches what is attached: it is copied to the port, then disposed of.
    virtual ~GraphicsContext();

    void SetOrigin(int x, int y) { mOrigin = {x, y}; }

    Point GetOrigin() const { return mOrigin; }

    Point ChangeOrigin(const Point& origin); ///< returns the one before

    void SetRop(RasterOperation rop);

    RasterOperation Rop() const { return mRop; }

    void SetTextColor(Color color) { mTextColor = color; }

    Color TextColor() const { return mTextColor; }

    // Each returns the tool before; null takes the tool away.
    Ref<Pen> SetPen(Pen* pen);
    Ref<Brush> SetBrush(Brush* brush);
    Ref<Font> SetFont(Font* font);

    void SetTool(Pen* pen) { mPen = pen; }

    void SetTool(Brush* brush) { mBrush = brush; }

    void SetTool(Font* font) { mFont = font; }

    Ref<Font> GetFont() const; ///< a new default font when none is set

    void DrawLine(Point from, Point to, Color color);
    void DrawLine(Point from, Point to, Pen* pen);

    void DrawLine(Point from, Point to) { DrawLine(from, to, mPen.get()); }

    // Less than two points draw nothing. The outline is closed; where it runs round a point twice,
    // filling leaves the point out.
    void DrawPolygon(const Point* points, int n, Pen* pen);

    void DrawPolygon(const Point* points, int n) { DrawPolygon(points, n, mPen.get()); }

    void FillPolygon(const Point* points, int n, Brush* brush);

    void FillPolygon(const Point* points, int n) { FillPolygon(points, n, mBrush.get()); }

    void DrawRect(const Rect& rect, Color color);

    void DrawRect(const Rect& rect, Pen& pen) { DrawRect(rect, pen.GetColor()); }

    void FillRect(const Rect& rect, Color color);

    void FillRect(const Rect& rect, Brush& brush) { FillRect(rect, brush.GetColor()); }

    // Deliberately nothing: a rectangle is drawn only with a tool that the call names.
    void DrawRect(const Rect&) {}

    void FillRect(const Rect&) {}

    void DrawRegion(const Region& region, Pen* pen);

    void DrawRegion(const Region& region) { DrawRegion(region, mPen.get()); }

    void FillRegion(const Region& region, Brush* brush);

    void FillRegion(const Region& region) { FillRegion(region, mBrush.get()); }

    /// @param at  where the baseline begins
    void DrawStringAt(const Point& at, const char* text, int length);

    // Text is not cut off at the rectangle. A given font is current for the
    // call only; null means the current one.
    void DrawString(const Rect& rect, const char* text, int length, int align);
    void DrawString(const Rect& rect, const char* text, int length, int align, Font* font);
    void DrawString(const char* text, const Rect& rect, int align);
    void DrawString(const char* text, const Rect& rect, int align, Font* font);

    // Nothing when the bitmap is null.
    void DrawBitmap(const Rect& to, Bitmap* bitmap);
    void DrawBitmap(Point at, Bitmap* bitmap);
    void DrawBitmap(Point at, Bitmap* bitmap, const Rect& part);

    /// @return (0, 0, text width, font size); the size is 0 when no font is set
    Rect CalcStringRect(const char* text, int length) const;

    /// As with `font` current; null means the current font.
    Rect CalcStringRect(const char* text, Font* font, int length);

    /// @return x the text's width, y the font's size
    Point CalcStringDimentions(const char* text, int length) const;

    /// Moves the clip by (-origin x, +origin y) on the way out.
    void GetClipping(Region& clip) const;
    void SetClipping(Region& clip); ///< moves a copy by the origin and installs it
    void IntersectClipping(const Rect& rect);
    void ExcludeClipping(const Rect& rect);

    bool Visible(const Rect& rect) const; ///< touches the clip

    /// @return every pixel 0, in the port's scale; null when it cannot be made
    GWorld CreateOffscreen(const Rect& area) const;

    /// Detaches and disposes of an earlier one; from here on drawings go to `world`, raster
    /// operation 0. Null attaches nothing.
    void AttachOffscreen(GWorld world);

    /// Drawings go to the port again, which gets a copy of the whole world, within its clip.
    /// @return the world, null when none is attached
    GWorld DetachOffscreen();

    toolkit::Surface* Offscreen() const { return mOffscreen.get(); }

    /// Where drawings go now; may be null.
    toolkit::Surface* port() const { return mPort; }

private:
    toolkit::SurfaceRect onPort(const Rect& rect) const;
    toolkit::SurfacePoint onPort(Point point) const;
    void useColor(const Color& color);
    toolkit::FontStyle textStyle() const;
    void installClip(Region clip);

    Ref<Pen> mPen;
    Ref<Brush> mBrush;
    Ref<Font> mFont;
    RasterOperation mRop = RopCopy;
    Color mTextColor = Color::Black;
    Point mOrigin;
    GWorld mOffscreen;
    toolkit::Surface* mPort;
    toolkit::Surface* mSavedPort = nullptr; ///< while an offscreen is attached
};

/// Makes a tool current for a scope, and then the one before.
template <typename Tool>
class AutoTool
{
public:
    AutoTool(GraphicsContext& g, Tool* tool);
    AutoTool(const AutoTool&) = delete;
    AutoTool& operator=(const AutoTool&) = delete;

    ~AutoTool() { mContext.SetTool(mBefore.get()); }

private:
    GraphicsContext& mContext;
    Ref<Tool> mBefore;
};

template <>
inline AutoTool<Font>::AutoTool(GraphicsContext& g, Font* font)
    : mContext(g)
    , mBefore(g.SetFont(font))
{
}

template <>
inline AutoTool<Pen>::AutoTool(GraphicsContext& g, Pen* pen)
    : mContext(g)
    , mBefore(g.SetPen(pen))
{
}

template <>
inline AutoTool<Brush>::AutoTool(GraphicsContext& g, Brush* brush)
    : mContext(g)
    , mBefore(g.SetBrush(brush))
{
}

} // namespace Korvanel
