/// Who the plug-in is, where it lives, and its profile: the settings that belong to no project.
/// Init and the first question for a bundle come once, on one thread, while the plug-in is set up;
/// everything else may be asked from any thread then.
#pragma once
#include "shared/System/kvPath.h"
#include "shared/System/kvString.h"

#include <cstdint>
#include <string>

namespace Korvanel {

/// Folders that Module::GetPath knows.
enum AppPathType : std::int32_t {
    kModuleFolder = 0,     ///< the one that holds the bundle
    kUserSupport = 1,      ///< the current user's application data; made when it is missing
    kUserSupportAgain = 2, ///< the same
    kAllUsersSupport = 3,  ///< application data of all users; made when it is missing
};

/// A plug-in's or a program's folder, with its executable and its resources inside.
struct Bundle
{
    String folder; ///< absolute, with a trailing slash
};

/// Every binary that holds the effect lies at BUNDLE/Contents/ARCH/FILE; the paths here follow from
/// that. A path function that fails returns the empty text; asking the profile before Init, or for
/// a bundle that is not there, stops the process with an assertion line.
class Module
{
public:
    /// @param version  null or empty for none
    static void Init(const char* name, const char* version);
    /// For a host that says where the plug-in's executable file is.
    /// @return 0, or the error number of kvPath.h for a file that is not there or lies too high up;
    ///         name, version and GetModulePath are set then, GetFolderPath is not changed
    static std::int16_t Init(const char* path, const char* name, const char* version);
    /// Finds this module among the loaded images; once only. @return false when it cannot be found
    static bool InitSelfLocation();

    // Paths, each with a trailing slash -----------------------------------------------------------
    /// The folder of the executable file; "" when unknown.
    static String GetModulePath();
    /// The bundle's contents folder.
    static String GetContentsPath();
    /// The folder that holds the bundle; "" when unknown.
    static String GetFolderPath();
    /// "" for an unknown type, and for a support folder whose path needs more than 260 bytes.
    static String GetPath(AppPathType type);
    /// GetPath and the components of `sub` behind it, empty ones left out; nothing is made. ""
    /// where GetPath is.
    static String GetPathSubfolder(AppPathType type, const char* sub);
    /// The same, and makes what is missing; GetFolderPath() when that fails.
    static String GetPathCreateSubfolder(AppPathType type, const char* sub);
    /// Where the plug-in keeps its own things under one of these: "Korvanel/<name>/<version>/".
    static String GetAppSubfolder();
    static String GetModuleName(); ///< "": the plug-in is known by the name given to Init

    // Bundles -------------------------------------------------------------------------------------
    static const Bundle& getBundleMacho(); ///< the plug-in's own
    /// The host program's: its bundle where it lies in one, else its own folder.
    static Bundle getMainBundle();

    // The profile: entries of all sections share one name space, so `section` is not looked at ----
    static int GetProfileInt(const char* section, const char* key, int def, bool allUsers);
    /// Throws Exception where there is no such number.
    static int GetProfileInt_ThrowExcept(const char* section, const char* key, bool allUsers);
    static String GetProfileString(const char* section, const char* key, const char* def,
                                   bool allUsers);
    /// @return 0, or -1 when it could not be stored
    static int WriteProfileInt(const char* section, const char* key, int value, bool allUsers);
    /// @param text  null removes the entry
    /// @return 0, or -1 when it could not be stored
    static int WriteProfileString(const char* section, const char* key, const char* text,
                                  bool allUsers);

private:
    static Bundle create_bundle_ref();

    static String sName;
    static String sVersion;
    static String sProfileRoot; ///< the domain of the profile
    static bool sInited;
    static String sModulePath;
    static FSSpec sModLocation;
};

} // namespace Korvanel
