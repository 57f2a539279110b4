#include "host/cli/EditCommand.h"

#include "host/cli/CommandError.h"

#include <CLI/CLI.hpp>
#include <array>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <string>
#include <unistd.h>
#include <vector>

namespace fs = std::filesystem;

namespace {

constexpr const char* kProgramInBundle = "Looper.bundle/Contents/Linux/korvanel-looper";

/// Beside this program in a build, below ../lib when installed.
std::string editorProgram()
{
    std::error_code error;
    const fs::path folder = fs::read_symlink("/proc/self/exe", error).parent_path();
    const std::array<fs::path, 2> places{folder / kProgramInBundle,
                                         folder.parent_path() / "lib/korvanel" / kProgramInBundle};
    for (const fs::path& place : places)
        if (fs::exists(place, error))
            return place;
    throw CommandError(ExitCode::NoBundle,
                       "the editor is not installed: " + places[0].string() + " is not there");
}

[[noreturn]] void edit(const std::vector<std::string>& arguments)
{
    const std::string program = editorProgram();
    std::vector<char*> argv{const_cast<char*>(program.c_str())};
    for (const std::string& argument : arguments)
        argv.push_back(const_cast<char*>(argument.c_str()));
    argv.push_back(nullptr);
    ::execv(program.c_str(), argv.data());
    throw CommandError(ExitCode::NoBundle, program + ": " + std::strerror(errno));
}

} // namespace

void addEditCommand(CLI::App& app)
{
    CLI::App* command =
        app.add_subcommand("edit", "Open the editor with a running transport (edit --help: more)");
    command->prefix_command(); // its arguments are the editor's
    command->set_help_flag();
    command->callback([command] { edit(command->remaining()); });
}
