/// The pixels of a user pane, drawn by the pane's owner and copied to the screen by the toolkit.
#pragma once
#include <cstdint>

namespace toolkit {

/// Everything is read on the user-interface thread, while the window is drawn. The owner draws when
/// it likes and then calls `Control::invalidate` with what it changed.
class PixelSource
{
public:
    virtual ~PixelSource() = default;

    /// Device pixels. The size of `Control::pixelBounds` is shown pixel by pixel, any other one
    /// stretched to it.
    virtual int width() const = 0;
    virtual int height() const = 0;

    /// Pixels, not bytes, from one row to the next; at least `width`.
    virtual int stride() const = 0;

    /// 0x??RRGGBB, top row first; null shows nothing. Stays valid until the call returns that the
    /// window draws in.
    virtual const std::uint32_t* pixels() const = 0;
};

} // namespace toolkit
