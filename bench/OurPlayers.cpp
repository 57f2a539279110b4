#include "bench/OurPlayers.h"

#include "bench/Inputs.h"

namespace bench {

Korvanel::CMidiTrack makeTrack(const std::vector<MfxEvent>& events)
{
    Korvanel::CMidiTrack track;
    track.ticksPerQuarter = kPatternPpq;
    track.events = events;
    track.updateKeysStat();
    return track;
}

EnginePlayer::EnginePlayer(const std::vector<MfxEvent>& events, int hostPpq, bool random)
    : mHost(hostPpq)
    , mTrack(makeTrack(events))
    , mLooper(mTrack, mLock, mContext, &mParams)
{
    mParams.veloPlus = kVeloPlus;
    mParams.flags = random ? LooperParameters::RandomVelocity : 0;
}

void EnginePlayer::process(std::int32_t from, std::int32_t to, NoteQueue& queue)
{
    LooperProcessContext context(queue, from);
    mLooper.process(from, to, context, 0);
}

EffectPlayer::EffectPlayer(const std::vector<MfxEvent>& events, int hostPpq, bool random)
    : mHost(hostPpq)
{
    mEffect.Initialize(&mHost);
    mEffect.Enable();
    mEffect.set_track(makeTrack(events));
    mEffect.setVeloPlus(kVeloPlus);
    mEffect.setRandomVelo(random);
}

EffectPlayer::~EffectPlayer()
{
    mEffect.Terminate();
}

void EffectPlayer::process(std::int32_t from, std::int32_t to, NoteQueue& queue)
{
    mEffect.process(from, to, queue);
}

} // namespace bench
