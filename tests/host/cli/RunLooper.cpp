#include "tests/host/cli/RunLooper.h"

#include "tests/support/Folders.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

pid_t startLooper(std::vector<std::string> arguments, const std::string& folder)
{
    std::vector<char*> argv{const_cast<char*>("looper")};
    for (std::string& argument : arguments)
        argv.push_back(argument.data());
    argv.push_back(nullptr);
    const pid_t child = ::fork();
    if (child == 0) {
        constexpr int flags = O_WRONLY | O_CREAT | O_TRUNC;
        ::dup2(::open((folder + "/out").c_str(), flags, 0600), STDOUT_FILENO);
        ::dup2(::open((folder + "/err").c_str(), flags, 0600), STDERR_FILENO);
        ::setenv("COLUMNS", "80", 1);
        ::execv(KV_LOOPER, argv.data());
        ::_exit(127);
    }
    return child;
}

Outcome finishLooper(pid_t child, const std::string& folder)
{
    int status = 0;
    ::waitpid(child, &status, 0);
    return {WIFEXITED(status) ? WEXITSTATUS(status) : 1000 + WTERMSIG(status),
            contentOf(folder + "/out"), contentOf(folder + "/err")};
}

Outcome runLooper(std::vector<std::string> arguments)
{
    const TemporaryFolder folder;
    return finishLooper(startLooper(std::move(arguments), folder.path()), folder.path());
}

void expectRefused(const Outcome& outcome, int code, const std::string& words)
{
    EXPECT_EQ(outcome.code, code) << outcome.err;
    EXPECT_NE(outcome.err.find(words), std::string::npos) << outcome.err;
    EXPECT_EQ(std::count(outcome.err.begin(), outcome.err.end(), '\n'), 1)
        << "one line: " << outcome.err;
}
