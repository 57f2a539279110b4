#include "platform/os/WholeFile.h"

#include "platform/os/Descriptor.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <filesystem>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>

namespace platform {

namespace {

constexpr int kMostLinks = 40; // as many as the kernel itself follows

bool isRegular(const Descriptor& file)
{
    struct stat found
    {
    };

    return ::fstat(file.get(), &found) == 0 && S_ISREG(found.st_mode);
}

FileRead readAll(const Descriptor& file, std::size_t limit, std::string& text)
{
    char block[16384];
    for (;;) {
        const ssize_t count = ::read(file.get(), block, sizeof block);
        if (count < 0 && errno == EINTR)
            continue;
        if (count < 0)
            return FileRead::Failed;
        if (count == 0)
            return FileRead::Done;
        if (text.size() + static_cast<std::size_t>(count) > limit)
            return FileRead::TooLarge;
        text.append(block, static_cast<std::size_t>(count));
    }
}

bool writeAll(const Descriptor& file, const std::string& text)
{
    std::size_t done = 0;
    while (done < text.size()) {
        const ssize_t count = ::write(file.get(), text.data() + done, text.size() - done);
        if (count < 0 && errno != EINTR)
            return false;
        done += static_cast<std::size_t>(std::max<ssize_t>(count, 0));
    }
    return true;
}

/// A new file must be on the disk before its name is: a rename that outlives a power cut while the
/// content does not would leave an empty file.
bool writeNew(const std::string& path, const std::string& text, const std::string& old)
{
    ::unlink(path.c_str()); // left over when a writer died
    Descriptor file(
        ::open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC | O_NOFOLLOW, 0666));
    if (!file)
        return false;

    struct stat found
    {
    };

    if (::stat(old.c_str(), &found) == 0 && ::fchmod(file.get(), found.st_mode & 0777u) != 0)
        return false;
    return writeAll(file, text) && ::fsync(file.get()) == 0 && file.close();
}

void syncFolder(const std::string& folder)
{
    // The new content stands already; a file system that cannot sync its folders is no failure.
    const Descriptor opened(::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (opened)
        ::fsync(opened.get());
}

} // namespace

FileRead readWholeFile(const std::string& path, std::size_t limit, std::string& text)
{
    text.clear();
    const Descriptor file(::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
    if (!file)
        return errno == ENOENT || errno == ENOTDIR ? FileRead::Missing : FileRead::Failed;
    const FileRead result = isRegular(file) ? readAll(file, limit, text) : FileRead::Failed;
    if (result != FileRead::Done)
        text.clear();
    return result;
}

bool replaceWholeFile(const std::string& path, const std::string& text)
{
    const std::filesystem::path target(path);
    const std::filesystem::path folder = target.parent_path();
    const std::string beside = (folder / ("." + target.filename().string() + ".new")).string();
    if (!writeNew(beside, text, path) || std::rename(beside.c_str(), path.c_str()) != 0) {
        ::unlink(beside.c_str());
        return false;
    }
    syncFolder(folder.string());
    return true;
}

FileCreation createWholeFile(const std::string& path, const std::string& text)
{
    Descriptor file(::open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666));
    if (!file)
        return errno == EEXIST ? FileCreation::Exists : FileCreation::Failed;
    // A disk may report as late as at the end that it is full.
    if (writeAll(file, text) && ::fsync(file.get()) == 0 && file.close())
        return FileCreation::Done;
    ::unlink(path.c_str());
    return FileCreation::Failed;
}

std::string endOfLinks(const std::string& path)
{
    std::filesystem::path end(path);
    for (int link = 0; link <= kMostLinks; ++link) {
        std::error_code error;
        const std::filesystem::path next = std::filesystem::read_symlink(end, error);
        if (error)
            return end.string();
        end = end.parent_path() / next;
    }
    return {};
}

} // namespace platform
