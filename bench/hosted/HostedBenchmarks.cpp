// What a cycle costs in a host: ours beside a step sequencer and plug-ins that only hand MIDI on.
// All of them put out notes at the same times, or nothing while the transport stands; that is
// checked before anything is timed.
#include "bench/hosted/Lv2Rig.h"
#include "bench/hosted/OwnBundle.h"

#include <algorithm>
#include <benchmark/benchmark.h>
#include <cstdio>
#include <exception>
#include <stdexcept>
#include <utility>

namespace {

using bench::Cycle;
using bench::Lv2Rig;
using bench::Message;

constexpr std::uint32_t kCycleLengths[] = {64, 512, 1024};

struct Subject
{
    std::string who;
    const LilvPlugin* plugin;
    bool plays;       ///< by itself; the others get the notes
    int notesPerNote; ///< that come out
    std::vector<std::pair<std::string, float>> controls;
};

/// Some instances of one plug-in at the start of a song.
class Row
{
public:
    Row(bench::Lv2World& world, const Subject& subject, bool rolls, std::uint32_t frames,
        int instances)
        : mFrames(frames)
    {
        mCycles =
            makeCycles(world.urids.feature, frames,
                       rolls && !subject.plays ? bench::patternNotes() : std::vector<Message>());
        for (int i = 0; i < instances; ++i) {
            rigs.push_back(std::make_unique<Lv2Rig>(world, subject.plugin));
            for (const auto& [symbol, value] : subject.controls)
                rigs.back()->control(symbol.c_str(), value);
            rigs.back()->run(bench::makeStart(world.urids.feature, rolls), 0);
        }
    }

    /// One cycle of all instances.
    void run()
    {
        const Cycle& in = mCycles[mNext];
        mNext = mNext + 1 == mCycles.size() ? 0 : mNext + 1;
        for (const auto& rig : rigs)
            rig->run(in, mFrames);
    }

    /// The frames of the note-ons that the first instance puts out in four bars.
    std::vector<std::int64_t> play()
    {
        std::vector<std::int64_t> all;
        for (std::size_t cycle = 0; cycle < mCycles.size(); ++cycle) {
            run();
            for (const Message& message : rigs[0]->output())
                if (message.bytes[0] == 0x90)
                    all.push_back(static_cast<std::int64_t>(cycle) * mFrames + message.frame);
        }
        return all;
    }

    std::vector<std::unique_ptr<Lv2Rig>> rigs;

private:
    std::uint32_t mFrames;
    std::vector<Cycle> mCycles;
    std::size_t mNext = 0;
};

/// The host alone, which fills the ports and runs nothing.
void fillOnly(benchmark::State& state, Row& row, int instances)
{
    const Cycle empty(std::vector<std::uint64_t>(2));
    for (auto _ : state)
        for (const auto& rig : row.rigs)
            rig->fill(empty);
    state.counters["per"] = instances;
}

void cycles(benchmark::State& state, Row& row, int instances)
{
    for (auto _ : state)
        row.run();
    state.counters["per"] = instances; // the summary divides by it
}

/// Throws std::runtime_error where a subject does other work than the others.
void check(bench::Lv2World& world, const Subject& subject)
{
    std::vector<std::int64_t> due;
    for (const Message& message : bench::patternNotes())
        if (message.bytes[0] == 0x90)
            due.insert(due.end(), static_cast<std::size_t>(subject.notesPerNote), message.frame);
    for (const std::uint32_t frames : kCycleLengths) {
        if (!Row(world, subject, false, frames, 1).play().empty())
            throw std::runtime_error(subject.who + " plays while the transport stands");
        auto played = Row(world, subject, true, frames, 1).play();
        if (!played.empty() && played.back() == bench::kPeriodFrames - 1)
            played.pop_back(); // the next one, a frame early: the sequencer rounds
        const auto near = [](std::int64_t a, std::int64_t b) { return std::abs(a - b) <= 1; };
        if (!std::equal(played.begin(), played.end(), due.begin(), due.end(), near))
            throw std::runtime_error(subject.who + " plays other notes");
    }
}

void add(bench::Lv2World& world, const Subject& subject, bool rolls, std::uint32_t frames,
         int instances, void (*measure)(benchmark::State&, Row&, int), const std::string& who)
{
    const std::string name = std::string("host/") + (rolls ? "playing, " : "stopped, ") +
                             std::to_string(frames) + " frames, " + std::to_string(instances) +
                             (instances == 1 ? " instance/" : " instances/") + who;
    benchmark::RegisterBenchmark(name.c_str(), [=, &world, &subject](benchmark::State& state) {
        Row row(world, subject, rolls, frames, instances);
        measure(state, row, instances);
    });
}

void addAll(bench::Lv2World& world, const std::vector<Subject>& subjects)
{
    for (const bool rolls : {false, true})
        for (const std::uint32_t frames : kCycleLengths)
            for (const int instances : {1, 64}) {
                for (const Subject& subject : subjects)
                    add(world, subject, rolls, frames, instances, &cycles, subject.who);
                add(world, subjects[0], rolls, frames, instances, &fillOnly, "floor");
            }
}

/// Ours first. The others are what Debian has that turns MIDI into MIDI at the least cost, and one
/// that makes notes in step with the transport, as ours does.
std::vector<Subject> allSubjects(bench::Lv2World& world, const std::string& ourBundle)
{
    const std::string folder = "/usr/lib/lv2/";
    const std::string x42 = "http://gareus.org/oss/lv2/";
    std::vector<std::pair<std::string, float>> steps{{"sync", 1}, {"div", 1}};
    for (const char step : {'1', '2', '3', '4', '5', '6', '7', '8'})
        steps.emplace_back(std::string("grid_") + step + '_' + step, 100);
    return {
        {"ours",
         world.load(ourBundle, "https://korvanel.org/lv2/looper"),
         true,
         1,
         {{"velocity_add", 0}, {"random_velocity", 0}}},
        {"stepseq", world.load(folder + "stepseq_s8n8.lv2/", x42 + "stepseq#s8n8"), true, 1, steps},
        {"fifths",
         world.load(folder + "eg-fifths.lv2/", "http://lv2plug.in/plugins/eg-fifths"),
         false,
         2,
         {}},
        {"midimap", world.load(folder + "midimap.lv2/", x42 + "midimap"), false, 1, {}},
        {"passthru",
         world.load(folder + "midifilter.lv2/", x42 + "midifilter#passthru"),
         false,
         1,
         {}}};
}

} // namespace

int main(int argc, char** argv)
try {
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
        return 1;
    const bench::OwnBundle own(KV_LV2_BUNDLE);
    bench::Lv2World world;
    const std::vector<Subject> subjects = allSubjects(world, own.path() + "/");
    for (const Subject& subject : subjects)
        check(world, subject);
    addAll(world, subjects);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;

} catch (const std::exception& problem) {

    std::fprintf(stderr, "hosted_bench: %s\n", problem.what());
    return 1;
}
