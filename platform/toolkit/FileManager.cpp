#include "platform/toolkit/FileManager.h"

#include <filesystem>
#include <spawn.h>
#include <string>
#include <sys/wait.h>
#include <system_error>
#include <thread>

extern char** environ;

namespace toolkit {

namespace {

/// The opener ends when it likes; somebody has to notice, or it stays in the process table.
void reap(pid_t child)
{
    std::thread([child] {
        int status = 0;
        ::waitpid(child, &status, 0);
    }).detach();
}

} // namespace

Status openDocument(const std::string& path)
{
    std::error_code error;
    // Absolute, so that no file's name is taken for an option.
    const auto absolute = std::filesystem::absolute(path, error);
    if (error || !std::filesystem::exists(absolute, error))
        return fileNotFoundErr;
    std::string program = "xdg-open";
    std::string document = absolute.string();
    char* arguments[] = {program.data(), document.data(), nullptr};
    pid_t child = 0;
    const int failure =
        ::posix_spawnp(&child, program.c_str(), nullptr, nullptr, arguments, environ);
    if (failure == 0)
        reap(child);
    return failure;
}

} // namespace toolkit
