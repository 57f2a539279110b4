#include "host/cli/ShowCommand.h"

#include "host/cli/LibraryFolder.h"
#include "host/cli/PatternFile.h"
#include "host/cli/PianoRoll.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <nlohmann/json.hpp>
#include <set>
#include <sys/ioctl.h>
#include <unistd.h>

namespace {

using Json = nlohmann::ordered_json;

constexpr int kUsualColumns = 80;
constexpr int kFewestColumns = 40;

struct ShowArguments
{
    std::vector<std::string> files;
    std::string library;
    bool json = false;
};

int terminalColumns()
{
    winsize size{};
    int columns = kUsualColumns;
    if (::ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0)
        columns = size.ws_col;
    else if (const char* given = std::getenv("COLUMNS"); given != nullptr && std::atoi(given) > 0)
        columns = std::atoi(given);
    return std::max(columns, kFewestColumns);
}

double tempoOf(const PatternFile& file)
{
    return 60e6 / std::max<std::uint32_t>(file.pattern.tempo, 1);
}

std::set<int> channelsOf(const PatternFile& file)
{
    std::set<int> channels;
    for (const MfxEvent& event : file.pattern.events)
        channels.insert(event.channel + 1);
    return channels;
}

/// A JSON text, valid whatever bytes the name holds.
std::string jsonText(const std::string& text)
{
    return Json(text).dump(-1, ' ', false, Json::error_handler_t::replace);
}

Json describe(const PatternFile& file)
{
    const Korvanel::CMidiTrack& pattern = file.pattern;
    Json keys = Json::array();
    for (int i = 0; i < pattern.keyCount; ++i)
        keys.push_back({{"key", pattern.GetKey(i)}, {"name", noteName(pattern.GetKey(i))}});
    return {{"file", Json::parse(jsonText(file.path))},
            {"name", Json::parse(jsonText(fullName(file.pattern)))},
            {"format", file.format},
            {"tracks", file.tracks},
            {"ticksPerQuarter", pattern.ticksPerQuarter},
            {"numerator", pattern.numerator},
            {"denominator", pattern.denominator},
            {"tempo", tempoOf(file)},
            {"bars", pattern.numberOfBars()},
            {"lengthTicks", std::max(pattern.lastTick, 0)},
            {"notes", pattern.GetLen()},
            {"events", pattern.events.size()},
            {"channels", channelsOf(file)},
            {"keys", keys}};
}

void printWords(const PatternFile& file)
{
    const Korvanel::CMidiTrack& pattern = file.pattern;
    std::printf("%s\n", file.path.c_str());
    if (const std::string name = fullName(file.pattern); !name.empty())
        std::printf("  name    %s\n", name.c_str());
    std::printf("  meter   %d/%d, %d bar%s\n", pattern.numerator, pattern.denominator,
                pattern.numberOfBars(), pattern.numberOfBars() == 1 ? "" : "s");
    std::printf("  tempo   %.1f BPM, %d ticks in a quarter\n", tempoOf(file),
                pattern.ticksPerQuarter);
    if (pattern.keyCount > 0)
        std::printf("  notes   %d on %d key%s, %s to %s\n", pattern.GetLen(), pattern.keyCount,
                    pattern.keyCount == 1 ? "" : "s", noteName(pattern.lowKey).c_str(),
                    noteName(pattern.highKey).c_str());
    else
        std::printf("  notes   none\n");
    std::string channels;
    for (const int channel : channelsOf(file))
        channels += (channels.empty() ? "" : ", ") + std::to_string(channel);
    std::printf("  channel %s\n\n%s", channels.empty() ? "-" : channels.c_str(),
                pattern.keyCount > 0 ? drawPianoRoll(pattern, terminalColumns()).c_str() : "");
}

void show(const ShowArguments& arguments)
{
    Json all = Json::array();
    bool first = true;
    for (const std::string& name : arguments.files) {
        const PatternFile file = readPatternFile(findPattern(name, arguments.library));
        if (arguments.json) {
            all.push_back(describe(file));
            continue;
        }
        if (!std::exchange(first, false))
            std::puts("");
        printWords(file);
    }
    if (arguments.json)
        std::puts((arguments.files.size() == 1 ? all.front() : all).dump(2).c_str());
}

} // namespace

void addShowCommand(CLI::App& app)
{
    auto arguments = std::make_shared<ShowArguments>();
    CLI::App* command = app.add_subcommand("show", "Show what is in a pattern file");
    command->add_option("files", arguments->files, "MIDI files, or Style/Pattern of the library")
        ->required();
    addLibraryOption(*command, arguments->library);
    command->add_flag("--json", arguments->json, "Write JSON for programs");
    command->callback([arguments] { show(*arguments); });
}
