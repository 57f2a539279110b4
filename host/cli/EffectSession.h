/// One effect on its way from creation to destruction, with a pattern chosen and its parameters
/// set.
#pragma once
#include "effect/MidiEffect.h"
#include "host/cli/Bundle.h"
#include "host/cli/HostContext.h"
#include "host/cli/HostQueue.h"
#include "host/cli/PatternFile.h"
#include "host/cli/PlayOptions.h"

#include <memory>

/// Enabled and started at tick 0 from construction on; stopped and terminated by destruction.
class EffectSession
{
public:
    /// The bundle outlives the session. Throws CommandError when the plug-in does not take the
    /// pattern.
    EffectSession(const Bundle& bundle, const PatternFile& pattern, const PlayOptions& options,
                  int ticksPerQuarter);
    EffectSession(const EffectSession&) = delete;
    EffectSession& operator=(const EffectSession&) = delete;
    ~EffectSession();

    /// Plays ticks from..to, both included. @return the events of that slice, valid until the next
    const std::vector<Korvanel::MidiEvent>& play(std::int32_t from, std::int32_t to);

    HostContext& time() { return mTime; }

    std::int32_t loopLength() const
    {
        return mLoopLength;
    } ///< host ticks of one repetition as heard

private:
    void choosePattern(const std::string& path);

    HostContext mTime;
    HostQueue mQueue;
    std::unique_ptr<Korvanel::MidiEffect> mEffect;
    std::int32_t mLoopLength;
    std::int32_t mPosition = 0;
};
