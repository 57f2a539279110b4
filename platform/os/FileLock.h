/// Keeps other processes, and other threads of this one, away from something on the disk.
#pragma once
#include "platform/os/Descriptor.h"

#include <string>

namespace platform {

/// Holds the lock that a file stands for from construction to destruction. The file is made when it
/// is missing and stays behind empty: removing it would let two holders lock two different files of
/// one name. Not recursive; a process that dies lets go. Thread: any.
class FileLock
{
public:
    /// Waits without limit.
    explicit FileLock(const std::string& path);
    FileLock(const FileLock&) = delete;
    FileLock& operator=(const FileLock&) = delete;

    /// False when the file cannot be made or its file system has no locks.
    bool held() const { return mHeld; }

private:
    Descriptor mFile;
    bool mHeld = false;
};

} // namespace platform
