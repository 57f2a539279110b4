#include "platform/toolkit/FontEngineFaces.h"

#include <fontconfig/fontconfig.h>
#include <ft2build.h>
#include FT_FREETYPE_H

#include <memory>

namespace toolkit {

namespace {

constexpr const char* defaultFamily = "DejaVu Sans";
constexpr std::size_t mostFamilies = 0xFFFF;

struct PatternDeleter
{
    void operator()(FcPattern* pattern) const { FcPatternDestroy(pattern); }
};

using Pattern = std::unique_ptr<FcPattern, PatternDeleter>;

const FcChar8* bytesOf(const std::string& text)
{
    return reinterpret_cast<const FcChar8*>(text.c_str());
}

std::string stringOf(const FcPattern& pattern, const char* property, int which)
{
    FcChar8* text = nullptr;
    if (FcPatternGetString(&pattern, property, which, &text) != FcResultMatch)
        return {};
    return reinterpret_cast<const char*>(text);
}

FcConfig* configFor(const char* folder)
{
    if (folder == nullptr)
        return FcInitLoadConfigAndFonts();
    FcConfig* config = FcConfigCreate();
    if (config != nullptr)
        FcConfigAppFontAddDir(config, reinterpret_cast<const FcChar8*>(folder));
    return config;
}

Pattern bestMatch(FcConfig* config, const std::string& family, bool bold, bool italic)
{
    if (config == nullptr)
        return nullptr;
    const Pattern wanted(FcPatternCreate());
    FcPatternAddString(wanted.get(), FC_FAMILY, bytesOf(family));
    FcPatternAddInteger(wanted.get(), FC_WEIGHT, bold ? FC_WEIGHT_BOLD : FC_WEIGHT_REGULAR);
    FcPatternAddInteger(wanted.get(), FC_SLANT, italic ? FC_SLANT_ITALIC : FC_SLANT_ROMAN);
    FcPatternAddBool(wanted.get(), FC_SCALABLE, FcTrue);
    FcConfigSubstitute(config, wanted.get(), FcMatchPattern);
    FcDefaultSubstitute(wanted.get());
    FcResult result = FcResultNoMatch;
    return Pattern(FcFontMatch(config, wanted.get(), &result));
}

} // namespace

FontEngineFaces::FontEngineFaces(const char* folder)
    : mConfig(configFor(folder))
    , mFamilies{defaultFamily}
{
    if (FT_Init_FreeType(&mLibrary) != 0)
        mLibrary = nullptr;
}

FontEngineFaces::~FontEngineFaces()
{
    for (const auto& [file, face] : mOpened)
        if (face != nullptr)
            FT_Done_Face(face);
    if (mLibrary != nullptr)
        FT_Done_FreeType(mLibrary);
    if (mConfig != nullptr)
        FcConfigDestroy(mConfig);
}

std::uint16_t FontEngineFaces::familyNumber(std::string_view name)
{
    const auto known = mNumbers.find(name);
    if (known != mNumbers.end())
        return known->second;
    const std::string installed = installedName(std::string(name));
    std::size_t number = 0;
    while (number < mFamilies.size() && mFamilies[number] != installed)
        ++number;
    if (installed.empty() || number > mostFamilies)
        number = 0;
    else if (number == mFamilies.size())
        mFamilies.push_back(installed);
    mNumbers.emplace(name, static_cast<std::uint16_t>(number));
    return static_cast<std::uint16_t>(number);
}

/// The family's name as its font writes it, empty when the best match is another family.
std::string FontEngineFaces::installedName(const std::string& name) const
{
    const Pattern found = bestMatch(mConfig, name, false, false);
    if (found == nullptr)
        return {};
    for (int which = 0;; ++which) {
        std::string family = stringOf(*found, FC_FAMILY, which);
        if (family.empty() || FcStrCmpIgnoreCase(bytesOf(family), bytesOf(name)) == 0)
            return family;
    }
}

FontEngineFaces::FontFile FontEngineFaces::match(const std::string& family, bool bold,
                                                 bool italic) const
{
    FontFile file;
    const Pattern found = bestMatch(mConfig, family, bold, italic);
    if (found == nullptr)
        return file;
    file.path = stringOf(*found, FC_FILE, 0);
    if (FcPatternGetInteger(found.get(), FC_INDEX, 0, &file.index) != FcResultMatch)
        file.index = 0;
    return file;
}

FT_FaceRec_* FontEngineFaces::face(std::uint16_t family, bool bold, bool italic)
{
    const std::uint32_t key = std::uint32_t{family} << 2 | (bold ? 1u : 0u) | (italic ? 2u : 0u);
    const auto known = mFaces.find(key);
    if (known != mFaces.end())
        return known->second;
    const std::string& name = mFamilies[family < mFamilies.size() ? family : 0];
    FT_FaceRec_* face = open(match(name, bold, italic));
    mFaces.emplace(key, face);
    return face;
}

FT_FaceRec_* FontEngineFaces::open(const FontFile& file)
{
    if (mLibrary == nullptr || file.path.empty())
        return nullptr;
    const auto [place, fresh] = mOpened.try_emplace({file.path, file.index}, nullptr);
    if (fresh) {
        FT_Face face = nullptr;
        if (FT_New_Face(mLibrary, file.path.c_str(), file.index, &face) != 0)
            return nullptr;
        place->second = face;
    }
    return place->second;
}

} // namespace toolkit
