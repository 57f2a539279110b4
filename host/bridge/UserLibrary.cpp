#include "host/bridge/UserLibrary.h"

#include "platform/os/StandardFolders.h"
#include "shared/System/kvModule.h"

#include <cstdlib>
#include <filesystem>
#include <system_error>

namespace fs = std::filesystem;

namespace {

constexpr const char* kLibrary = "Korvanel/Loops";

bool isFolder(const fs::path& path)
{
    std::error_code error;
    return fs::is_directory(path, error);
}

/// A folder that goes, with all in it, unless it has been given its place.
class Draft
{
public:
    explicit Draft(const fs::path& beside)
        : mPath(beside / ".Loops-XXXXXX")
    {
        if (::mkdtemp(mPath.data()) == nullptr)
            mPath.clear();
    }

    ~Draft()
    {
        std::error_code error;
        if (!mPath.empty())
            fs::remove_all(mPath, error);
    }

    Draft(const Draft&) = delete;
    Draft& operator=(const Draft&) = delete;

    /// Renaming a folder takes the place of an empty one at most, so nothing of the user's is lost
    /// to it, and of two plug-ins that come here at once one wins.
    bool fillAndPlace(const fs::path& source, const fs::path& place)
    {
        std::error_code error;
        if (mPath.empty())
            return false;
        fs::copy(source, mPath, fs::copy_options::recursive, error);
        if (!error)
            fs::permissions(mPath, fs::perms(0755), error);
        if (!error)
            fs::rename(mPath, place, error);
        return !error;
    }

private:
    std::string mPath;
};

bool makeLibrary(const fs::path& library, const std::string& factory)
{
    if (factory.empty() || !platform::makeFolders(library.parent_path(), 0755))
        return false;
    return Draft(library.parent_path()).fillAndPlace(factory, library) || isFolder(library);
}

} // namespace

std::string factoryLibrary()
{
    Korvanel::Module::InitSelfLocation();
    std::string own = std::string(Korvanel::Module::GetContentsPath().c_str()) + "Resources/Loops";
    if (isFolder(own))
        return own;
    for (const std::string& folder : platform::systemDataFolders())
        if (const fs::path library = fs::path(folder) / kLibrary; isFolder(library))
            return library;
    return {};
}

std::string chooseLibrary(const std::string& installed, const std::string& factory)
try {
    if (isFolder(installed))
        return installed;
    const std::string data = platform::userDataFolder();
    if (data.empty())
        return installed;
    const fs::path library = fs::path(data) / kLibrary;
    return isFolder(library) || makeLibrary(library, factory) ? library.string() : installed;

} catch (const std::exception&) {

    return installed; // a disk or a name that cannot be used leaves an effect without a library
}
