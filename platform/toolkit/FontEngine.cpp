#include "platform/toolkit/FontEngine.h"

#include "platform/toolkit/FontEngineFaces.h"
#include "platform/toolkit/FontEngineText.h"

#include <ft2build.h>
#include FT_FREETYPE_H
#include FT_ADVANCES_H

#include <algorithm>
#include <map>
#include <tuple>
#include <vector>

namespace toolkit {

namespace {

// Hints of the vertical only: letters stand on whole pixels, and widths stay what they are.
constexpr FT_Int32 loadFlags = FT_LOAD_TARGET_LIGHT;
constexpr std::size_t mostGlyphs = 4096; // a few megabytes; then the cache starts afresh
constexpr std::int64_t noPosition = 1 << 24;

/// A rendered letter, by its corner relative to the pen.
struct Glyph
{
    int left = 0;
    int top = 0; ///< upwards
    int width = 0;
    int height = 0;
    std::vector<std::uint8_t> cover;
};

std::int32_t soundSize(const FontStyle& style)
{
    return style.size < 1 ? 12 : std::min(style.size, 1000);
}

/// 26.6 fixed point to whole pixels.
std::int32_t rounded(std::int64_t position)
{
    return static_cast<std::int32_t>((position + 32) >> 6);
}

} // namespace

class FontEngine::Impl
{
public:
    explicit Impl(const char* folder)
        : faces(folder)
    {
    }

    /// Sets the face to the style's size at a scale; null without a font.
    FT_Face sized(const FontStyle& style, SurfaceScale scale = {})
    {
        FT_Face face = faces.face(style.family, (style.face & FontStyle::bold) != 0,
                                  (style.face & FontStyle::italic) != 0);
        if (face == nullptr)
            return nullptr;
        const FT_F26Dot6 size = soundSize(style) * 64 * scale.device / scale.logical;
        return FT_Set_Char_Size(face, 0, size, 72, 72) == 0 ? face : nullptr;
    }

    /// Walks through the text, kerned; calls `visit` with each glyph and its place in 26.6.
    /// @return where the text ends
    template <typename Visit>
    static std::int64_t layOut(FT_Face face, std::string_view text, Visit visit)
    {
        std::int64_t position = 0;
        FT_UInt previous = 0;
        while (!text.empty() && position < noPosition) {
            const FT_UInt glyph = FT_Get_Char_Index(face, takeCharacter(text));
            FT_Vector kern{0, 0};
            if (previous != 0 &&
                FT_Get_Kerning(face, previous, glyph, FT_KERNING_UNFITTED, &kern) == 0)
                position += kern.x;
            visit(glyph, position);
            FT_Fixed advance = 0;
            if (FT_Get_Advance(face, glyph, FT_LOAD_NO_HINTING, &advance) == 0)
                position += advance >> 10; // 16.16
            previous = glyph;
        }
        return position;
    }

    const Glyph& glyph(FT_Face face, FT_UInt index)
    {
        const auto key = std::make_tuple(face, face->size->metrics.x_scale, index);
        const auto known = mGlyphs.find(key);
        if (known != mGlyphs.end())
            return known->second;
        if (mGlyphs.size() >= mostGlyphs)
            mGlyphs.clear();
        return mGlyphs.emplace(key, render(face, index)).first->second;
    }

    FontEngineFaces faces;

private:
    static Glyph render(FT_Face face, FT_UInt index)
    {
        Glyph glyph;
        if (FT_Load_Glyph(face, index, FT_LOAD_RENDER | loadFlags) != 0 ||
            face->glyph->bitmap.pixel_mode != FT_PIXEL_MODE_GRAY)
            return glyph;
        const FT_Bitmap& bitmap = face->glyph->bitmap;
        glyph.left = face->glyph->bitmap_left;
        glyph.top = face->glyph->bitmap_top;
        glyph.width = static_cast<int>(bitmap.width);
        glyph.height = static_cast<int>(bitmap.rows);
        glyph.cover.reserve(std::size_t{bitmap.width} * bitmap.rows);
        for (int row = 0; row < glyph.height; ++row) {
            const unsigned char* line = bitmap.buffer + std::ptrdiff_t{row} * bitmap.pitch;
            glyph.cover.insert(glyph.cover.end(), line, line + glyph.width);
        }
        return glyph;
    }

    std::map<std::tuple<FT_Face, FT_Fixed, FT_UInt>, Glyph> mGlyphs;
};

FontEngine& FontEngine::shared()
{
    static FontEngine engine;
    return engine;
}

FontEngine::FontEngine()
    : mImpl(std::make_unique<Impl>(nullptr))
{
}

FontEngine::FontEngine(const char* folder)
    : mImpl(std::make_unique<Impl>(folder))
{
}

FontEngine::~FontEngine() = default;

std::uint16_t FontEngine::familyNumber(std::string_view name)
{
    return mImpl->faces.familyNumber(name);
}

TextMetrics FontEngine::metrics(const FontStyle& style)
{
    const FT_Face face = mImpl->sized(style);
    if (face == nullptr)
        return {};
    return {rounded(face->size->metrics.ascender), rounded(-face->size->metrics.descender)};
}

std::int32_t FontEngine::width(const FontStyle& style, std::string_view text)
{
    const FT_Face face = mImpl->sized(style);
    if (face == nullptr)
        return 0;
    return rounded(Impl::layOut(face, text, [](FT_UInt, std::int64_t) {}));
}

void FontEngine::draw(Surface& surface, SurfacePoint baseline, const FontStyle& style,
                      std::string_view text, std::uint32_t rgb)
{
    const SurfaceScale across = surface.scaleAcross();
    const FT_Face face = mImpl->sized(style, across);
    if (face == nullptr)
        return;
    const SurfacePoint start{scaledEdge(baseline.x, across),
                             scaledEdge(baseline.y, surface.scaleDown())};
    const std::int64_t end = Impl::layOut(face, text, [&](FT_UInt index, std::int64_t position) {
        const Glyph& glyph = mImpl->glyph(face, index);
        surface.drawMask({start.x + rounded(position) + glyph.left, start.y - glyph.top},
                         {glyph.cover.data(), glyph.width, glyph.height, glyph.width}, rgb);
    });
    if ((style.face & FontStyle::underline) == 0)
        return;
    const int thickness = across.wholePixels();
    const std::vector<std::uint8_t> line(static_cast<std::size_t>(rounded(end)), 255);
    surface.drawMask({start.x, start.y + thickness},
                     {line.data(), static_cast<int>(line.size()), thickness, 0}, rgb);
}

} // namespace toolkit
