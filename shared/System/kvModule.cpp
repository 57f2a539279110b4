#include "shared/System/kvModule.h"

#include "platform/os/LoadedImage.h"
#include "shared/System/kvPath.h"

#include <string>

namespace Korvanel {

namespace {

String sModulePath;
FSSpec sModLocation;
bool sLocated = false;

/// The path without its last component and the slash before it; false when there is none left to
/// drop.
bool climb(std::string& path)
{
    const std::size_t slash = path.rfind('/');
    if (slash == std::string::npos || path == "/")
        return false;
    path.resize(slash);
    return true;
}

} // namespace

bool Module::InitSelfLocation()
{
    if (sLocated)
        return true;
    // The executable file, its folder, the contents folder and the bundle: four steps up to the
    // bundle's own folder.
    const std::string image = platform::pathOfImageAt(reinterpret_cast<const void*>(&climb));
    std::string folder = image;
    for (int level = 0; level < 4; ++level)
        if (!climb(folder))
            return false;
    sModulePath = image.substr(0, image.rfind('/') + 1).c_str();
    sModLocation = {folder + "/", ""};
    sLocated = true;
    return true;
}

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
    return sModLocation.parent.c_str();
}

} // namespace Korvanel
