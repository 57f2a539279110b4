/// Another program on the tests' display that takes dropped files, and what it says of them.
#pragma once
#include <fcntl.h>
#include <signal.h>
#include <spawn.h>
#include <stdexcept>
#include <string>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

extern char** environ;

/// Ends the program when it goes. The tests define KV_DROP_TARGET, its path.
class DropTargetProcess
{
public:
    /// @param arguments  place on the screen, and "refuse" to take nothing
    explicit DropTargetProcess(std::vector<std::string> arguments)
    {
        int ends[2] = {-1, -1};
        if (::pipe(ends) != 0)
            throw std::runtime_error("no pipe");
        arguments.insert(arguments.begin(), KV_DROP_TARGET);
        std::vector<char*> pointers;
        for (auto& argument : arguments)
            pointers.push_back(argument.data());
        pointers.push_back(nullptr);
        posix_spawn_file_actions_t actions;
        ::posix_spawn_file_actions_init(&actions);
        ::posix_spawn_file_actions_adddup2(&actions, ends[1], STDOUT_FILENO);
        const int failed =
            ::posix_spawn(&mTarget, KV_DROP_TARGET, &actions, nullptr, pointers.data(), environ);
        ::posix_spawn_file_actions_destroy(&actions);
        ::close(ends[1]);
        mOutput = ends[0];
        ::fcntl(mOutput, F_SETFL, O_NONBLOCK);
        if (failed != 0)
            throw std::runtime_error("no drop target");
    }

    DropTargetProcess(const DropTargetProcess&) = delete;
    DropTargetProcess& operator=(const DropTargetProcess&) = delete;

    ~DropTargetProcess()
    {
        ::kill(mTarget, SIGTERM);
        ::waitpid(mTarget, nullptr, 0);
        ::close(mOutput);
    }

    /// Whether it has printed this by now.
    bool said(const std::string& text)
    {
        char bytes[512];
        for (ssize_t count; (count = ::read(mOutput, bytes, sizeof bytes)) > 0;)
            mSaid.append(bytes, static_cast<std::size_t>(count));
        return mSaid.find(text) != std::string::npos;
    }

private:
    pid_t mTarget = -1;
    int mOutput = -1;
    std::string mSaid;
};
