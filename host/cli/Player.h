/// Plays one pattern in real time until it is over or somebody stops it.
#pragma once
#include "host/cli/EffectSession.h"
#include "host/cli/MidiOutput.h"
#include "host/cli/NoteTracker.h"

#include <atomic>
#include <cstdint>
#include <functional>
#include <set>

class Player
{
public:
    /// Called at each beat with the position, counted from 1, and the pattern's repetition, counted
    /// from 1.
    using ShowBeat = std::function<void(int bar, int beat, int repetition)>;

    /// Both outlive the player. @param stop  set from anywhere, a signal handler included
    Player(EffectSession& session, MidiOutput& output, const std::atomic<bool>& stop);

    /// Plays host ticks 0..ticks-1, or on and on for a negative number. Every note is off when it
    /// returns or throws.
    void play(std::int64_t ticks, const ShowBeat& showBeat);

private:
    void playSlice(std::int32_t from, std::int32_t to);
    bool waitUntil(std::int64_t tick) const;
    void send(const NoteTracker::Out& messages);
    void silence(std::int32_t tick);

    EffectSession& mSession;
    MidiOutput& mOutput;
    const std::atomic<bool>& mStop;
    NoteTracker mNotes;
    std::set<std::uint8_t> mChannels; ///< that have sounded
    std::int64_t mStartNs = 0;
    double mNsPerTick = 0;
};
