// What a cycle costs in a host: ours beside plug-ins that only hand MIDI on. All of them put out
// the same notes, or nothing while the transport stands; that is checked before anything is timed.
#include "bench/hosted/Lv2Rig.h"

#include <benchmark/benchmark.h>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <filesystem>
#include <fstream>
#include <stdexcept>

namespace {

using bench::Cycle;
using bench::Lv2Rig;
using bench::Message;

constexpr const char* kOurs = "https://korvanel.org/lv2/looper";

struct Subject
{
    std::string who;
    const LilvPlugin* plugin; ///< null: the host alone
    int notesPerNote;         ///< that come out
};

/// Our bundle beside a library that holds one pattern.
class OwnBundle
{
public:
    OwnBundle()
    {
        namespace fs = std::filesystem;
        if (::mkdtemp(mPath.data()) == nullptr)
            throw fs::filesystem_error("mkdtemp", mPath, {});
        fs::create_directories(mPath + "/Loops/Test");
        std::ofstream(mPath + "/Loops/Test/a.mid", std::ios::binary) << bench::patternFile();
        fs::copy(KV_LV2_BUNDLE, bundle(), fs::copy_options::recursive);
    }

    OwnBundle(const OwnBundle&) = delete;
    OwnBundle& operator=(const OwnBundle&) = delete;

    ~OwnBundle()
    {
        std::error_code error;
        std::filesystem::remove_all(mPath, error);
    }

    std::string bundle() const { return mPath + "/Looper.lv2/"; }

private:
    std::string mPath = std::filesystem::temp_directory_path() / "kv-bench-XXXXXX";
};

/// Some instances of one plug-in at the start of a song. Ours plays a pattern; the others get its
/// notes.
class Row
{
public:
    Row(bench::Lv2World& world, const Subject& subject, bool rolls, std::uint32_t frames,
        int instances)
        : mFrames(frames)
    {
        const bool ours = subject.who == "ours";
        mCycles = makeCycles(world.urids.feature, frames,
                             rolls && !ours ? bench::patternNotes() : std::vector<Message>());
        for (int i = 0; i < instances && subject.plugin != nullptr; ++i) {
            rigs.push_back(std::make_unique<Lv2Rig>(world, subject.plugin));
            if (ours) {
                rigs.back()->control("velocity_add", 0);
                rigs.back()->control("random_velocity", 0);
            }
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

    /// What the first instance puts out in four bars.
    std::vector<Message> play()
    {
        std::vector<Message> all;
        for (std::size_t cycle = 0; cycle < mCycles.size(); ++cycle) {
            run();
            for (Message message : rigs[0]->output()) {
                message.frame += static_cast<std::int64_t>(cycle) * mFrames;
                all.push_back(message);
            }
        }
        return all;
    }

    std::vector<std::unique_ptr<Lv2Rig>> rigs;

private:
    std::uint32_t mFrames;
    std::vector<Cycle> mCycles;
    std::size_t mNext = 0;
};

/// The host alone, which fills the ports of ours and runs nothing.
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

void check(bench::Lv2World& world, const Subject& subject)
{
    const auto wrong = [&](const char* what) { throw std::runtime_error(subject.who + what); };
    const auto expected = bench::patternNotes();
    for (const std::uint32_t frames : {64U, 512U, 1024U}) {
        if (!Row(world, subject, false, frames, 1).play().empty())
            wrong(" plays while the transport stands");
        const auto played = Row(world, subject, true, frames, 1).play();
        if (played.size() != expected.size() * static_cast<std::size_t>(subject.notesPerNote))
            wrong(" plays another number of notes");
        for (std::size_t i = 0; i < played.size(); ++i) {
            const Message& due = expected[i / static_cast<std::size_t>(subject.notesPerNote)];
            if (played[i].frame != due.frame || played[i].bytes[0] != due.bytes[0])
                wrong(" plays other notes");
        }
    }
}

void add(bench::Lv2World& world, const Subject& subject, bool rolls, std::uint32_t frames,
         int instances)
{
    const std::string name = std::string("host/") + (rolls ? "playing, " : "stopped, ") +
                             std::to_string(frames) + " frames, " + std::to_string(instances) +
                             (instances == 1 ? " instance/" : " instances/") + subject.who;
    benchmark::RegisterBenchmark(
        name.c_str(), [&world, subject, rolls, frames, instances](benchmark::State& state) {
            Row row(world, subject, rolls, frames, instances);
            if (subject.who == "floor")
                fillOnly(state, row, instances);
            else
                cycles(state, row, instances);
        });
}

void addAll(bench::Lv2World& world, const std::vector<Subject>& subjects)
{
    for (const bool rolls : {false, true})
        for (const std::uint32_t frames : {64U, 512U, 1024U})
            for (const int instances : {1, 64})
                for (const Subject& subject : subjects)
                    add(world, subject, rolls, frames, instances);
}

} // namespace

int main(int argc, char** argv)
try {
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
        return 1;
    const OwnBundle own;
    bench::Lv2World world;
    const auto filter = [&](const char* name) {
        return world.load("/usr/lib/lv2/midifilter.lv2/",
                          std::string("http://gareus.org/oss/lv2/midifilter#") + name);
    };
    const LilvPlugin* ours = world.load(own.bundle(), kOurs);
    const std::vector<Subject> subjects{
        {"ours", ours, 1},
        {"floor", ours, 0},
        {"fifths", world.load("/usr/lib/lv2/eg-fifths.lv2/", "http://lv2plug.in/plugins/eg-fifths"),
         2},
        {"passthru", filter("passthru"), 1},
        {"transpose", filter("miditranspose"), 1},
        {"velocity", filter("velocityscale"), 1}};
    for (const Subject& subject : subjects)
        if (subject.who != "floor")
            check(world, subject);
    addAll(world, subjects);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;

} catch (const std::exception& problem) {

    std::fprintf(stderr, "hosted_bench: %s\n", problem.what());
    return 1;
}
