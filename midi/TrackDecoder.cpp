#include "midi/TrackDecoder.h"

#include "midi/TickMath.h"

#include <algorithm>
#include <cstring>
#include <string>
#include <utility>

namespace Korvanel {

namespace {

constexpr unsigned kTrackName = 3;
constexpr unsigned kLyric = 5;
constexpr unsigned kTrackEnd = 0x2F;
constexpr unsigned kSetTempo = 0x51;
constexpr unsigned kTimeSignature = 0x58;

/// A record needs two events of three or four bytes when it is a note. Fewer bytes a record are
/// possible and make the list grow; more are the rule.
constexpr std::size_t kBytesPerRecord = 6;

inline std::uint32_t readNumber(const unsigned char*& at)
{
    std::uint32_t value = *at++;
    if (value < 0x80)
        return value;
    value &= 0x7F;
    unsigned char byte = 0;
    do {
        byte = *at++;
        value = value << 7 | (byte & 0x7Fu);
    } while (byte >= 0x80);
    return value;
}

} // namespace

TrackDecoder::TrackDecoder(const _track& block, std::vector<MfxEvent>& events, OwnedText& name,
                           OwnedText& subName)
    : mAt(block.data)
    , mEnd(block.data + block.length)
    , mEvents(events)
    , mName(name)
    , mSubName(subName)
{
    mEvents.reserve(mEvents.size() + block.length / kBytesPerRecord + 1);
}

void TrackDecoder::decode()
{
    unsigned running = 0;
    while (mAt < mEnd) {
        mTick = toTicks(std::int64_t{mTick} + readNumber(mAt));
        if (*mAt >= 0x80)
            running = *mAt++;
        decodeMessage(running);
    }
    if (mOpenNotes == 0)
        return;
    for (std::size_t channel = 0; channel < kChannels; ++channel)
        if ((mChannelsSeen >> channel & 1) != 0)
            leaveOpen(mTails[channel].data(), kKeys);
    leaveOpen(mHighTails.data(), mHighTails.size());
}

inline void TrackDecoder::decodeMessage(unsigned status)
{
    const unsigned channel = status & 0x0F;
    MfxEvent event{};
    switch (status >> 4) {
    case 0x9:
        if (mAt[1] != 0)
            openNote(channel, mAt[0], mAt[1]);
        else
            closeNote(channel, mAt[0]);
        mAt += 2;
        return;
    case 0x8:
        closeNote(channel, mAt[0]);
        mAt += 2;
        return;
    case 0xC: // sounds are the host's: never in a pattern
        ++mAt;
        return;
    case 0xA:
        event.type = MfxEvent::KeyAftertouch;
        event.key = mAt[0];
        event.amount = mAt[1];
        mAt += 2;
        break;
    case 0xB:
        event.type = MfxEvent::Controller;
        event.key = mAt[0];
        event.velocity = mAt[1];
        mAt += 2;
        break;
    case 0xD:
        event.type = MfxEvent::ChannelAftertouch;
        event.amount = mAt[0];
        ++mAt;
        break;
    case 0xE:
        event.type = MfxEvent::Wheel;
        event.setWheel(static_cast<std::int16_t>(mAt[1] * 128 + mAt[0] - MfxEvent::kWheelCentre));
        mAt += 2;
        break;
    default:
        if (status == 0xFF)
            decodeMeta();
        else if (status == 0xF0)
            skip(readNumber(mAt));
        return;
    }
    event.channel = static_cast<std::uint8_t>(channel);
    append(event);
}

void TrackDecoder::decodeMeta()
{
    // A meter on a running status is none, as for get_meter. Behind a delta stands no such byte.
    const bool ownStatus = mAt[-1] == 0xFF;
    const unsigned type = *mAt++;
    const std::uint32_t length = *mAt++;
    if (type == kTrackName || type == kLyric)
        setName(length);
    else if (type == kTrackEnd)
        mEnded = true;
    else if (type == kSetTempo && !mEnded && !mTempo)
        mTempo = static_cast<std::uint32_t>(mAt[0] << 16 | mAt[1] << 8 | mAt[2]);
    else if (type == kTimeSignature && ownStatus && !mEnded && !mMeter)
        mMeter = Meter{mAt[0], mAt[1]};
    skip(length);
}

void TrackDecoder::setName(std::uint32_t length)
{
    const std::size_t left = mAt < mEnd ? static_cast<std::size_t>(mEnd - mAt) : 0;
    std::string text(reinterpret_cast<const char*>(mAt), std::min<std::size_t>(length, left));
    text.resize(std::strlen(text.c_str()));
    const std::size_t slash = text.find('/');
    mSubName = slash == std::string::npos ? nullptr : text.c_str() + slash + 1;
    text.resize(std::min(slash, text.size()));
    mName = text.c_str();
}

void TrackDecoder::skip(std::uint32_t count)
{
    const std::size_t left = mAt < mEnd ? static_cast<std::size_t>(mEnd - mAt) : 0;
    mAt += std::min<std::size_t>(count, left);
}

inline std::uint32_t& TrackDecoder::tailOf(unsigned channel, unsigned key)
{
    if (key >= kKeys) {
        mHighTails.resize(kChannels * kKeys);
        return mHighTails[channel * kKeys + key - kKeys];
    }
    if ((mChannelsSeen >> channel & 1) == 0) {
        mChannelsSeen |= 1u << channel;
        mTails[channel].fill(0);
    }
    return mTails[channel][key];
}

inline void TrackDecoder::openNote(unsigned channel, unsigned key, unsigned velocity)
{
    std::uint32_t& tail = tailOf(channel, key);
    const auto index = static_cast<std::uint32_t>(mEvents.size()) + 1;
    MfxEvent event{};
    event.channel = static_cast<std::uint8_t>(channel);
    event.key = static_cast<std::uint8_t>(key);
    event.velocity = static_cast<std::uint8_t>(velocity);
    event.duration = index;
    if (tail == 0) {
        tail = index;
    } else {
        MfxEvent& newest = mEvents[(tail & ~kSeveral) - 1];
        event.duration = newest.duration;
        newest.duration = index;
        tail = index | kSeveral;
    }
    ++mOpenNotes;
    if (key < kKeys)
        mKeyPresent[key] = 1;
    mLastNoteEnd = mTick;
    append(event);
}

inline void TrackDecoder::closeNote(unsigned channel, unsigned key)
{
    std::uint32_t& tail = tailOf(channel, key);
    if (tail == 0)
        return; // it ends nothing
    MfxEvent& ended =
        mEvents[((tail & kSeveral) == 0 ? std::exchange(tail, 0) : takeOldest(tail)) - 1];
    --mOpenNotes;
    ended.duration = static_cast<std::uint32_t>(mTick - ended.time);
    mLastNoteEnd = mTick;
    mLastEnd = mTick;
}

/// Takes the oldest note out of a ring of several.
std::uint32_t TrackDecoder::takeOldest(std::uint32_t& tail)
{
    const std::uint32_t newestIndex = tail & ~kSeveral;
    MfxEvent& newest = mEvents[newestIndex - 1];
    const std::uint32_t oldestIndex = newest.duration;
    newest.duration = mEvents[oldestIndex - 1].duration;
    if (newest.duration == newestIndex)
        tail = newestIndex;
    return oldestIndex;
}

inline void TrackDecoder::append(const MfxEvent& event)
{
    mEvents.push_back(event);
    mEvents.back().time = mTick;
    mLastEnd = mTick;
}

/// Breaks up the rings of notes that nothing has ended.
void TrackDecoder::leaveOpen(std::uint32_t* tails, std::size_t count)
{
    for (std::size_t i = 0; i < count; ++i) {
        const std::uint32_t newest = tails[i] & ~kSeveral;
        for (std::uint32_t index = newest; index != 0;) {
            const std::uint32_t next = mEvents[index - 1].duration;
            mEvents[index - 1].duration = MfxEvent::kOpen;
            index = next == newest ? 0 : next;
        }
    }
}

} // namespace Korvanel
