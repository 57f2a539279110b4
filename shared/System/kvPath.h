/// Paths in the system's unified form (slashes), the backslash form, and as references to files.
/// Thread: any.
#pragma once
#include "shared/System/kvString.h"

#include <cstdint>
#include <string>

namespace Korvanel {

/// Replaces backslashes by slashes, but for a leading pair of them (a network prefix).
void MakeUnifiedPath(char* path);
void MakeUnifiedPath(String& path);
/// Replaces slashes by backslashes.
void MakeWinPath(char* path);
void MakeWinPath(String& path);

/// The folder part, up to and including the last slash; "" where there is none.
/// @param dst   may be null  @param size  of `dst` in bytes
/// @return 0; -1 for a null path; or, with nothing copied, the bytes that `dst` needs, terminator
/// included
int UnifiedPathParseFilePath(const char* path, char* dst, std::uint32_t size);
/// The part behind the last slash; all of the path where there is none. Results as above.
int UnifiedPathParseFileName(const char* path, char* dst, std::uint32_t size);

/// Error numbers of the file references below.
enum : std::int16_t {
    kPathOk = 0,
    kPathIoError = -36,
    kPathNotFound = -43,
    kPathBadParameter = -50,
    kPathTooLong = -92,
};

/// A file or folder that exists: its path is its identity on this platform.
struct FSRef
{
    std::string path;
};

/// A place in a folder, whether something is there or not.
struct FSSpec
{
    std::string parent; ///< with a trailing slash
    std::string name;   ///< empty for the parent itself
};

std::int16_t FullPathMakeFSRef(const char* path, FSRef* ref);
std::int16_t FullPathMakeFSSpec(const char* path, FSSpec* spec);
/// Follows a chain of symbolic links, which stand for aliases here.
/// @param size  of `dst` in bytes; set to what is needed when that is more (kPathTooLong)
/// @param dst   receives the target's path; may be null
std::int16_t FullPathResolveAlias(const char* path, unsigned char& isFolder, std::uint32_t& size,
                                  char* dst);
/// @param path  receives the full path; the caller knows that it fits
std::int16_t FSpGetFullPath(const FSSpec* spec, char* path);

} // namespace Korvanel
