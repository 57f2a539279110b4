#include "platform/os/FileLock.h"

#include <cerrno>
#include <fcntl.h>
#include <sys/file.h>

namespace platform {

// A lock by flock belongs to the opened file, not to the process, so that two threads that have
// each opened the file keep each other out as well. Opening for reading is enough for one, so that
// users who share a folder need not share the file's permissions.
FileLock::FileLock(const std::string& path)
    : mFile(::open(path.c_str(), O_RDONLY | O_CREAT | O_CLOEXEC | O_NOFOLLOW, 0666))
{
    if (!mFile)
        return;
    int result = 0;
    do {
        result = ::flock(mFile.get(), LOCK_EX);
    } while (result != 0 && errno == EINTR);
    mHeld = result == 0;
}

} // namespace platform
