// The looper as a program of its own.
#include "host/cli/CommandError.h"
#include "host/standalone/EditorProgram.h"

#include <CLI/CLI.hpp>
#include <cstdio>
#include <exception>

namespace {

int fail(ExitCode code, const char* line)
{
    std::fprintf(stderr, "korvanel-looper: %s\n", line);
    return static_cast<int>(code);
}

int run(int argc, char** argv)
{
    EditorOptions options;
    CLI::App app{"The Korvanel Looper in a window of its own.", "korvanel-looper"};
    app.set_version_flag("--version", "korvanel-looper " KV_VERSION);
    app.add_option("pattern", options.pattern, "MIDI file, or Style/Pattern of the library");
    app.add_option("--library", options.library, "Folder of styles; else the usual library");
    app.add_option("--tempo", options.tempo, "Beats per minute")->check(CLI::Range(20.0, 999.0));
    app.add_option("--look", options.appearance, "dark, light, or as the desktop has it")
        ->check(CLI::IsMember({"dark", "light", "desktop"}));
    app.add_option("--scale", options.scale, "Enlarges the window")->check(CLI::Range(0.5, 4.0));
    app.add_option("--picture", options.picture, "Save a picture of the window, and end");
    try {
        app.parse(argc, argv);
    } catch (const CLI::Success& success) {
        return app.exit(success);
    } catch (const CLI::ParseError& error) {
        return fail(ExitCode::Usage, error.what());
    }
    runEditor(options);
    return 0;
}

} // namespace

int main(int argc, char** argv)
{
    try {
        return run(argc, argv);
    } catch (const CommandError& error) {
        return fail(error.code(), error.what());
    } catch (const std::exception& error) {
        return fail(ExitCode::Usage, error.what());
    }
}
