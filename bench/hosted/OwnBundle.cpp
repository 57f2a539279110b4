#include "bench/hosted/OwnBundle.h"

#include "bench/hosted/Cycles.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>

namespace fs = std::filesystem;

namespace bench {

OwnBundle::OwnBundle(const std::string& built)
    : mFolder(fs::temp_directory_path() / "kv-bench-XXXXXX")
{
    if (::mkdtemp(mFolder.data()) == nullptr)
        throw fs::filesystem_error("mkdtemp", mFolder, {});
    fs::create_directories(mFolder + "/Loops/Test");
    std::ofstream(mFolder + "/Loops/Test/a.mid", std::ios::binary) << patternFile();
    mPath = mFolder / fs::path(built).filename();
    fs::copy(built, mPath, fs::copy_options::recursive);
}

OwnBundle::~OwnBundle()
{
    std::error_code error;
    fs::remove_all(mFolder, error);
}

} // namespace bench
