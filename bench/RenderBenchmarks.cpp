// Rendering a pattern into a file, many bars at once.
#include "bench/FileSubject.h"
#include "bench/Floor.h"
#include "bench/OurPlayers.h"
#include "shared/System/kvMemoryStreams.h"

#include <algorithm>
#include <benchmark/benchmark.h>

namespace bench {

namespace {

constexpr int kBars = 1000;
constexpr int kPatternBars = 4;

/// As a pattern is dragged out of the editor.
class OurRender
{
public:
    OurRender()
    {
        mEffect.set_track(makeTrack(makeDensePattern(kPatternBars)));
        mEffect.setVeloPlus(kVeloPlus);
        mEffect.setRandomVelo(false);
    }

    std::span<const std::uint8_t> render()
    {
        mFile = Korvanel::stringStream();
        mEffect.SaveTrack(mFile, kBars / kPatternBars);
        return {reinterpret_cast<const std::uint8_t*>(mFile.text().data()), mFile.text().size()};
    }

private:
    CLooper mEffect;
    Korvanel::stringStream mFile;
};

/// The floor's slices of a bar, their notes as records, and the floor's file of them.
class FloorRender
{
public:
    std::span<const std::uint8_t> render()
    {
        FloorPlayer player(mPattern, 1, kPatternBars * kPatternBar, false);
        std::size_t count = 0;
        for (std::int32_t bar = 0; bar < kBars; ++bar) {
            mQueue.clear();
            player.process(bar * kPatternBar, (bar + 1) * kPatternBar - 1, mQueue);
            for (std::size_t i = 0; i < mQueue.count(); ++i)
                mRecords[count++] = recordOf(mQueue[i]);
        }
        return {mFile.data(), floorWrite({mRecords.data(), count}, kPatternPpq, mFile.data())};
    }

private:
    static constexpr std::size_t kNotes = std::size_t{kBars} * kNotesPerBar;

    static MfxEvent recordOf(const Korvanel::MidiEvent& event)
    {
        MfxEvent record{};
        record.time = event.time;
        record.channel = static_cast<std::uint8_t>(event.status & 0x0F);
        record.key = event.data1;
        record.velocity = event.data2;
        record.duration = static_cast<std::uint32_t>(event.duration);
        return record;
    }

    std::vector<MfxEvent> mPattern = makeDensePattern(kPatternBars);
    NoteQueue mQueue;
    std::vector<MfxEvent> mRecords = std::vector<MfxEvent>(kNotes);
    Bytes mFile = Bytes(16 * kNotes);
};

template <typename Render>
void measure(benchmark::State& state, Render& render)
{
    for (auto _ : state)
        benchmark::DoNotOptimize(render.render().data());
}

} // namespace

std::string addRenderBenchmarks()
{
    static OurRender ours;
    static FloorRender floor;
    if (!std::ranges::equal(ours.render(), floor.render()))
        return "render: ours and the floor write different bytes";
    benchmark::RegisterBenchmark("render/1,000 bars/ours", measure<OurRender>, std::ref(ours));
    benchmark::RegisterBenchmark("render/1,000 bars/floor", measure<FloorRender>, std::ref(floor));
    return {};
}

} // namespace bench
