/// The built program, run as a user runs it.
#pragma once
#include <string>
#include <sys/types.h>
#include <vector>

struct Outcome
{
    int code = -1; ///< the exit code; 1000 and more for a signal
    std::string out;
    std::string err;
};

/// Starts the program with its output and errors in the files "out" and "err" of a folder.
pid_t startLooper(std::vector<std::string> arguments, const std::string& folder);
Outcome finishLooper(pid_t child, const std::string& folder);

Outcome runLooper(std::vector<std::string> arguments);

/// One line of error that holds the words, and that exit code.
void expectRefused(const Outcome& outcome, int code, const std::string& words);
