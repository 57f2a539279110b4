#include "host/vst3/MidiBufferSink.h"

#include <limits>

namespace {

/// What a buffer keeps beside a message: its frame and its length.
constexpr int kHeader = sizeof(std::int32_t) + sizeof(std::uint16_t);

} // namespace

void MidiBufferSink::prepare()
{
    mMessages.ensureSize(kBytes);
    mSpare.ensureSize(kBytes);
    mSpareUsed = false;
    clear();
}

void MidiBufferSink::clear()
{
    mMessages.clear();
    mCount = 0;
}

bool MidiBufferSink::send(std::uint32_t frame, std::span<const std::uint8_t> message)
{
    const auto size = static_cast<int>(message.size());
    if (mCount == kMostEvents || message.size() > std::numeric_limits<std::uint16_t>::max() ||
        mMessages.data.size() + kHeader + size > kBytes)
        return false;
    ++mCount;
    return mMessages.addEvent(message.data(), size, static_cast<int>(frame));
}

void MidiBufferSink::swapInto(juce::MidiBuffer& buffer)
{
    buffer.swapWith(mMessages);
    if (mSpareUsed)
        return;
    mMessages.swapWith(mSpare);
    mSpareUsed = true;
}
