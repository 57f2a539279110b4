// The command line: a host for the plug-in.
#include "host/cli/CommandError.h"
#include "host/cli/EditCommand.h"
#include "host/cli/LibraryCommand.h"
#include "host/cli/PlayCommand.h"
#include "host/cli/RenderCommand.h"
#include "host/cli/ShowCommand.h"
#include "host/cli/StateCommand.h"

#include <CLI/CLI.hpp>
#include <cstdio>
#include <exception>
#include <new>
#include <string>

namespace {

int fail(ExitCode code, const char* line)
{
    std::fprintf(stderr, "looper: %s\n", line);
    return static_cast<int>(code);
}

int run(int argc, char** argv)
{
    CLI::App app{"Plays, renders and shows MIDI patterns through the Korvanel Looper plug-in.",
                 "looper"};
    app.set_version_flag("--version", "looper " KV_VERSION);
    app.require_subcommand(1);
    addPlayCommand(app);
    addRenderCommand(app);
    addShowCommand(app);
    addLibraryCommand(app);
    addStateCommand(app);
    addEditCommand(app);
    try {
        app.parse(argc, argv);
        return 0;
    } catch (const CLI::Success& success) {
        return app.exit(success);
    } catch (const CLI::ParseError& error) {
        const std::string line = std::string(error.what()) + " (looper --help lists the commands)";
        return fail(ExitCode::Usage, line.c_str());
    }
}

} // namespace

int main(int argc, char** argv)
{
    try {
        return run(argc, argv);
    } catch (const CommandError& error) {
        return fail(error.code(), error.what());
    } catch (const std::bad_alloc&) {
        return fail(ExitCode::BadPattern, "out of memory");
    } catch (const std::exception& error) {
        return fail(ExitCode::Usage, error.what());
    }
}
