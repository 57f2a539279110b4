#include "editor/LibraryFiles.h"

#include "platform/os/Descriptor.h"
#include "platform/os/WholeFile.h"

#include <cerrno>
#include <fcntl.h>
#include <string_view>
#include <sys/stat.h>
#include <unistd.h>

using Korvanel::String;
using Korvanel::DirectoryTrees::Node;

namespace {

constexpr int kMostNumbers = 1000;
constexpr mode_t kFolderMode = 0777;
constexpr mode_t kFileMode = 0666;

/// The number that tells a name from those before it; the first has none.
std::string numbered(const std::string& name, int number)
{
    return number == 0 ? name : name + " " + std::to_string(number);
}

/// Takes a name that nobody has, at once: between a look and a creation another program could take
/// it.
/// @return the path of an empty file; "" when none could be made
std::string reserveFile(const std::string& folder, const std::string& name)
{
    for (int number = 0; number < kMostNumbers; ++number) {
        std::string path = folder + numbered(name, number) + ".mid";
        if (platform::Descriptor(
                ::open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, kFileMode)))
            return path;
        if (errno != EEXIST)
            return {};
    }
    return {};
}

/// Whether renaming to the path would meet something. Where case does not count, a name that
/// changes in nothing else meets the node's own file.
bool isTaken(const std::string& newPath, const std::string& oldPath)
{
    struct stat there
    {
    };

    struct stat own
    {
    };

    if (::lstat(newPath.c_str(), &there) != 0)
        return errno != ENOENT;
    const bool isSame = ::lstat(oldPath.c_str(), &own) == 0 && there.st_dev == own.st_dev &&
                        there.st_ino == own.st_ino;
    const bool hasOneName = S_ISDIR(there.st_mode) || there.st_nlink == 1;
    return !isSame || !hasOneName;
}

} // namespace

bool isLibraryName(const std::string& name)
{
    return !name.empty() && name.front() != '.' &&
           name.find_first_of(std::string_view("/\\\0", 3)) == std::string::npos;
}

std::string makeStyleFolder(const std::string& folder, const std::string& name, int last)
{
    for (int number = 0; number <= last; ++number) {
        std::string free = numbered(name, number);
        if (::mkdir((folder + free).c_str(), kFolderMode) == 0)
            return free;
        if (errno != EEXIST)
            return {};
    }
    return {};
}

bool addPatternFile(const std::string& folder, const std::string& name, const std::string& content)
{
    if (!isLibraryName(name))
        return false;
    const std::string path = reserveFile(folder, name);
    if (path.empty())
        return false;
    if (platform::replaceWholeFile(path, content))
        return true;
    ::unlink(path.c_str());
    return false;
}

bool deletePatternFile(const std::string& path)
{
    return ::unlink(path.c_str()) == 0;
}

bool renameNode(Node& node, const std::string& name)
{
    if (node.parent() == nullptr)
        return false;
    String folder;
    node.parent()->FullPath(folder);
    if (isTaken(folder.c_str() + name, node.FullName().c_str()))
        return false;
    const String newName(name.data(), static_cast<int>(name.size()));
    node.Rename(newName);
    return node.name() == newName;
}
