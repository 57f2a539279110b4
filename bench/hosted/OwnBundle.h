/// A copy of a built bundle beside a library that holds one pattern, the one that is measured.
#pragma once
#include <string>

namespace bench {

class OwnBundle
{
public:
    /// Throws std::filesystem::filesystem_error.
    explicit OwnBundle(const std::string& built);
    OwnBundle(const OwnBundle&) = delete;
    OwnBundle& operator=(const OwnBundle&) = delete;
    ~OwnBundle();

    const std::string& path() const { return mPath; } ///< of the bundle

private:
    std::string mFolder;
    std::string mPath;
};

} // namespace bench
