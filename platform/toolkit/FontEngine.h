/// Text for surfaces: finds the system's fonts by name, measures text and draws it. Glyphs are
/// rendered once and kept.
#pragma once
#include "platform/toolkit/Surface.h"

#include <cstdint>
#include <memory>
#include <string_view>

namespace toolkit {

/// A font as the framework names it.
struct FontStyle
{
    static constexpr std::uint16_t bold = 1;
    static constexpr std::uint16_t italic = 2;
    static constexpr std::uint16_t underline = 4;

    std::uint16_t family = 0; ///< from FontEngine::familyNumber; 0 is the default family
    std::uint16_t face = 0;   ///< bold, italic, underline; other bits change nothing
    std::int32_t size = 0;    ///< logical pixels, at most 1,000; below 1 means 12

    friend bool operator==(const FontStyle&, const FontStyle&) = default;
};

/// Logical pixels above and below the baseline.
struct TextMetrics
{
    std::int32_t ascent = 0;
    std::int32_t descent = 0;
};

/// Text is UTF-8; bytes that are none show as U+FFFD. Without any font on the system, everything
/// measures 0 and nothing is drawn. Thread: user interface.
class FontEngine
{
public:
    /// The one that the process shares.
    static FontEngine& shared();

    /// As shared, with no fonts but those that are found under `folder`.
    explicit FontEngine(const char* folder);
    FontEngine(const FontEngine&) = delete;
    FontEngine& operator=(const FontEngine&) = delete;
    ~FontEngine();

    /// @return the same number for the same name, whatever its case; 0 when there is no such family
    std::uint16_t familyNumber(std::string_view name);

    TextMetrics metrics(const FontStyle& style);

    /// The same at every scale: kerned and summed in fractions, then rounded to logical pixels.
    std::int32_t width(const FontStyle& style, std::string_view text);

    /// @param baseline  where the first letter stands, logical
    void draw(Surface& surface, SurfacePoint baseline, const FontStyle& style,
              std::string_view text, std::uint32_t rgb);

private:
    class Impl;

    FontEngine();

    std::unique_ptr<Impl> mImpl;
};

} // namespace toolkit
