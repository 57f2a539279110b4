#include "effect/ProcessContext.h"

#include "effect/MidiQueue.h"
#include "midi/TickMath.h"

using Korvanel::convertTicks;
using Korvanel::MidiEvent;
using Korvanel::toTicks;

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
    MidiEvent out{event.time, 0, 0, 0, 0, 0};
    const auto set = [&](unsigned kind, int data1, int data2) {
        out.status = static_cast<std::uint8_t>(kind + (event.channel & 0x0Fu));
        out.data1 = static_cast<std::uint8_t>(data1);
        out.data2 = static_cast<std::uint8_t>(data2);
    };
    switch (event.type) {
    case MfxEvent::Note:
        set(0x90, event.key, event.velocity);
        out.duration = static_cast<std::int32_t>(event.duration);
        break;
    case MfxEvent::KeyAftertouch:
        set(0xA0, event.key, event.amount);
        break;
    case MfxEvent::Controller:
        set(0xB0, event.key, event.velocity);
        break;
    case MfxEvent::Patch:
        set(0xC0, event.key, 0);
        break;
    case MfxEvent::ChannelAftertouch:
        set(0xD0, event.amount, 0);
        break;
    case MfxEvent::Wheel: {
        const int wheel = event.wheel() + 8192;
        set(0xE0, wheel % 128, wheel / 128);
        break;
    }
    default:
        break;
    }
    mQueue.InsertEvent(out);
}

std::int32_t LooperProcessContext::convertMbtToTicks(int, int, int) const
{
    return mSliceStart;
}

void LooperProcessContext::convertTicksToMbt(std::int32_t, int*, int*, int*) const {}
