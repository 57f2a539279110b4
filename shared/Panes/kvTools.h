/// What a graphics context draws with: shared objects that it holds by reference.
#pragma once
#include "shared/Panes/kvColor.h"
#include "shared/System/kvObject.h"

#include <cstdint>

namespace Korvanel {

class GraphicsContext;

class Pen : public Object
{
public:
    static Ref<Pen> Create(const Color& color);

    const Color& GetColor() const { return mColor; }

private:
    explicit Pen(const Color& color)
        : mColor(color)
    {
    }

    Color mColor;
};

class Brush : public Object
{
public:
    static Ref<Brush> Create(const Color& color);

    const Color& GetColor() const { return mColor; }

private:
    explicit Brush(const Color& color)
        : mColor(color)
    {
    }

    Color mColor;
};

/// A family of the system's in one style and size.
class Font : public Object
{
public:
    /// The fonts that the system has for itself.
    enum class Type { System, Small, Fixed };

    /// Bits, added up.
    using Style = std::uint16_t;
    static constexpr Style Plain = 0;
    static constexpr Style Bold = 1;
    static constexpr Style Italic = 2;
    static constexpr Style Underline = 4;

    /// What a size counts. A point is a pixel here: 72 to the inch, both.
    enum class Unit { Point = 0 };

    /// The default font: style, family and size 0.
    Font() = default;

    /// @param name  a family; one that is not installed, or null, gives the default family
    /// @param size  cut to whole pixels; what is no size gives 0
    Font(const char* name, float size, float, Style style, Unit unit);

    static Ref<Font> Create(const char* name, float size, float, Style style, Unit unit);
    static Ref<Font> Create(Type type);

    /// The context's current family in another size and style.
    static Ref<Font> Create(GraphicsContext& context, float size, Style style, Unit unit);

    Style GetStyle() const { return mStyle; }

    std::uint16_t GetFamily() const { return mFamily; }

    std::int32_t GetSize() const { return mSize; } ///< pixels

private:
    Style mStyle = Plain;
    std::uint16_t mFamily = 0;
    std::int32_t mSize = 0;
};

} // namespace Korvanel
