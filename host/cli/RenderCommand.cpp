#include "host/cli/RenderCommand.h"

#include "host/cli/Bundle.h"
#include "host/cli/CommandError.h"
#include "host/cli/EffectSession.h"
#include "host/cli/LibraryFolder.h"
#include "host/cli/SafeFile.h"
#include "midi/MfxMaps.h"
#include "midi/Pkt.h"
#include "shared/System/kvStream.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <bit>
#include <cmath>
#include <filesystem>

namespace {

struct RenderArguments
{
    std::string file;
    std::string library;
    std::string output;
    int repeat = 1;
    PlayOptions options;
};

class FixedMeter : public IMfxMeterMap
{
public:
    explicit FixedMeter(Meter meter)
        : mMeter(meter)
    {
    }

    void GetMeter(std::int32_t, std::int32_t* numerator,
                  std::int32_t* denominatorPower) const override
    {
        *numerator = mMeter.numerator;
        *denominatorPower = std::countr_zero(static_cast<unsigned>(mMeter.denominator));
    }

private:
    Meter mMeter;
};

class FixedTempo : public IMfxTempoMap
{
public:
    explicit FixedTempo(double tempo)
        : mHundredths(static_cast<std::int32_t>(std::lround(tempo * 100)))
    {
    }

    std::int32_t GetTempo(std::int32_t) const override { return mHundredths; }

private:
    std::int32_t mHundredths;
};

/// The pattern's own resolution keeps its times exact; double tempo halves them, so it needs twice
/// as fine a one.
int renderResolution(const PatternFile& pattern, int tempoType)
{
    const int own = pattern.pattern.ticksPerQuarter;
    return tempoType == 2 && own <= 0x7FFF / 2 ? own * 2 : own;
}

MfxEvent toRecord(const Korvanel::MidiEvent& event, std::int64_t end)
{
    const Korvanel::Pkt packet{event.status, event.data1, event.data2};
    MfxEvent record = packet;
    record.time = event.time;
    if (record.isNote()) {
        const std::int64_t left =
            end - event.time; // no note rings past the file's end, an endless one least of all
        record.duration = static_cast<std::uint32_t>(
            event.duration < 0 ? left : std::min<std::int64_t>(event.duration, left));
    }
    return record;
}

Korvanel::CMidiTrack renderTrack(EffectSession& session, const PatternFile& pattern, int repeat)
{
    const std::int64_t end = std::int64_t{session.loopLength()} * repeat;
    if (end > std::numeric_limits<std::int32_t>::max())
        throw CommandError(ExitCode::Usage,
                           "--repeat: so many rounds are more than a MIDI file can hold");
    Korvanel::CMidiTrack track;
    track.ticksPerQuarter = session.time().QuarterNoteLength();
    track.name = fullName(pattern.pattern).c_str();
    const std::int32_t slice = std::max(session.time().beatLength() / 16, 1);
    for (std::int64_t from = 0; from < end; from += slice) {
        const std::int64_t to = std::min(from + slice, end) - 1;
        for (const Korvanel::MidiEvent& event :
             session.play(static_cast<std::int32_t>(from), static_cast<std::int32_t>(to)))
            track.insert(toRecord(event, end));
    }
    return track;
}

void render(const RenderArguments& arguments)
{
    const std::string file = findPattern(arguments.file, arguments.library);
    std::error_code error;
    if (std::filesystem::equivalent(file, arguments.output, error))
        throw CommandError(ExitCode::CannotWrite, arguments.output + ": is the pattern itself");
    const PatternFile pattern = readPlayablePattern(file);
    const Bundle bundle(arguments.options.bundle);
    EffectSession session(bundle, pattern, arguments.options,
                          renderResolution(pattern, arguments.options.tempoType));
    const Korvanel::CMidiTrack track = renderTrack(session, pattern, arguments.repeat);

    FixedMeter meter(arguments.options.meterOf(pattern.pattern));
    FixedTempo tempo(session.time().Tempo());
    Korvanel::stringStream bytes;
    track.Save(bytes, &meter, &tempo, nullptr);
    writeWhole(arguments.output, bytes.text());
}

} // namespace

void addRenderCommand(CLI::App& app)
{
    auto arguments = std::make_shared<RenderArguments>();
    CLI::App* command =
        app.add_subcommand("render", "Play a pattern through the plug-in into a MIDI file");
    command->add_option("file", arguments->file, "MIDI file, or Style/Pattern of the library")
        ->required();
    command->add_option("-o,--output", arguments->output, "File to write; - for standard output")
        ->required();
    command->add_option("--repeat", arguments->repeat, "How many times round, as heard (1)")
        ->check(CLI::Range(1, 1'000'000));
    addLibraryOption(*command, arguments->library);
    addPlayOptions(*command, arguments->options);
    command->callback([arguments] { render(*arguments); });
}
