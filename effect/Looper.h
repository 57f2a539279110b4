/// Plays one pattern endlessly in host time: maps slices of host ticks to the pattern's repetitions
/// and hands each event to a ProcessContext. The live effect and the exporter both drive one.
#pragma once
#include "effect/RandomSource.h"
#include "midi/MfxEvent.h"
#include "midi/TickMath.h"
#include "shared/System/kvContracts.h"
#include "shared/System/kvCriticalSection.h"

#include <atomic>
#include <cstddef>
#include <cstdint>

class ProcessContext;

/// Owned by the effect. The editor writes and the processing thread reads on every note; a note may
/// see one value before another that was set with it, which nobody hears.
struct LooperParameters
{
    enum Flag : std::uint8_t { PitchWheel = 1, VelocityController = 2, RandomVelocity = 4 };

    static constexpr std::int32_t kVeloPlus = -10;
    static constexpr std::int32_t kRandomVeloMin = -15;
    static constexpr std::int32_t kRandomVeloMax = 10;
    static constexpr std::int32_t kRandomVeloStrength = 100;
    static constexpr std::uint8_t kFlags = RandomVelocity;

    std::atomic<std::int32_t> veloPlus{kVeloPlus}; ///< added to every velocity
    std::atomic<std::int32_t> randomVeloMin{
        kRandomVeloMin}; ///< the largest step down, a negative number
    std::atomic<std::int32_t> randomVeloMax{kRandomVeloMax}; ///< the largest step up
    std::atomic<std::int32_t> randomVeloStrength{
        kRandomVeloStrength}; ///< percent of the random step
    std::atomic<std::uint8_t> flags{kFlags};
};

static_assert(std::atomic<std::int32_t>::is_always_lock_free);

namespace Korvanel {

class CMidiTrack;

/// Host ticks of pattern ticks, for one state of track, context and tempo type.
class TickRate
{
public:
    /// @param tempoType  below 1 half tempo, 1 as written, above 1 double tempo
    TickRate(std::int32_t trackPpq, std::int32_t hostPpq, std::int32_t tempoType);

    /// Rounded towards zero; stops at the ends of the 32-bit scale.
    std::int32_t hostTicks(std::int32_t patternTicks) const
    {
        const std::int64_t ticks = mFactor != 0 ? patternTicks * mFactor : divided(patternTicks);
        if (mTempoType == 1)
            return toTicks(ticks);
        return toTicks(mTempoType < 1 ? ticks * 2 : ticks / 2);
    }

private:
    std::int64_t divided(std::int32_t patternTicks) const;

    std::int64_t mFactor; ///< host ticks of one pattern tick where that is a whole number, else 0
    std::int32_t mHostPpq;
    std::int32_t mTrackPpq;
    std::int32_t mTempoType;
    bool mExactInDouble;
};

/// Ticks are the host's unless a name says otherwise. process and TempoType take the lock; the rest
/// is called with it held or on the processing thread.
class Looper
{
public:
    /// Ticks that a pattern without a length counts as, so that no scan stalls on it.
    static constexpr std::int32_t kLengthOfNothing = 100;

    /// The track, the lock, the context and the parameters outlive the looper.
    /// @param lock    guards the track and this looper
    /// @param params  null leaves velocities as written
    Looper(CMidiTrack& track, CriticalSection& lock, ProcessContext& context,
           LooperParameters* params);

    /// Plays ticks from..to, both included, into `ctx`; repetition 0 starts at `base`. A slice that
    /// goes on where the last one ended costs what it plays; any other is found at once, however
    /// far away. [audio thread] Allocates nothing. An exception of the context passes through.
    void process(std::int32_t from, std::int32_t to, ProcessContext& ctx, std::int32_t base)
        KV_EXCLUDES(mLock);

    std::int32_t ticksFor(std::int32_t patternTicks) const;
    std::int32_t loopLength() const; ///< ticks of one repetition, at least 1
    void nextLoop();                 ///< to the next repetition
    void reset();                    ///< to repetition 0
    void setLoop(std::int32_t);      ///< to repetition 0, whatever the argument
    void TempoType(int type) KV_EXCLUDES(mLock);

    /// @param value  wheel position less 8192  @return true
    bool processPitchWheel(std::int32_t time, int value);

    void setVeloAdd(int shift) { mVeloAdd = shift; }

    static bool isOutputEvent(const MfxEvent& event); ///< whether the host may hear it at all
    void applyParamsToNote(MfxEvent& note);           ///< needs parameters

    /// Makes the random velocities a known sequence.
    void seedRandom(std::uint32_t seed) { mRandom.seed(seed); }

    /// Where the next contiguous slice starts; -1 before the first. [any thread]
    std::int32_t nextFrom() const { return mNextFrom.load(std::memory_order_relaxed); }

private:
    TickRate rate() const;
    std::int32_t loopLength(const TickRate& rate) const;
    void seek(std::int64_t from, const TickRate& rate);
    void play(std::int32_t from, std::int32_t to, ProcessContext& ctx, const TickRate& rate);
    void emit(const MfxEvent& event, std::int32_t time, ProcessContext& ctx, const TickRate& rate);
    int randomStep(const LooperParameters& params);

    CMidiTrack& mTrack;
    CriticalSection& mLock;
    ProcessContext& mContext;
    std::size_t mCursor = 0;
    bool mRewound = true; ///< at repetition 0, which may lie far behind the slice that comes next
    std::int64_t mLoopOffset = 0; ///< from the base to the current repetition
    std::atomic<std::int32_t> mNextFrom{
        -1}; ///< the editor's cursor reads it; a stale one is a frame old
    std::int32_t mBase = 0;
    LooperParameters* mParams;
    std::int32_t mWheelShift = 0;
    std::int32_t mVeloAdd = 0;
    std::int32_t mTempoType = 1;
    RandomSource mRandom;
};

} // namespace Korvanel
