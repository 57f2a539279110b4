#include "bench/LibraryFolder.h"

#include "platform/os/FolderListing.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <thread>

namespace fs = std::filesystem;

namespace bench {

namespace {

/// One tick of the coarsest clock more than the library asks for.
constexpr std::chrono::milliseconds kOld{3100};

std::string numbered(const char* format, int number)
{
    char text[32];
    std::snprintf(text, sizeof text, format, number);
    return text;
}

void makeStyle(const std::string& folder, int first, int count)
{
    fs::create_directories(folder);
    for (int i = first; i < first + count; ++i)
        std::ofstream(folder + "/" + numbered("Pattern %05d.mid", i));
}

std::int64_t lastChangeNs(const std::string& folder)
{
    platform::FolderStamp stamp;
    platform::stampOf(folder, stamp);
    std::int64_t last = std::max(stamp.changedNs, stamp.modifiedNs);
    for (const fs::directory_entry& entry : fs::directory_iterator(folder))
        if (entry.is_directory())
            last = std::max(last, lastChangeNs(entry.path()));
    return last;
}

} // namespace

LibraryFolder::LibraryFolder(int styles)
{
    if (::mkdtemp(mPath.data()) == nullptr)
        throw fs::filesystem_error("mkdtemp", mPath, {});
    const int inUser = std::max(styles / 10, 1);
    const int inEach = kPatterns / styles;
    for (int i = 0; i < styles; ++i) {
        const std::string below = i < styles - inUser ? "/" : "/User/";
        makeStyle(mPath + below + numbered("Style %03d", i), i * inEach, inEach);
    }
}

LibraryFolder::~LibraryFolder()
{
    std::error_code error;
    fs::remove_all(mPath, error);
}

void LibraryFolder::waitUntilOld() const
{
    using std::chrono::system_clock;
    const std::chrono::nanoseconds last(lastChangeNs(mPath));
    std::this_thread::sleep_until(
        system_clock::time_point(std::chrono::duration_cast<system_clock::duration>(last + kOld)));
}

} // namespace bench
