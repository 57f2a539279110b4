#include "shared/System/kvPath.h"

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <sys/stat.h>

namespace Korvanel {

namespace {

int copyPart(const char* part, std::size_t length, char* dst, std::uint32_t size)
{
    if (dst == nullptr || size < length + 1)
        return static_cast<int>(length) + 1;
    std::memmove(dst, part, length);
    dst[length] = 0;
    return 0;
}

/// Bytes of the path up to and including its last slash.
std::size_t folderLength(const char* path)
{
    const char* slash = std::strrchr(path, '/');
    return slash == nullptr ? 0 : static_cast<std::size_t>(slash - path) + 1;
}

std::int16_t errorOf(int error)
{
    return error == ENOENT || error == ENOTDIR ? kPathNotFound : kPathIoError;
}

struct FreeText
{
    void operator()(char* text) const { std::free(text); }
};

} // namespace

void MakeUnifiedPath(char* path)
{
    const bool network = path[0] == '\\' && path[1] == '\\';
    char* from = network ? path + 2 : path;
    std::replace(from, from + std::strlen(from), '\\', '/');
}

void MakeUnifiedPath(String& path)
{
    MakeUnifiedPath(path.LockBuffer());
    path.UnlockBuffer();
}

void MakeWinPath(char* path)
{
    std::replace(path, path + std::strlen(path), '/', '\\');
}

void MakeWinPath(String& path)
{
    MakeWinPath(path.LockBuffer());
    path.UnlockBuffer();
}

int UnifiedPathParseFilePath(const char* path, char* dst, std::uint32_t size)
{
    return path == nullptr ? -1 : copyPart(path, folderLength(path), dst, size);
}

int UnifiedPathParseFileName(const char* path, char* dst, std::uint32_t size)
{
    if (path == nullptr)
        return -1;
    const char* name = path + folderLength(path);
    return copyPart(name, std::strlen(name), dst, size);
}

std::int16_t FullPathMakeFSRef(const char* path, FSRef* ref)
{
    if (path == nullptr || ref == nullptr)
        return kPathBadParameter;

    struct stat found
    {
    };

    if (::lstat(path, &found) != 0)
        return errorOf(errno);
    ref->path = path;
    return kPathOk;
}

std::int16_t FullPathMakeFSSpec(const char* path, FSSpec* spec)
{
    FSRef ref;
    if (spec == nullptr)
        return kPathBadParameter;
    if (const std::int16_t error = FullPathMakeFSRef(path, &ref); error != kPathOk)
        return error;
    while (ref.path.size() > 1 && ref.path.back() == '/')
        ref.path.pop_back();
    const std::size_t folder = folderLength(ref.path.c_str());
    spec->parent = ref.path.substr(0, folder);
    spec->name = ref.path.substr(folder);
    return kPathOk;
}

std::int16_t FullPathResolveAlias(const char* path, unsigned char& isFolder, std::uint32_t& size,
                                  char* dst)
{
    if (path == nullptr)
        return kPathBadParameter;
    const std::unique_ptr<char, FreeText> target(::realpath(path, nullptr));

    struct stat found
    {
    };

    if (target == nullptr || ::stat(target.get(), &found) != 0)
        return errorOf(errno);
    isFolder = S_ISDIR(found.st_mode) ? 1 : 0;
    const std::size_t needed = std::strlen(target.get()) + 1;
    if (needed > size) {
        size = static_cast<std::uint32_t>(needed);
        return kPathTooLong;
    }
    if (dst != nullptr)
        std::memcpy(dst, target.get(), needed);
    return kPathOk;
}

std::int16_t FSpGetFullPath(const FSSpec* spec, char* path)
{
    if (spec == nullptr || path == nullptr)
        return kPathBadParameter;
    std::string full = spec->parent + spec->name;
    if (spec->name.empty() && full.size() > 1)
        full.pop_back();
    std::memcpy(path, full.c_str(), full.size() + 1);
    return kPathOk;
}

} // namespace Korvanel
