#include "midi/TrackEncoder.h"

#include "midi/TickMath.h"

#include <algorithm>
#include <cstring>
#include <string_view>

namespace Korvanel {

namespace {

constexpr std::uint32_t kFirstBlock = 20021;
constexpr std::uint32_t kBlockStep = 1000;
constexpr unsigned kTrackName = 3;
constexpr unsigned kTrackEnd = 0x2F;
constexpr unsigned kSetTempo = 0x51;
constexpr unsigned kTimeSignature = 0x58;
constexpr unsigned kKeySignature = 0x59;
constexpr std::int64_t kMinuteTimesHundred = 6000000000; ///< microseconds
constexpr std::int64_t kSlowestTempo = 0xFFFFFF;         ///< microseconds a quarter, in three bytes
constexpr int kDefaultBpm = 12000;
constexpr std::uint32_t kLargestEvent = 8; ///< a delta of five bytes and three bytes of message
/// Readers of ours take a meta event's length from one byte below 128; a longer name would hide all
/// that follows it.
constexpr std::size_t kLongestName = 127;

std::string_view textOf(const OwnedText& text)
{
    return text.exists() ? std::string_view(text.c_str()) : std::string_view();
}

unsigned clocksPerClick(short denominatorPower)
{
    return denominatorPower < 0 || denominatorPower > 6 ? 0u : 96u >> denominatorPower;
}

} // namespace

TrackEncoder::TrackEncoder(_track& block)
    : mBlock(block)
{
    mf_add_tblk(&mBlock, kFirstBlock);
}

bool TrackEncoder::room(std::uint32_t bytes)
{
    if (mBlock.capacity - mBlock.length >= bytes)
        return true;
    const std::uint64_t doubled = std::uint64_t{mBlock.capacity} * 2 + bytes;
    return doubled <= UINT32_MAX &&
           mf_grow_tblk(&mBlock, static_cast<std::uint32_t>(doubled)) == kMfOk;
}

/// Room for a whole event has been made.
inline void TrackEncoder::putEvent(std::int32_t time, std::uint32_t message, int length)
{
    putDelta(time);
    unsigned char* at = mBlock.data + mBlock.length;
    at[0] = static_cast<unsigned char>(message);
    at[1] = static_cast<unsigned char>(message >> 8);
    at[2] = static_cast<unsigned char>(message >> 16); // overwritten when the message is shorter
    mBlock.length += static_cast<std::uint32_t>(length);
}

inline void TrackEncoder::putDelta(std::int32_t time)
{
    // Time never goes back: what follows an event out of order stays where it is.
    const auto delta =
        static_cast<std::uint32_t>(std::max<std::int64_t>(std::int64_t{time} - mLastTime, 0));
    mLastTime = std::max(mLastTime, time);
    if (delta < 0x80)
        put(delta);
    else
        write_delta(&mBlock, mBlock.length, static_cast<std::int32_t>(delta));
}

void TrackEncoder::putMeta(unsigned type, std::uint32_t length)
{
    put(0xFF);
    put(type);
    put(length);
}

void TrackEncoder::head(int beats, short denominatorPower, int hundredthsBpm, int keySignature)
{
    if (!room(64))
        return;
    put(0);
    putMeta(kTimeSignature, 4);
    put(static_cast<unsigned>(beats));
    put(static_cast<unsigned>(denominatorPower));
    put(clocksPerClick(denominatorPower));
    put(8); // thirty-seconds in a quarter
    put(0);
    putMeta(kKeySignature, 2);
    put(static_cast<unsigned>(keySignature));
    put(0);
    put(0);
    putMeta(kSetTempo, 3);
    const auto tempo = static_cast<std::uint32_t>(std::min(
        kMinuteTimesHundred / (hundredthsBpm > 0 ? hundredthsBpm : kDefaultBpm), kSlowestTempo));
    put(static_cast<unsigned>(tempo >> 16));
    put(static_cast<unsigned>(tempo >> 8));
    put(static_cast<unsigned>(tempo));
}

void TrackEncoder::name(const OwnedText& name, const OwnedText& subName, std::int32_t firstTime)
{
    if (!name.exists() || !room(kLargestEvent + kLongestName))
        return;
    const std::string_view first = textOf(name).substr(0, kLongestName);
    const std::size_t second = subName.exists() ? textOf(subName).size() + 1 : 0;
    const std::size_t declared = std::min(first.size() + second, kLongestName);
    putDelta(firstTime);
    putMeta(kTrackName, static_cast<std::uint32_t>(declared));
    for (const char ch : first)
        put(static_cast<unsigned char>(ch == ' ' || ch == '-' ? '_' : ch));
    for (std::size_t i = first.size(); i < declared; ++i)
        put(0); // the second name's place is kept, its text is not
}

void TrackEncoder::events(const std::vector<MfxEvent>& events)
{
    Pkt pkt{};
    for (const MfxEvent& event : events) {
        if (event.type == MfxEvent::Patch || isMixerController(event) || !pkt.Assign(event))
            continue;
        const std::int32_t time = toTicks(std::max<std::int64_t>(event.time, 0));
        putEndsUpTo(time);
        putMessage(time, pkt);
        if (event.isNote())
            keepEnd(event);
    }
    putEndsUpTo(kLastTick);
}

void TrackEncoder::end()
{
    if (room(4)) {
        put(0);
        putMeta(kTrackEnd, 0);
    }
    // Callers know a block of 20021 bytes that grows by thousands; what was taken beyond that goes
    // back.
    const std::uint32_t over = mBlock.length > kFirstBlock ? mBlock.length - kFirstBlock : 0;
    mf_trim_tblk(&mBlock, kFirstBlock + (over + kBlockStep - 1) / kBlockStep * kBlockStep);
}

inline void TrackEncoder::putMessage(std::int32_t time, const Pkt& pkt)
{
    if (room(kLargestEvent))
        putEvent(time,
                 pkt.status | static_cast<std::uint32_t>(pkt.data1) << 8 |
                     static_cast<std::uint32_t>(pkt.data2) << 16,
                 pkt.Len());
}

inline void TrackEncoder::putOff(const PendingOff& off)
{
    if (room(kLargestEvent))
        putEvent(off.time(), off.message, 3);
}

inline void TrackEncoder::putEndsUpTo(std::int32_t time)
{
    while (!mPending.empty() && mPending.front().time() <= time) {
        putOff(mPending.front());
        std::pop_heap(mPending.begin(), mPending.end());
        mPending.pop_back();
    }
}

/// A note that never ends gets no end: loading the file gives the open note again.
inline void TrackEncoder::keepEnd(const MfxEvent& note)
{
    if (note.duration == MfxEvent::kOpen)
        return;
    const std::int32_t end = toTicks(std::max<std::int64_t>(note.time, 0) + note.duration);
    const std::uint32_t newerFirst = UINT32_MAX - mNotes++;
    const std::uint32_t message = 0x80u | note.channel | static_cast<std::uint32_t>(note.key) << 8 |
                                  static_cast<std::uint32_t>(note.velocity) << 16;
    mPending.push_back(
        {std::uint64_t{static_cast<std::uint32_t>(end)} << 32 | newerFirst, message});
    std::push_heap(mPending.begin(), mPending.end());
}

} // namespace Korvanel
