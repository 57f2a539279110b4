#include "shared/Panes/kvGraphics.h"

#include <string_view>

namespace Korvanel {

namespace {

std::string_view textOf(const char* text, int length)
{
    if (text == nullptr)
        return {};
    return length < 0 ? std::string_view(text)
                      : std::string_view(text, static_cast<std::size_t>(length));
}

} // namespace

toolkit::FontStyle GraphicsContext::textStyle() const
{
    if (!mFont)
        return {};
    return {mFont->GetFamily(), mFont->GetStyle(), mFont->GetSize()};
}

void GraphicsContext::DrawStringAt(const Point& at, const char* text, int length)
{
    useColor(mTextColor);
    if (mPort != nullptr)
        toolkit::FontEngine::shared().draw(*mPort, onPort(at), textStyle(), textOf(text, length),
                                           rgbOf(mTextColor));
}

void GraphicsContext::DrawString(const Rect& rect, const char* text, int length, int align)
{
    toolkit::FontEngine& engine = toolkit::FontEngine::shared();
    const std::int32_t width = engine.width(textStyle(), textOf(text, length));
    const auto [ascent, descent] = engine.metrics(textStyle());
    Point at = rect.origin();
    switch (align & 3) {
    case AlignCentre:
        at.x += (rect.width - width) / 2;
        break;
    case AlignRight:
        at.x += rect.width - width;
        break;
    default:
        break;
    }
    switch (align & 12) {
    case AlignTop:
        at.y += ascent;
        break;
    case AlignMiddle:
        at.y += (ascent + rect.height - descent) / 2;
        break;
    case AlignBottom:
        at.y += rect.height - descent;
        break;
    default:
        break; // the baseline on the top edge
    }
    DrawStringAt(at, text, length);
}

void GraphicsContext::DrawString(const Rect& rect, const char* text, int length, int align,
                                 Font* font)
{
    const Ref<Font> chosen(font == nullptr ? mFont.get() : font);
    const AutoTool<Font> current(*this, chosen.get());
    DrawString(rect, text, length, align);
}

void GraphicsContext::DrawString(const char* text, const Rect& rect, int align)
{
    DrawString(rect, text, -1, align);
}

void GraphicsContext::DrawString(const char* text, const Rect& rect, int align, Font* font)
{
    DrawString(rect, text, -1, align, font);
}

Rect GraphicsContext::CalcStringRect(const char* text, int length) const
{
    const Point dimensions = CalcStringDimentions(text, length);
    return {0, 0, dimensions.x, dimensions.y};
}

Rect GraphicsContext::CalcStringRect(const char* text, Font* font, int length)
{
    if (font == nullptr)
        return CalcStringRect(text, length);
    const AutoTool<Font> current(*this, font);
    return CalcStringRect(text, length);
}

Point GraphicsContext::CalcStringDimentions(const char* text, int length) const
{
    return {toolkit::FontEngine::shared().width(textStyle(), textOf(text, length)),
            mFont ? mFont->GetSize() : 0};
}

} // namespace Korvanel
