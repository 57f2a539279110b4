#include "shared/System/kvModule.h"

#include "platform/os/LoadedImage.h"
#include "platform/os/StandardFolders.h"
#include "shared/System/kvAssert.h"

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <memory>
#include <mutex>
#include <string_view>
#include <sys/stat.h>
#include <system_error>

#define KV_MODULE_ASSERT(condition, text) KV_ASSERT_TEXT("shared/System/kvModule", condition, text)

namespace Korvanel {

namespace {

constexpr const char* kDomainPrefix = "org.korvanel.";
// The executable file, its folder, the contents folder and the bundle lie between an executable's
// path and the folder that holds the bundle.
constexpr int kLevelsToBundle = 3;
constexpr int kLevelsToHolder = 4;
constexpr std::size_t kPathBytes = 260; // what callers keep a path in, terminator included

// NOLINTNEXTLINE(bugprone-reserved-identifier): its name in debuggers and crash reports
bool ___module_location_initialized = false;
std::unique_ptr<const Bundle> theBundleRef;

/// Drops components from the end of a path, each with the slash before it; false when there are not
/// as many.
bool climb(std::string& path, int levels)
{
    for (; levels > 0; --levels) {
        const std::size_t slash = path.rfind('/');
        if (slash == std::string::npos || path == "/")
            return false;
        path.resize(slash);
    }
    return true;
}

/// Up to and including the last slash; all of a path that has none.
std::string folderOf(const std::string& path)
{
    const std::size_t slash = path.rfind('/');
    return slash == std::string::npos ? path : path.substr(0, slash + 1);
}

bool holderOfBundle(const std::string& executable, FSSpec& holder)
{
    std::string folder = executable;
    if (!climb(folder, kLevelsToHolder))
        return false;
    holder = {folder + "/", ""};
    return true;
}

std::string supportFolder(AppPathType type)
{
    switch (type) {
    case kUserSupport:
    case kUserSupportAgain:
        return platform::userDataFolder();
    case kAllUsersSupport:
        return platform::allUsersDataFolder();
    default:
        return {};
    }
}

/// Takes the first component and the slash behind it off `path`.
std::string_view takeComponent(std::string_view& path)
{
    const std::string_view component = path.substr(0, path.find('/'));
    path.remove_prefix(std::min(component.size() + 1, path.size()));
    return component;
}

/// Appends the components of `sub`, empty ones left out, and calls `made` with each path on the way
/// until it returns false.
template <typename Made>
bool appendComponents(String& path, const char* sub, Made made)
{
    std::string_view rest = sub != nullptr ? sub : "";
    while (!rest.empty()) {
        const std::string_view component = takeComponent(rest);
        if (component.empty())
            continue;
        path += String(component.data(), static_cast<int>(component.size())) + '/';
        if (!made(path.c_str()))
            return false;
    }
    return true;
}

bool isFolder(const std::string& path)
{
    std::error_code error;
    return std::filesystem::is_directory(path, error);
}

} // namespace

String Module::sName;
String Module::sVersion;
String Module::sProfileRoot;
bool Module::sInited = false;
String Module::sModulePath;
FSSpec Module::sModLocation;

// Setting up --------------------------------------------------------------------------------------

void Module::Init(const char* name, const char* version)
{
    InitSelfLocation();
    sName = name;
    sVersion = version;
    sInited = true;
    sProfileRoot = kDomainPrefix + sName;
    if (!sVersion.IsEmpty())
        sProfileRoot += "." + sVersion;
}

std::int16_t Module::Init(const char* path, const char* name, const char* version)
{
    Init(name, version);
    if (path == nullptr)
        return kPathBadParameter;
    sModulePath = folderOf(path).c_str();
    FSRef executable;
    if (const std::int16_t error = FullPathMakeFSRef(path, &executable); error != kPathOk)
        return error;
    std::error_code failed;
    const auto whole = std::filesystem::absolute(executable.path, failed).lexically_normal();
    return !failed && holderOfBundle(whole.string(), sModLocation) ? kPathOk : kPathNotFound;
}

bool Module::InitSelfLocation()
{
    static std::mutex lock; // hosts make their effects on threads of all kinds
    const std::lock_guard hold(lock);
    if (___module_location_initialized)
        return true;
    const auto image = platform::pathOfImageAt(reinterpret_cast<const void*>(&climb));
    if (!image || !holderOfBundle(*image, sModLocation))
        return false;
    sModulePath = folderOf(*image).c_str();
    ___module_location_initialized = true;
    return true;
}

// Paths -------------------------------------------------------------------------------------------

String Module::GetModulePath()
{
    return sModulePath;
}

String Module::GetContentsPath()
{
    const String folder = sModulePath.Left(sModulePath.GetLength() - 1);
    return folder.Left(folder.ReverseFind('/') + 1);
}

String Module::GetFolderPath()
{
    // However long it is, unlike the support folders: without it an effect would look for patterns
    // in whatever folder its host happens to run.
    return sModLocation.parent.c_str();
}

String Module::GetPath(AppPathType type)
{
    String path;
    if (type == kModuleFolder) {
        path = GetFolderPath();
    } else if (const std::string folder = supportFolder(type); folder.size() < kPathBytes) {
        path = folder.c_str();
    }
    if (path.IsEmpty())
        return path;
    MakeUnifiedPath(path);
    if (path[path.GetLength() - 1] != '/')
        path += '/';
    return path;
}

String Module::GetPathSubfolder(AppPathType type, const char* sub)
{
    String path = GetPath(type);
    if (!path.IsEmpty()) // else it would become a path from wherever the process happens to be
        appendComponents(path, sub, [](const char*) { return true; });
    return path;
}

String Module::GetPathCreateSubfolder(AppPathType type, const char* sub)
{
    String path = GetPath(type);
    const bool made = !path.IsEmpty() && appendComponents(path, sub, [](const char* folder) {
        return ::mkdir(folder, 0777) == 0 || errno == EEXIST;
    });
    return made ? path : GetFolderPath();
}

String Module::GetAppSubfolder()
{
    String path = "Korvanel/" + sName;
    if (!sVersion.IsEmpty())
        path += "/" + sVersion;
    return path + '/';
}

String Module::GetModuleName()
{
    return "";
}

// Bundles -----------------------------------------------------------------------------------------

Bundle Module::create_bundle_ref()
{
    const auto image = platform::pathOfImageAt(reinterpret_cast<const void*>(&climb));
    KV_MODULE_ASSERT(image.has_value(), "i < n");
    std::string imagename = *image;
    KV_MODULE_ASSERT(!imagename.empty(), "imagename != 0");
    const bool ref = climb(imagename, kLevelsToBundle) && isFolder(imagename + "/");
    KV_MODULE_ASSERT(ref, "ref != 0");
    return {(imagename + "/").c_str()};
}

const Bundle& Module::getBundleMacho()
{
    if (theBundleRef == nullptr)
        theBundleRef = std::make_unique<const Bundle>(create_bundle_ref());
    return *theBundleRef;
}

Bundle Module::getMainBundle()
{
    const std::string program = platform::pathOfMainProgram();
    std::string mainBundle = folderOf(program);
    std::string contents = program;
    if (climb(contents, kLevelsToBundle - 1) && contents.ends_with("/Contents"))
        mainBundle = folderOf(contents);
    KV_MODULE_ASSERT(isFolder(mainBundle), "mainBundle != 0");
    return {mainBundle.c_str()};
}

} // namespace Korvanel
