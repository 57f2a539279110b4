/// What the commands fail with: one line for the user and the program's exit code.
#pragma once
#include <stdexcept>
#include <string>

enum class ExitCode : int {
    Ok = 0,
    Usage = 1,
    BadPattern = 2,  ///< a pattern file is missing, unreadable or damaged
    CannotWrite = 3, ///< the output cannot be written
    NoMidi = 4,      ///< there is no MIDI system or no such port
    NoBundle = 5,    ///< the plug-in cannot be loaded
    NoDisplay = 6,   ///< there is no screen for a window
};

class CommandError : public std::runtime_error
{
public:
    CommandError(ExitCode code, const std::string& line)
        : std::runtime_error(line)
        , mCode(code)
    {
    }

    ExitCode code() const { return mCode; }

private:
    ExitCode mCode;
};
