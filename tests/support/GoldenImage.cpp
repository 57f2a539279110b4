#include "tests/support/GoldenImage.h"

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <png.h>
#include <vector>

namespace {

struct Picture
{
    int width = 0;
    int height = 0;
    std::vector<std::uint8_t> bytes; ///< red, green, blue
};

Picture pictureOf(const toolkit::Surface& surface)
{
    Picture picture{surface.deviceWidth(), surface.deviceHeight(), {}};
    for (const std::uint32_t pixel : surface.pixels())
        for (const int shift : {16, 8, 0})
            picture.bytes.push_back(static_cast<std::uint8_t>(pixel >> shift & 0xFF));
    return picture;
}

png_image imageHeader()
{
    png_image image{};
    image.version = PNG_IMAGE_VERSION;
    image.format = PNG_FORMAT_RGB;
    return image;
}

bool save(const std::string& path, const Picture& picture)
{
    png_image image = imageHeader();
    image.width = static_cast<png_uint_32>(picture.width);
    image.height = static_cast<png_uint_32>(picture.height);
    return png_image_write_to_file(&image, path.c_str(), 0, picture.bytes.data(), 0, nullptr) != 0;
}

bool load(const std::string& path, Picture& picture)
{
    png_image image = imageHeader();
    if (png_image_begin_read_from_file(&image, path.c_str()) == 0)
        return false;
    image.format = PNG_FORMAT_RGB;
    picture.width = static_cast<int>(image.width);
    picture.height = static_cast<int>(image.height);
    picture.bytes.resize(PNG_IMAGE_SIZE(image));
    return png_image_finish_read(&image, nullptr, picture.bytes.data(), 0, nullptr) != 0;
}

/// What was drawn instead, kept for whoever looks into the failure.
testing::AssertionResult differs(const std::string& name, const Picture& drawn)
{
    std::string file = name + "-drawn.png";
    std::replace(file.begin(), file.end(), '/', '-');
    const auto kept = std::filesystem::temp_directory_path() / file;
    save(kept.string(), drawn);
    return testing::AssertionFailure() << name << " differs; drawn: " << kept;
}

} // namespace

std::string letterArt(const toolkit::Surface& surface)
{
    std::string art;
    for (int y = 0; y < surface.deviceHeight(); ++y) {
        for (int x = 0; x < surface.deviceWidth(); ++x)
            art += (surface.pixel(x, y) & 0xFFFFFF) == 0 ? '.' : '#';
        art += '\n';
    }
    return art;
}

testing::AssertionResult looksLike(const std::string& name, const toolkit::Surface& surface,
                                   int tolerance)
{
    const std::string path = std::string(KV_GOLDEN_FOLDER) + "/" + name + ".png";
    const Picture drawn = pictureOf(surface);
    if (std::getenv("KV_WRITE_GOLDEN") != nullptr)
        return save(path, drawn) ? testing::AssertionSuccess()
                                 : testing::AssertionFailure() << "cannot write " << path;
    Picture approved;
    if (!load(path, approved))
        return testing::AssertionFailure() << "cannot read " << path;
    if (approved.width != drawn.width || approved.height != drawn.height)
        return differs(name, drawn) << ", another size";
    for (std::size_t i = 0; i < drawn.bytes.size(); ++i)
        if (std::abs(drawn.bytes[i] - approved.bytes[i]) > tolerance) {
            const auto pixel = static_cast<int>(i / 3);
            return differs(name, drawn)
                   << ", first at (" << pixel % drawn.width << ", " << pixel / drawn.width << ")";
        }
    return testing::AssertionSuccess();
}
