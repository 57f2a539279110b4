#include "shared/Panes/kvColor.h"

#include <algorithm>

namespace Korvanel {

namespace {

std::uint16_t channel(int value)
{
    return static_cast<std::uint16_t>(std::clamp(value, 0, 255) << 8);
}

} // namespace

constinit const Color Color::Black{0, 0, 0};
constinit const Color Color::Grey{0x8000, 0x8000, 0x8000};
constinit const Color Color::White{0xFF00, 0xFF00, 0xFF00};
constinit const Color Color::Red{0xFF00, 0, 0};
constinit const Color Color::Yellow{0xFF00, 0xFF00, 0};
constinit const Color Color::Green{0, 0xFF00, 0};
constinit const Color Color::Cyan{0, 0xFF00, 0xFF00};
constinit const Color Color::Blue{0, 0, 0xFF00};
constinit const Color Color::Magenta{0xFF00, 0, 0xFF00};

void Color::SetRGB(int r, int g, int b)
{
    red = channel(r);
    green = channel(g);
    blue = channel(b);
}

std::uint32_t rgbOf(const Color& color)
{
    return static_cast<std::uint32_t>((color.red & 0xFF00) << 8 | (color.green & 0xFF00) |
                                      color.blue >> 8);
}

} // namespace Korvanel
