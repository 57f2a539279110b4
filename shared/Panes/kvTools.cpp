#include "shared/Panes/kvTools.h"

#include "platform/toolkit/FontEngine.h"
#include "shared/Panes/kvGraphics.h"

namespace Korvanel {

namespace {

std::int32_t wholePixels(float size)
{
    constexpr float largest = 1000; // also what the font engine draws at most
    if (!(size >= 1))               // NaN as well
        return 0;
    return static_cast<std::int32_t>(size < largest ? size : largest);
}

std::uint16_t familyNumber(const char* name)
{
    return name == nullptr ? std::uint16_t{0} : toolkit::FontEngine::shared().familyNumber(name);
}

} // namespace

Ref<Pen> Pen::Create(const Color& color)
{
    return Ref<Pen>::adopt(new Pen(color));
}

Ref<Brush> Brush::Create(const Color& color)
{
    return Ref<Brush>::adopt(new Brush(color));
}

Font::Font(const char* name, float size, float, Style style, Unit)
    : mStyle(style)
    , mFamily(familyNumber(name))
    , mSize(wholePixels(size))
{
}

Ref<Font> Font::Create(const char* name, float size, float other, Style style, Unit unit)
{
    return Ref<Font>::adopt(new Font(name, size, other, style, unit));
}

Ref<Font> Font::Create(Type type)
{
    switch (type) {
    case Type::Small:
        return Create("DejaVu Sans", 10, 0, Plain, Unit::Point);
    case Type::Fixed:
        return Create("DejaVu Sans Mono", 12, 0, Plain, Unit::Point);
    case Type::System:
        break;
    }
    return Create("DejaVu Sans", 12, 0, Plain, Unit::Point);
}

Ref<Font> Font::Create(GraphicsContext& context, float size, Style style, Unit unit)
{
    Ref<Font> font = Create(nullptr, size, 0, style, unit);
    font->mFamily = context.GetFont()->GetFamily();
    return font;
}

} // namespace Korvanel
