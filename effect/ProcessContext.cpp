#include "effect/ProcessContext.h"

#include "effect/MidiQueue.h"
#include "midi/TickMath.h"

#include <bit>
#include <cstring>

using Korvanel::convertTicks;
using Korvanel::MidiEvent;
using Korvanel::toTicks;

namespace {

/// Put together in two words, as queues copy it: one of single bytes would hold up the copy until
/// all are stored.
/// @param message  status, data 1, data 2 and the extra byte, the status lowest
MidiEvent queueEvent(std::int32_t time, std::uint32_t message, std::uint32_t duration)
{
    static_assert(std::endian::native == std::endian::little);
    const std::uint64_t first = static_cast<std::uint32_t>(time) | std::uint64_t{message} << 32;
    MidiEvent event;
    std::memcpy(&event, &first, sizeof first);
    event.duration = static_cast<std::int32_t>(duration);
    return event;
}

} // namespace

Korvanel::NullMidiContext ProcessContext_for_MidiContext::nullContext;
ProcessContext_for_MidiContext defaultProcessContext;

// ProcessContext ----------------------------------------------------------------------------------

std::int32_t ProcessContext::roundTick(std::int32_t at, int maxBeat) const
{
    int bar = 0;
    int beat = 0;
    int tick = 0;
    convertTicksToMbt(at, &bar, &beat, &tick);
    if (tick > 0) {
        ++beat;
        tick = 0;
    }
    if (beat > maxBeat) {
        ++bar;
        beat =
            maxBeat; // on purpose not 0: positions are cut to the last beat that the caller knows
    }
    return convertMbtToTicks(bar, beat, tick);
}

std::int32_t ProcessContext::roundUnit(std::int32_t length, std::int32_t lengthPpq) const
{
    const std::int32_t rounded = roundTick(toTicks(convertTicks(length, ppq, lengthPpq)), 1);
    return toTicks(convertTicks(rounded, lengthPpq, ppq));
}

// ProcessContext_for_MidiContext ------------------------------------------------------------------

ProcessContext_for_MidiContext::ProcessContext_for_MidiContext(Korvanel::MidiContext* context)
    : mContext(context != nullptr ? context : &nullContext)
{
    ppq = mContext->QuarterNoteLength();
}

void ProcessContext_for_MidiContext::outputEvent(MfxEvent&) {}

std::int32_t ProcessContext_for_MidiContext::convertMbtToTicks(int bar, int beat, int tick) const
{
    return mContext->BarPosition(bar, beat, tick);
}

void ProcessContext_for_MidiContext::convertTicksToMbt(std::int32_t at, int* bar, int* beat,
                                                       int* tick) const
{
    int unused = 0; // hosts always get three valid pointers
    mContext->GetBar(at, bar != nullptr ? bar : &unused, beat != nullptr ? beat : &unused,
                     tick != nullptr ? tick : &unused);
}

// LooperProcessContext ----------------------------------------------------------------------------

LooperProcessContext::LooperProcessContext(Korvanel::MidiQueue& queue, std::int32_t sliceStart)
    : mQueue(queue)
    , mSliceStart(sliceStart)
{
}

void LooperProcessContext::outputEvent(MfxEvent& event)
{
    const auto insert = [&](unsigned kind, unsigned data1, unsigned data2, std::uint32_t duration) {
        const unsigned status = kind + (event.channel & 0x0Fu);
        mQueue.InsertEvent(queueEvent(event.time, status | data1 << 8 | data2 << 16, duration));
    };
    switch (event.type) {
    case MfxEvent::Note:
        return insert(0x90, event.key, event.velocity, event.duration);
    case MfxEvent::KeyAftertouch:
        return insert(0xA0, event.key, event.amount, 0);
    case MfxEvent::Controller:
        return insert(0xB0, event.key, event.velocity, 0);
    case MfxEvent::Patch:
        return insert(0xC0, event.key, 0, 0);
    case MfxEvent::ChannelAftertouch:
        return insert(0xD0, event.amount, 0, 0);
    case MfxEvent::Wheel: {
        const int wheel = event.wheel() + MfxEvent::kWheelCentre;
        const auto byte = [](int value) { return static_cast<std::uint8_t>(value); };
        return insert(0xE0, byte(wheel % 128), byte(wheel / 128), 0);
    }
    default:
        return mQueue.InsertEvent(queueEvent(event.time, 0, 0));
    }
}

std::int32_t LooperProcessContext::convertMbtToTicks(int, int, int) const
{
    return mSliceStart;
}

void LooperProcessContext::convertTicksToMbt(std::int32_t, int*, int*, int*) const {}
