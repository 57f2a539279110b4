/// Libraries of 10,000 patterns on the disk, for the benchmarks of the pattern library.
#pragma once
#include <filesystem>
#include <string>
#include <vector>

namespace bench {

constexpr int kPatterns = 10'000;

/// A new folder with kPatterns empty files in it, that goes when the object goes.
class LibraryFolder
{
public:
    /// The last tenth of the styles, or the only one, lies in the folder "User".
    /// @param styles  divides kPatterns
    explicit LibraryFolder(int styles);
    LibraryFolder(const LibraryFolder&) = delete;
    LibraryFolder& operator=(const LibraryFolder&) = delete;
    ~LibraryFolder();

    const std::string& path() const { return mPath; }

    std::string operator/(const char* name) const { return mPath + "/" + name; }

    /// Waits until every folder's times prove that nothing happened since. An unchanged folder is
    /// not read again from then on.
    void waitUntilOld() const;

private:
    std::string mPath = std::filesystem::temp_directory_path() / "kv-bench-XXXXXX";
};

} // namespace bench
