/// Where the plug-in lives. Set up once, on one thread, before anything asks.
#pragma once
#include "shared/System/kvString.h"

namespace Korvanel {

/// Every binary that holds the effect lies at BUNDLE/Contents/ARCH/FILE; the paths here follow from
/// that.
class Module
{
public:
    /// Finds this module among the loaded images; once only. @return false when it cannot be found
    static bool InitSelfLocation();

    /// The folder of the executable file, with a trailing slash; "" when unknown.
    static String GetModulePath();
    /// The bundle's contents folder, with a trailing slash.
    static String GetContentsPath();
    /// The folder that holds the bundle, with a trailing slash; "" when unknown.
    static String GetFolderPath();
};

} // namespace Korvanel
