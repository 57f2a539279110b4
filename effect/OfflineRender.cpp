// The pattern rendered through the engine into a MIDI file.
#include "effect/CLooper.h"
#include "midi/MfxMaps.h"
#include "midi/TickMath.h"

#include <algorithm>

using Korvanel::CMidiTrack;
using Korvanel::floorDivide;
using Korvanel::ScopedLock;
using Korvanel::storeTicks;
using Korvanel::toTicks;

namespace {

constexpr std::int32_t kBeatsPerBar = 4;

/// Collects the engine's output in a track; its bars are of four quarters.
class OfflineProcessContext : public ProcessContext
{
public:
    explicit OfflineProcessContext(const CMidiTrack& pattern)
    {
        ppq = pattern.ticksPerQuarter;
        output.copyFrame(pattern);
    }

    void outputEvent(MfxEvent& event) override { output.insert(event); }

    std::int32_t convertMbtToTicks(int bar, int beat, int tick) const override
    {
        return toTicks((std::int64_t{bar} * kBeatsPerBar + beat) * ppq + tick);
    }

    void convertTicksToMbt(std::int32_t at, int* bar, int* beat, int* tick) const override
    {
        const std::int64_t quarters = floorDivide(at, std::max(ppq, 1));
        const std::int64_t bars = floorDivide(quarters, kBeatsPerBar);
        storeTicks(bar, bars);
        storeTicks(beat, quarters - kBeatsPerBar * bars);
        storeTicks(tick, at - quarters * ppq);
    }

    CMidiTrack output;
};

void clipNotes(CMidiTrack& track, std::int64_t total)
{
    for (MfxEvent& event : track.events) {
        if (!event.isNote())
            continue;
        const auto limit = static_cast<std::uint32_t>(total - event.time - 1);
        if (event.duration > limit)
            event.duration = limit;
    }
}

} // namespace

void CLooper::SaveTrack(Korvanel::OutputStream& stream, int repeat)
{
    save_track(stream, repeat, nullptr, nullptr, nullptr);
}

void CLooper::save_track(Korvanel::OutputStream& stream, int repeat, IMfxMeterMap* meterMap,
                         IMfxTempoMap* tempoMap, IMfxKeySigMap* keySigMap)
{
    CMidiTrack pattern;
    {
        const ScopedLock edit(mEdit);
        pattern = mPlayTrack;
        pattern.copyNames(mSourceTrack);
    }
    OfflineProcessContext context(pattern);
    // The tempo type does not count here: at half tempo the file holds half as many repetitions, at
    // double tempo twice as many. What is dragged out always fills the same bars.
    const std::int64_t total = toTicks(pattern.barsLength() * repeat);
    Korvanel::CriticalSection privateLock;
    Korvanel::Looper looper(pattern, privateLock, context, &mParams);
    looper.TempoType(tempoType());
    looper.process(0, toTicks(total - 1), context, 0);

    clipNotes(context.output, total);
    context.output.copyNames(pattern);
    context.output.Save(stream, meterMap, tempoMap, keySigMap);
}

void CLooper::save_track(Korvanel::OutputStream& stream) const
{
    CMidiTrack pattern;
    {
        const ScopedLock edit(mEdit);
        pattern = mSourceTrack;
    }
    pattern.Save(stream);
}
