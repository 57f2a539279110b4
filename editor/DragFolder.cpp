#include "editor/DragFolder.h"

#include <cstdlib>
#include <sys/stat.h>
#include <unistd.h>

namespace {

constexpr mode_t kOwn = S_IRWXU;

bool isOwnAlone(const std::string& folder)
{
    struct stat info
    {
    };

    return ::lstat(folder.c_str(), &info) == 0 && S_ISDIR(info.st_mode) &&
           info.st_uid == ::geteuid() && (info.st_mode & (S_IRWXG | S_IRWXO)) == 0;
}

/// Kept, so that a process that drags often leaves one folder.
std::string otherFolder(const std::string& usual)
{
    static std::string known;
    if (!known.starts_with(usual) || !isOwnAlone(known)) {
        known = usual + "-XXXXXX";
        if (::mkdtemp(known.data()) == nullptr)
            known.clear();
    }
    return known;
}

} // namespace

std::string dragFolder(const std::string& temporary)
{
    const std::string usual = temporary + "/korvanel-" + std::to_string(::geteuid());
    ::mkdir(usual.c_str(), kOwn); // it is there as a rule; what is there is looked at
    return isOwnAlone(usual) ? usual : otherFolder(usual);
}
