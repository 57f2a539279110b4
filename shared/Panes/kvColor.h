/// Colours of the drawing tools.
#pragma once
#include <cstdint>

namespace Korvanel {

/// Three channels of 16 bits. Full intensity is 0xFF00, not 0xFFFF: values come from bytes.
struct Color
{
    std::uint16_t red = 0;
    std::uint16_t green = 0;
    std::uint16_t blue = 0;

    /// Each value is brought into 0..255 first.
    void SetRGB(int r, int g, int b);

    friend bool operator==(const Color&, const Color&) = default;

    static const Color Black;
    static const Color Grey;
    static const Color White;
    static const Color Red;
    static const Color Yellow;
    static const Color Green;
    static const Color Cyan;
    static const Color Blue;
    static const Color Magenta;
};

/// The colour in the port's form, 0x00RRGGBB: the upper byte of each channel.
std::uint32_t rgbOf(const Color& color);

} // namespace Korvanel
