// Slices: what a slice costs when it holds nothing, what each note adds, and what a jump costs,
// however far it goes.
#include "bench/FileSubject.h"
#include "bench/Floor.h"
#include "bench/OurPlayers.h"
#include "bench/peers/PeerPlayers.h"

#include <benchmark/benchmark.h>
#include <random>

namespace bench {

namespace {

constexpr int kHostPpq = 3840;
/// A jump to repetition 1,000,000 of a bar needs coarser ticks to stay on the host's scale.
constexpr int kFarHostPpq = 480;
constexpr std::int32_t kFurthest = 2'000'000'000;

/// Slices that follow each other.
struct March
{
    std::int32_t ticks;
    std::int32_t next = 0;

    std::int32_t start()
    {
        const std::int32_t from = next;
        next = next > kFurthest ? 0 : next + ticks;
        return from;
    }
};

/// Slices at random places of one repetition, none of which goes on where the last one ended. There
/// are so many that the machine cannot learn them.
struct Jumps
{
    std::int32_t ticks = 10;
    std::vector<std::int32_t> starts;
    std::size_t at = 0;

    Jumps(std::int32_t repetition, std::int32_t loopLength)
    {
        constexpr std::size_t kCount = 4096;
        const auto places = static_cast<std::uint32_t>(loopLength / ticks);
        std::mt19937 random(11);
        std::uint32_t place = 0;
        while (starts.size() < kCount) {
            place = (place + 2 + static_cast<std::uint32_t>(random()) % (places - 2)) % places;
            starts.push_back(repetition * loopLength + static_cast<std::int32_t>(place) * ticks);
        }
    }

    std::int32_t start() { return starts[at++ % starts.size()]; }
};

template <typename Player, typename Slices>
void measure(benchmark::State& state, Player& player, Slices slices, int notesPerSlice)
{
    NoteQueue queue;
    for (auto _ : state) {
        queue.clear();
        const std::int32_t from = slices.start();
        player.process(from, from + slices.ticks - 1, queue);
        benchmark::DoNotOptimize(queue.count());
    }
    state.counters["per"] = notesPerSlice; // the summary divides by it
}

using Notes = std::vector<Korvanel::MidiEvent>;

template <typename Player, typename Slices>
Notes collect(Player& player, Slices slices)
{
    Notes notes;
    NoteQueue queue;
    for (int i = 0; i < 3000; ++i) {
        queue.clear();
        const std::int32_t from = slices.start();
        player.process(from, from + slices.ticks - 1, queue);
        for (std::size_t n = 0; n < queue.count(); ++n)
            notes.push_back(queue[n]);
    }
    return notes;
}

enum class Match { Everything, NotVelocities, NotDurations };

bool sameNotes(const Notes& a, const Notes& b, Match match)
{
    return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                      [match](const auto& x, const auto& y) {
                          return x.time == y.time && x.status == y.status && x.data1 == y.data1 &&
                                 (match == Match::NotVelocities || x.data2 == y.data2) &&
                                 (match == Match::NotDurations || x.duration == y.duration);
                      });
}

/// One line of the table: the same slices for each player, with the floor's notes as the measure.
template <typename Slices>
class Line
{
public:
    Line(std::string name, std::vector<MfxEvent> events, int hostPpq, std::int32_t loopLength,
         Slices slices, int notesPerSlice)
        : mName(std::move(name))
        , mEvents(std::move(events))
        , mHostPpq(hostPpq)
        , mLoopLength(loopLength)
        , mSlices(slices)
        , mNotesPerSlice(notesPerSlice)
    {
    }

    std::string addPlain()
    {
        auto& floor = keep<FloorPlayer>(mEvents, ratio(), mLoopLength, false);
        mExpected = collect(floor, mSlices);
        if (mExpected.empty())
            return mName + ": the floor plays nothing";
        add("floor", floor, Match::Everything);
        add("ours", keep<EnginePlayer>(mEvents, mHostPpq, false), Match::Everything);
        add("ours, whole effect", keep<EffectPlayer>(mEvents, mHostPpq, false), Match::Everything);
        add("JUCE", keep<JucePlayer>(mEvents, ratio(), mLoopLength), Match::Everything);
        add("libsmf", keep<LibsmfPlayer>(mEvents, ratio(), mLoopLength), Match::NotDurations);
        return mWrong;
    }

    std::string addRandom()
    {
        auto& floor = keep<FloorPlayer>(mEvents, ratio(), mLoopLength, true);
        mExpected = collect(floor, mSlices);
        add("floor", floor, Match::NotVelocities);
        add("ours", keep<EnginePlayer>(mEvents, mHostPpq, true), Match::NotVelocities);
        add("ours, whole effect", keep<EffectPlayer>(mEvents, mHostPpq, true),
            Match::NotVelocities);
        return mWrong;
    }

private:
    std::int32_t ratio() const { return mHostPpq / kPatternPpq; }

    /// Players live as long as the program: the benchmarks run after registration.
    template <typename Player, typename... Args>
    static Player& keep(const Args&... args)
    {
        static std::vector<std::unique_ptr<Player>> kept;
        return *kept.emplace_back(std::make_unique<Player>(args...));
    }

    template <typename Player>
    void add(const char* who, Player& player, Match match)
    {
        if (!sameNotes(collect(player, mSlices), mExpected, match))
            mWrong += mName + ": " + who + " plays other notes than the floor. ";
        benchmark::RegisterBenchmark(("slice/" + mName + "/" + who).c_str(),
                                     measure<Player, Slices>, std::ref(player), mSlices,
                                     mNotesPerSlice);
    }

    std::string mName;
    std::vector<MfxEvent> mEvents;
    int mHostPpq;
    std::int32_t mLoopLength;
    Slices mSlices;
    int mNotesPerSlice;
    Notes mExpected;
    std::string mWrong;
};

void measureLock(benchmark::State& state)
{
    static Korvanel::CriticalSection lock;
    for (auto _ : state) {
        lock.Enter();
        lock.Leave();
    }
}

std::string addMarches()
{
    constexpr std::int32_t kBar = 4 * kHostPpq;
    constexpr int kSparseBars = 64;
    constexpr int kDenseBars = 4;
    constexpr std::int32_t kBlock = 82; ///< 512 frames at 48 kHz and 120 BPM
    constexpr std::int32_t kNote = kBar / kNotesPerBar;
    const auto dense = makeDensePattern(kDenseBars);
    std::string wrong;
    wrong += Line("empty", makeSparsePattern(kSparseBars), kHostPpq, kSparseBars * kBar,
                  March{kBlock}, 1)
                 .addPlain();
    wrong += Line("one note", dense, kHostPpq, kDenseBars * kBar, March{kNote}, 1).addPlain();
    wrong += Line("each of 64 notes", dense, kHostPpq, kDenseBars * kBar, March{kBar}, kNotesPerBar)
                 .addPlain();
    wrong += Line("each of 64 notes, random", dense, kHostPpq, kDenseBars * kBar, March{kBar},
                  kNotesPerBar)
                 .addRandom();
    return wrong;
}

std::string addJumps()
{
    constexpr std::int32_t kBar = 4 * kFarHostPpq;
    std::string wrong;
    for (const auto& [repetition, name] :
         {std::pair{1, "1"}, {1000, "1,000"}, {1'000'000, "1,000,000"}})
        wrong += Line(std::string("jump to repetition ") + name, makeDensePattern(1), kFarHostPpq,
                      kBar, Jumps(repetition, kBar), 1)
                     .addPlain();
    return wrong;
}

} // namespace

std::string addSliceBenchmarks()
{
    benchmark::RegisterBenchmark("slice/lock/ours", measureLock);
    std::string wrong = addMarches();
    wrong += addJumps();
    return wrong;
}

} // namespace bench
