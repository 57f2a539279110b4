/// The engine, and the whole effect around it, as players of the slice benchmarks.
#pragma once
#include "bench/NoteQueue.h"
#include "effect/CLooper.h"
#include "effect/Looper.h"
#include "effect/MidiEffect.h"
#include "effect/ProcessContext.h"
#include "midi/CMidiTrack.h"
#include "shared/System/kvCriticalSection.h"

#include <cstdint>
#include <vector>

namespace bench {

/// The null host's world at a resolution of the benchmark's.
class Host : public Korvanel::NullMidiContext
{
public:
    explicit Host(int ppq)
        : mPpq(ppq)
    {
    }

    int QuarterNoteLength() override { return mPpq; }

private:
    int mPpq;
};

Korvanel::CMidiTrack makeTrack(const std::vector<MfxEvent>& events);

/// As the live effect drives it: a queue context for each slice.
class EnginePlayer
{
public:
    EnginePlayer(const std::vector<MfxEvent>& events, int hostPpq, bool random);
    void process(std::int32_t from, std::int32_t to, NoteQueue& queue);

    std::int32_t loopLength() const { return mLooper.loopLength(); }

private:
    Host mHost;
    ProcessContext_for_MidiContext mContext{&mHost};
    Korvanel::CMidiTrack mTrack;
    Korvanel::CriticalSection mLock;
    LooperParameters mParams;
    Korvanel::Looper mLooper;
};

class EffectPlayer
{
public:
    EffectPlayer(const std::vector<MfxEvent>& events, int hostPpq, bool random);
    EffectPlayer(const EffectPlayer&) = delete;
    EffectPlayer& operator=(const EffectPlayer&) = delete;
    ~EffectPlayer();
    void process(std::int32_t from, std::int32_t to, NoteQueue& queue);

private:
    Host mHost;
    CLooper mEffect;
};

} // namespace bench
