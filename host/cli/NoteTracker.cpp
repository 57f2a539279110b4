#include "host/cli/NoteTracker.h"

#include "midi/TickMath.h"

#include <algorithm>
#include <limits>

namespace {

constexpr std::int64_t kNever = std::numeric_limits<std::int64_t>::max();

TimedMessage offMessage(std::int64_t time, std::uint8_t channel, std::uint8_t key)
{
    return {Korvanel::toTicks(time), {static_cast<std::uint8_t>(0x80 | channel), key, 64}, 3};
}

bool isNoteOn(const Korvanel::MidiEvent& event)
{
    return (event.status & 0xF0) == 0x90 && event.data2 != 0;
}

std::uint8_t lengthOf(const Korvanel::MidiEvent& event)
{
    const int kind = event.status & 0xF0;
    return kind == 0xC0 || kind == 0xD0 ? 2 : 3;
}

} // namespace

void NoteTracker::play(std::vector<Korvanel::MidiEvent> events, std::int32_t end, Out& out)
{
    std::stable_sort(events.begin(), events.end(),
                     [](const auto& a, const auto& b) { return a.time < b.time; });
    for (const Korvanel::MidiEvent& event : events) {
        endThrough(event.time, out);
        if (isNoteOn(event))
            start(event, out);
        else if (event.status >= 0x80)
            out.push_back({event.time, {event.status, event.data1, event.data2}, lengthOf(event)});
    }
    endThrough(std::int64_t{end} - 1, out);
}

void NoteTracker::start(const Korvanel::MidiEvent& event, Out& out)
{
    const auto channel = static_cast<std::uint8_t>(event.status & 0x0F);
    const auto same = std::find_if(mSounding.begin(), mSounding.end(), [&](const Sounding& note) {
        return note.channel == channel && note.key == event.data1;
    });
    if (same != mSounding.end()) {
        out.push_back(offMessage(event.time, channel, event.data1));
        mSounding.erase(same);
    }
    out.push_back({event.time, {event.status, event.data1, event.data2}, 3});
    // A note of no length still sounds for a moment; a negative length says that its end is not
    // known.
    const std::int64_t end =
        event.duration < 0 ? kNever : std::int64_t{event.time} + std::max(event.duration, 1);
    mSounding.push_back({end, channel, event.data1});
}

void NoteTracker::endThrough(std::int64_t time, Out& out)
{
    for (;;) {
        const auto next =
            std::min_element(mSounding.begin(), mSounding.end(),
                             [](const Sounding& a, const Sounding& b) { return a.end < b.end; });
        if (next == mSounding.end() || next->end > time)
            return;
        out.push_back(offMessage(next->end, next->channel, next->key));
        mSounding.erase(next);
    }
}

void NoteTracker::stop(std::int32_t time, Out& out)
{
    for (const Sounding& note : mSounding)
        out.push_back(offMessage(time, note.channel, note.key));
    mSounding.clear();
}
