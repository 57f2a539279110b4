/// Images that a graphics context can draw.
#pragma once
#include "platform/toolkit/Surface.h"
#include "shared/Panes/kvGeometry.h"
#include "shared/System/kvObject.h"

#include <memory>

namespace Korvanel {

class GraphicsContext;

/// How a drawing meets what is there. Other values may be set and change nothing.
enum RasterOperation : int { RopCopy = 0, RopOr = 1, RopCopyAgain = 2, RopXor = 3 };

/// The pen mode that an operation selects.
/// @return `unchanged` for an operation that selects none
toolkit::PenMode penModeFor(RasterOperation rop, toolkit::PenMode unchanged);

/// An image of a fixed size. Its places are those of the context, origin included.
class Bitmap : public Base
{
public:
    Bitmap(int width, int height)
        : mWidth(width)
        , mHeight(height)
    {
    }

    Bitmap(const Bitmap&) = delete;
    Bitmap& operator=(const Bitmap&) = delete;
    virtual ~Bitmap() = default;

    int Width() const { return mWidth; }

    int Height() const { return mHeight; }

    /// The whole image, stretched into `to`.
    void BitBlt(GraphicsContext& g, const Rect& to);

    /// The whole image in its own size.
    void BitBlt(GraphicsContext& g, Point at, RasterOperation rop);

    /// Draws the part `from` of the image, stretched into `to`.
    virtual void draw(GraphicsContext& g, const Rect& from, const Rect& to,
                      RasterOperation rop) = 0;

private:
    int mWidth;
    int mHeight;
};

/// An image on a surface of its own.
class SurfaceBitmap : public Bitmap
{
public:
    /// @param surface  the image, (0, 0) its corner; null shows nothing and has no size
    explicit SurfaceBitmap(std::unique_ptr<toolkit::Surface> surface);

    void draw(GraphicsContext& g, const Rect& from, const Rect& to, RasterOperation rop) override;

private:
    std::unique_ptr<toolkit::Surface> mSurface;
};

} // namespace Korvanel
