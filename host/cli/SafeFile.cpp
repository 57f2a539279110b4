#include "host/cli/SafeFile.h"

#include "host/cli/CommandError.h"

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

[[noreturn]] void fail(const std::string& path)
{
    throw CommandError(ExitCode::CannotWrite, path + ": " + std::strerror(errno));
}

bool writeAll(int descriptor, const std::string& bytes)
{
    for (std::size_t at = 0; at < bytes.size();) {
        const auto written = ::write(descriptor, bytes.data() + at, bytes.size() - at);
        if (written < 0 && errno != EINTR)
            return false;
        at += written > 0 ? static_cast<std::size_t>(written) : 0;
    }
    return true;
}

bool isDevice(const std::string& path)
{
    struct stat found
    {
    };

    return ::stat(path.c_str(), &found) == 0 && !S_ISREG(found.st_mode) && !S_ISDIR(found.st_mode);
}

void writeInPlace(const std::string& path, const std::string& bytes)
{
    const int descriptor = ::open(path.c_str(), O_WRONLY | O_CLOEXEC);
    if (descriptor < 0)
        fail(path);
    const bool written = writeAll(descriptor, bytes);
    if (::close(descriptor) != 0 || !written)
        fail(path);
}

/// What a new file of ours may be read and written by.
mode_t usualMode()
{
    const mode_t mask = ::umask(0);
    ::umask(mask);
    return 0666 & ~mask;
}

} // namespace

void writeWhole(const std::string& path, const std::string& bytes)
{
    if (path == "-") {
        if (!writeAll(STDOUT_FILENO, bytes))
            fail("standard output");
        return;
    }
    if (isDevice(path)) { // a pipe or a device is not ours to replace
        writeInPlace(path, bytes);
        return;
    }
    std::string beside = path + ".XXXXXX";
    const int descriptor = ::mkostemp(beside.data(), O_CLOEXEC);
    if (descriptor < 0)
        fail(path);
    const bool written = writeAll(descriptor, bytes) && ::fchmod(descriptor, usualMode()) == 0 &&
                         ::fsync(descriptor) == 0;
    const bool closed = ::close(descriptor) == 0;
    if (!written || !closed || ::rename(beside.c_str(), path.c_str()) != 0) {
        const int error = errno;
        ::unlink(beside.c_str());
        errno = error;
        fail(path);
    }
}
