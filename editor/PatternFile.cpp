#include "editor/PatternFile.h"

#include "effect/ILooper.h"
#include "platform/os/WholeFile.h"

#include <algorithm>
#include <cstddef>
#include <filesystem>
#include <string_view>
#include <system_error>

namespace {

constexpr std::size_t kMostBytes = 255;  ///< of a file's name
constexpr std::size_t kWritingBytes = 5; ///< what a name grows by while its file is being written
constexpr std::size_t kNumberBytes = 8;  ///< " 999.mid"
constexpr int kMostNames = 1000;
constexpr std::string_view kFileScheme = IKVSSExStrumwerks::Pattern::fileScheme;

/// Where a character of UTF-8 begins, so that a cut leaves no half ones.
std::size_t cutBefore(const std::string& text, std::size_t most)
{
    while (most > 0 && (static_cast<unsigned char>(text[most]) & 0xC0) == 0x80)
        --most;
    return most;
}

/// Cuts a name before its extension, which tells other programs what the file is.
std::string shortened(const std::string& name, std::size_t most)
{
    if (name.size() <= most)
        return name;
    constexpr std::size_t longestExtension = 8;
    const std::size_t dot = name.rfind('.');
    const bool hasExtension = dot != std::string::npos && name.size() - dot <= longestExtension;
    const std::string extension = hasExtension ? name.substr(dot) : "";
    return name.substr(0, cutBefore(name, most - extension.size())) + extension;
}

std::string withoutSlashes(const std::string& name)
{
    if (name.starts_with(kFileScheme))
        return name.substr(name.rfind('/') + 1);
    std::string plain = name;
    std::replace(plain.begin(), plain.end(), '/', '-');
    return plain;
}

std::string withoutExtension(const std::string& name)
{
    const std::size_t dot = std::min(name.rfind('.'), name.size());
    const std::string_view extension = std::string_view(name).substr(dot);
    return extension == ".mid" || extension == ".midi" ? name.substr(0, dot) : name;
}

} // namespace

std::string draggedFileName(const std::string& pattern)
{
    const std::string name = shortened(withoutSlashes(pattern), kMostBytes - kWritingBytes);
    return name.empty() || name == "." || name == ".." ? "unknown.mid" : name;
}

std::string exportedBaseName(const std::string& pattern)
{
    const std::string name = withoutSlashes(pattern);
    return shortened(withoutExtension(name.empty() ? "Pattern" : name), kMostBytes - kNumberBytes);
}

bool writeDraggedFile(const std::string& path, const std::string& bytes)
{
    std::error_code error;
    if (std::filesystem::is_symlink(path, error)) // somebody else's: its target is not asked about
        std::filesystem::remove(path, error);
    return platform::replaceWholeFile(path, bytes);
}

bool writeExportedFile(const std::string& folder, const std::string& base, const std::string& bytes)
{
    const std::string path = folder + "/" + base;
    auto result = platform::createWholeFile(path + ".mid", bytes);
    for (int n = 1; n < kMostNames && result == platform::FileCreation::Exists; ++n)
        result = platform::createWholeFile(path + " " + std::to_string(n) + ".mid", bytes);
    return result == platform::FileCreation::Done;
}
