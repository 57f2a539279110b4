/// The files behind a FontEngine: finds a face for a family and a style, and opens each once.
#pragma once
#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

// The engines' own types, so that no user of the toolkit compiles their headers.
struct FT_LibraryRec_;
struct FT_FaceRec_;
struct _FcConfig; // NOLINT(bugprone-reserved-identifier): fontconfig's own name

namespace toolkit {

/// Owns what it opens. Thread: user interface.
class FontEngineFaces
{
public:
    /// @param folder  the only place to look for fonts; null means where the system keeps them
    explicit FontEngineFaces(const char* folder);
    FontEngineFaces(const FontEngineFaces&) = delete;
    FontEngineFaces& operator=(const FontEngineFaces&) = delete;
    ~FontEngineFaces();

    std::uint16_t familyNumber(std::string_view name);

    /// @return null when no font can be opened; stays the engine's
    FT_FaceRec_* face(std::uint16_t family, bool bold, bool italic);

private:
    struct FontFile
    {
        std::string path; ///< empty when nothing was found
        int index = 0;
    };

    std::string installedName(const std::string& name) const;
    FontFile match(const std::string& family, bool bold, bool italic) const;
    FT_FaceRec_* open(const FontFile& file);

    FT_LibraryRec_* mLibrary = nullptr;
    _FcConfig* mConfig = nullptr;
    std::vector<std::string> mFamilies; ///< by number
    std::map<std::string, std::uint16_t, std::less<>> mNumbers;
    std::map<std::uint32_t, FT_FaceRec_*> mFaces;
    std::map<std::pair<std::string, int>, FT_FaceRec_*> mOpened;
};

} // namespace toolkit
