// The standard library's and the C library's walks over a folder. Both keep whole paths in one
// list.
#include "bench/ScanSubject.h"

#include <algorithm>
#include <filesystem>
#include <ftw.h>
#include <string_view>

namespace bench {

namespace {

class ListScan : public ScanSubject
{
public:
    std::vector<std::string> paths() const override { return mPaths; }

protected:
    std::vector<std::string> mPaths;
};

class FilesystemScan final : public ListScan
{
public:
    const char* name() const override { return "filesystem"; }

    void scan(const std::string& folder) override
    {
        mPaths.clear();
        for (const auto& entry : std::filesystem::recursive_directory_iterator(folder))
            if (entry.path().extension() == ".mid" && entry.is_regular_file())
                mPaths.push_back(entry.path());
        std::ranges::sort(mPaths);
    }
};

/// The callback gets nothing of its caller's.
std::vector<std::string>* gList = nullptr;

int addFile(const char* path, const struct stat*, int type, FTW*)
{
    if (type == FTW_F && std::string_view(path).ends_with(".mid"))
        gList->emplace_back(path);
    return 0;
}

class NftwScan final : public ListScan
{
public:
    const char* name() const override { return "nftw"; }

    void scan(const std::string& folder) override
    {
        constexpr int kDescriptors = 16;
        mPaths.clear();
        gList = &mPaths;
        ::nftw(folder.c_str(), addFile, kDescriptors, FTW_PHYS);
        std::ranges::sort(mPaths);
    }
};

} // namespace

std::unique_ptr<ScanSubject> makeFilesystemScan()
{
    return std::make_unique<FilesystemScan>();
}

std::unique_ptr<ScanSubject> makeNftwScan()
{
    return std::make_unique<NftwScan>();
}

} // namespace bench
