/// The host's transport on the bridge's one tick scale: which ticks belong to which frames.
///
/// Positions come at some frames and hold until the next one; in between they are extrapolated from
/// one anchor, so that a tick falls on the same frame however time is cut into blocks. A tick
/// belongs to the last frame that is not behind it.
#pragma once
#include "host/bridge/HostPosition.h"

#include <cstdint>

/// Frames are counted from anywhere and never go back. [audio thread]; allocates nothing.
class BridgeTransport
{
public:
    static constexpr int kTicksPerQuarter = 3840;

    enum class Change {
        None,
        Start,
        Stop,
        Loop,  ///< back to an earlier place while playing
        Locate ///< ahead to a later place while playing
    };

    /// Ticks from..to, both included; empty when to < from.
    struct Slice
    {
        std::int32_t from;
        std::int32_t to;

        bool empty() const { return to < from; }
    };

    /// Stopped at the start of the song, at 120 BPM in 4/4.
    void prepare(double sampleRate);

    void forget() { prepare(mSampleRate); } ///< where the host is

    /// The host's word at a frame, not before any frame that was taken. A position that differs
    /// from where we are by no more than what hosts round away is no change. What makes no sense
    /// (a tempo of 0, a position that is no number) leaves its old value.
    Change report(std::int64_t frame, const HostPosition& position);

    /// The frame before `end` from which the host's loop starts anew; `end` when it does so later.
    std::int64_t nextWrap(std::int64_t end) const
    {
        return playing() && mWraps ? wrapBefore(end) : end;
    }

    /// The ticks up to the loop's end that have not been taken.
    Slice takeToLoopEnd();
    void wrap(std::int64_t frame); ///< goes on at the loop's start

    /// The ticks before frame `end` that have not been taken; empty while stopped.
    Slice take(std::int64_t end);
    /// The frame of a tick among first..last, both included.
    std::int64_t frameOf(std::int64_t tick, std::int64_t first, std::int64_t last) const;
    /// The first tick that is not before a frame.
    std::int64_t tickAt(std::int64_t frame) const;
    /// Where the song is at a frame, as far as we know.
    double quartersAt(std::int64_t frame) const;

    bool playing() const { return mPosition.playing; }

    std::int32_t nextTick() const; ///< the first one that is still to be taken

    const HostPosition& position() const { return mPosition; } ///< as reported last, made sensible

private:
    static HostPosition sensible(const HostPosition& position, const HostPosition& before);

    double quartersPerFrame(double tempo) const { return tempo / 60 / mSampleRate; }

    std::int64_t wrapBefore(std::int64_t end) const;
    bool agrees(std::int64_t frame, const HostPosition& position) const;
    void follow(std::int64_t frame, double ahead, bool sameTempo);
    void moveAnchor(std::int64_t frame, double quarters);
    void jump(std::int64_t frame);
    Slice takeThrough(std::int64_t last);

    double mSampleRate = 48000;
    HostPosition mPosition;
    std::int64_t mAnchorFrame = 0;
    double mAnchorQuarters = 0;
    double mQuartersPerFrame = 0;
    std::int64_t mReportFrame = 0; ///< of the last report or wrap
    std::int64_t mNextTick = 0;
    bool mWraps = false; ///< the loop's end lies ahead
};
