#include "host/cli/Player.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <ctime>
#include <limits>

namespace {

constexpr std::int64_t kNsPerSecond = 1'000'000'000;
constexpr std::uint8_t kAllNotesOff = 123;

std::int64_t nowNs()
{
    timespec now{};
    ::clock_gettime(CLOCK_MONOTONIC, &now);
    return now.tv_sec * kNsPerSecond + now.tv_nsec;
}

} // namespace

Player::Player(EffectSession& session, MidiOutput& output, const std::atomic<bool>& stop)
    : mSession(session)
    , mOutput(output)
    , mStop(stop)
{
    HostContext& time = session.time();
    mNsPerTick = 60.0 * kNsPerSecond / time.Tempo() / time.QuarterNoteLength();
}

void Player::play(std::int64_t ticks, const ShowBeat& showBeat)
{
    const std::int64_t end = ticks < 0 ? std::numeric_limits<std::int32_t>::max() : ticks;
    const std::int32_t beat = std::max(mSession.time().beatLength(), 1);
    const std::int32_t slice =
        std::max(beat / 16, 1); // what is played next is asked for that early
    mStartNs = nowNs();
    std::int64_t at = 0;
    try {
        while (at < end && waitUntil(at)) {
            if (at % beat == 0) {
                int bar = 0;
                int inBar = 0;
                mSession.time().GetBar(static_cast<std::int32_t>(at), &bar, &inBar, nullptr);
                showBeat(bar + 1, inBar + 1,
                         static_cast<int>(at / std::max(mSession.loopLength(), 1)) + 1);
            }
            const std::int64_t next = std::min({at + slice, at - at % beat + beat, end});
            playSlice(static_cast<std::int32_t>(at), static_cast<std::int32_t>(next - 1));
            at = next;
        }
        waitUntil(at);
    } catch (...) {
        silence(static_cast<std::int32_t>(at));
        throw;
    }
    silence(static_cast<std::int32_t>(at));
}

void Player::playSlice(std::int32_t from, std::int32_t to)
{
    NoteTracker::Out messages;
    mNotes.play(mSession.play(from, to), to + 1, messages);
    send(messages);
}

/// @return false when somebody has stopped us
bool Player::waitUntil(std::int64_t tick) const
{
    const std::int64_t at =
        mStartNs + static_cast<std::int64_t>(static_cast<double>(tick) * mNsPerTick);
    const timespec deadline{at / kNsPerSecond, at % kNsPerSecond};
    while (!mStop.load() &&
           ::clock_nanosleep(CLOCK_MONOTONIC, TIMER_ABSTIME, &deadline, nullptr) == EINTR) {
    }
    return !mStop.load();
}

void Player::send(const NoteTracker::Out& messages)
{
    for (const TimedMessage& message : messages) {
        waitUntil(message.time);
        mChannels.insert(message.bytes[0] & 0x0F);
        mOutput.send({message.bytes.data(), message.length});
    }
}

void Player::silence(std::int32_t tick)
{
    NoteTracker::Out ends;
    mNotes.stop(tick, ends);
    for (const TimedMessage& end : ends)
        mOutput.send({end.bytes.data(), end.length});
    for (const std::uint8_t channel : mChannels) {
        const std::array<std::uint8_t, 3> off{static_cast<std::uint8_t>(0xB0 | channel),
                                              kAllNotesOff, 0};
        mOutput.send(off);
    }
}
