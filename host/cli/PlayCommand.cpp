#include "host/cli/PlayCommand.h"

#include "host/cli/Bundle.h"
#include "host/cli/LibraryFolder.h"
#include "host/cli/MidiOutput.h"
#include "host/cli/Player.h"

#include <CLI/CLI.hpp>
#include <atomic>
#include <csignal>
#include <cstdio>
#include <memory>
#include <unistd.h>

namespace {

constexpr int kTicksPerQuarter = 3840; ///< of a live host

struct PlayArguments
{
    std::vector<std::string> files; ///< as given; play() puts the paths that they mean
    std::string library;
    PlayOptions options;
    std::string port;
    std::string device;
    int bars = 0; ///< 0: on and on, or once through each of several files
    bool listPorts = false;
};

std::atomic<bool> sStop{false};
static_assert(std::atomic<bool>::is_always_lock_free);

void onSignal(int)
{
    sStop.store(true);
}

void stopOnSignals()
{
    struct sigaction action
    {
    };

    action.sa_handler = &onSignal;
    ::sigaction(SIGINT, &action, nullptr);
    ::sigaction(SIGTERM, &action, nullptr);
    std::signal(SIGPIPE, SIG_IGN); // a reader that goes away is an error to report
}

std::int64_t ticksToPlay(const PlayArguments& arguments, EffectSession& session)
{
    if (arguments.bars > 0)
        return std::int64_t{arguments.bars} * session.time().barLength();
    return arguments.files.size() > 1 ? session.loopLength() : -1;
}

void playFile(const PlayArguments& arguments, const Bundle& bundle, MidiOutput& output,
              const std::string& file)
{
    const PatternFile pattern = readPlayablePattern(file);
    EffectSession session(bundle, pattern, arguments.options, kTicksPerQuarter);
    const bool terminal = ::isatty(STDOUT_FILENO) == 1;
    const double tempo = session.time().Tempo();
    Player player(session, output, sStop);
    player.play(ticksToPlay(arguments, session), [&](int bar, int beat, int repetition) {
        if (terminal || beat == 1)
            std::printf("%s%4d.%d  round %d  %.1f BPM  %s%s", terminal ? "\r" : "", bar, beat,
                        repetition, tempo, file.c_str(), terminal ? " " : "\n");
        std::fflush(stdout);
    });
    if (terminal)
        std::puts("");
}

void play(PlayArguments& arguments)
{
    if (arguments.listPorts) {
        for (const std::string& line : sequencerPorts())
            std::puts(line.c_str());
        return;
    }
    for (std::string& file : arguments.files) {
        file = findPattern(file, arguments.library);
        readPlayablePattern(file); // say what is wrong with the last one before the first one plays
    }
    const Bundle bundle(arguments.options.bundle);
    stopOnSignals();
    const std::unique_ptr<MidiOutput> output =
        arguments.device.empty() ? openSequencer(arguments.port) : openRawDevice(arguments.device);
    for (const std::string& file : arguments.files)
        if (!sStop.load())
            playFile(arguments, bundle, *output, file);
}

} // namespace

void addPlayCommand(CLI::App& app)
{
    auto arguments = std::make_shared<PlayArguments>();
    CLI::App* command =
        app.add_subcommand("play", "Play patterns in real time; Ctrl-C stops with every note off");
    CLI::Option* files = command->add_option("files", arguments->files,
                                             "MIDI files, or Style/Pattern of the library");
    addLibraryOption(*command, arguments->library);
    CLI::Option* port = command->add_option("--port", arguments->port,
                                            "Sequencer port to play to, CLIENT:PORT or a name");
    command
        ->add_option("--device", arguments->device,
                     "Raw MIDI device, pipe or file to play to instead")
        ->excludes(port);
    command
        ->add_option("--bars", arguments->bars,
                     "Bars to play (on and on; several files: each once through)")
        ->check(CLI::Range(1, 1'000'000));
    command->add_flag("--list-ports", arguments->listPorts, "Name the sequencer's ports");
    addPlayOptions(*command, arguments->options);
    command->callback([arguments, files] {
        if (files->empty() && !arguments->listPorts)
            throw CLI::RequiredError("files");
        play(*arguments);
    });
}
