/// A transport that runs: plays an effect in real time from tick 0 on, as a host does.
#pragma once
#include "effect/MidiEffect.h"
#include "host/cli/HostContext.h"

#include <atomic>
#include <thread>

/// The effect and the context outlive it. Thread: made and destroyed on one; the effect is played
/// on a thread of its own meanwhile.
class RunningTransport
{
public:
    RunningTransport(Korvanel::MidiEffect& effect, HostContext& time);
    RunningTransport(const RunningTransport&) = delete;
    RunningTransport& operator=(const RunningTransport&) = delete;
    ~RunningTransport(); ///< stops at the end of the slice that is playing

private:
    void run();

    Korvanel::MidiEffect& mEffect;
    HostContext& mTime;
    std::atomic<bool> mStop{false};
    std::thread mThread; // last: it uses the rest
};
