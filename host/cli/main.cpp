// The command line: a host for the plug-in.
#include "host/cli/CommandError.h"
#include "host/cli/PlayCommand.h"
#include "host/cli/RenderCommand.h"
#include "host/cli/ShowCommand.h"

#include <CLI/CLI.hpp>
#include <cstdio>
#include <exception>

int main(int argc, char** argv)
{
    CLI::App app{"Plays, renders and shows MIDI patterns through the Korvanel Looper plug-in.",
                 "looper"};
    app.set_version_flag("--version", "looper " KV_VERSION);
    app.require_subcommand(1);
    addPlayCommand(app);
    addRenderCommand(app);
    addShowCommand(app);
    try {
        app.parse(argc, argv);
        return 0;
    } catch (const CLI::Success& success) {
        return app.exit(success);
    } catch (const CLI::ParseError& error) {
        std::fprintf(stderr, "looper: %s (looper --help lists the commands)\n", error.what());
        return static_cast<int>(ExitCode::Usage);
    } catch (const CommandError& error) {
        std::fprintf(stderr, "looper: %s\n", error.what());
        return static_cast<int>(error.code());
    } catch (const std::bad_alloc&) {
        std::fprintf(stderr, "looper: out of memory\n");
        return static_cast<int>(ExitCode::BadPattern);
    }
}
