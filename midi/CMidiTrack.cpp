// Queries and statistics of a track.
#include "midi/CMidiTrack.h"

#include "midi/TickMath.h"

#include <algorithm>
#include <bit>

namespace Korvanel {

namespace {

constexpr int kKeys = 128;

std::int64_t endOf(const MfxEvent& event)
{
    const bool sounds = event.isNote() && event.duration != MfxEvent::kOpen;
    return std::int64_t{event.time} + (sounds ? event.duration : 0);
}

bool listsKey(const LGroups& group, int key)
{
    const char* const end = std::find(std::begin(group.keys), std::end(group.keys), 0);
    return std::find(std::begin(group.keys), end, static_cast<char>(key)) != end;
}

} // namespace

CMidiTrack::~CMidiTrack() = default;

void CMidiTrack::Clear()
{
    events.clear();
    clearNames();
    clearKeysStat();
}

std::int32_t CMidiTrack::barLength() const
{
    if (denominator == 0)
        return 0;
    return toTicks(std::int64_t{numerator} * ticksPerQuarter * 4 / denominator);
}

std::int32_t CMidiTrack::numberOfBars() const
{
    const std::int64_t bar = barLength();
    return bar == 0 || lastTick < 0 ? 0 : toTicks((bar + lastTick - 1) / bar);
}

std::int64_t CMidiTrack::barsLength() const
{
    return std::int64_t{numberOfBars()} * barLength();
}

std::int32_t CMidiTrack::GetFirst() const
{
    const auto first = std::find_if(events.begin(), events.end(),
                                    [](const MfxEvent& event) { return event.isNote(); });
    return first == events.end() ? -1 : first->time;
}

std::int32_t CMidiTrack::GetLast() const
{
    const auto last = std::find_if(events.rbegin(), events.rend(),
                                   [](const MfxEvent& event) { return event.isNote(); });
    return last == events.rend() ? -1 : last->time;
}

int CMidiTrack::GetLen() const
{
    return static_cast<int>(std::count_if(events.begin(), events.end(),
                                          [](const MfxEvent& event) { return event.isNote(); }));
}

int CMidiTrack::GetNumOfKey(int key) const
{
    if (key < 0 || key >= kKeys || keyCount < 1 || keyPresent[static_cast<std::size_t>(key)] == 0)
        return -1;
    return static_cast<int>(std::count(keyPresent.begin(), keyPresent.begin() + key, 1));
}

int CMidiTrack::GetKey(int i) const
{
    if (i < 0 || i >= keyCount)
        return -1;
    for (int key = 0; key < kKeys; ++key)
        if (keyPresent[static_cast<std::size_t>(key)] != 0 && i-- == 0)
            return key;
    return -1;
}

int CMidiTrack::GetInstruments() const
{
    std::array<bool, 256> seen{};
    for (const MfxEvent& event : events)
        if (event.isNote())
            seen[event.key] = true;
    return static_cast<int>(std::count(seen.begin(), seen.end(), true));
}

std::uint32_t CMidiTrack::GetInstrumentMask(const char* map) const
{
    std::uint32_t mask = 0;
    for (const MfxEvent& event : events)
        if (event.isNote() && event.key < kKeys)
            mask |= 1u << (map[event.key] & 31);
    return mask;
}

std::uint32_t CMidiTrack::GetMask(int stepsPerWhole, int steps, int* count) const
{
    std::uint32_t mask = 0;
    const std::int64_t step =
        stepsPerWhole == 0 ? 0 : std::int64_t{ticksPerQuarter} * 4 / stepsPerWhole;
    for (const MfxEvent& event : events) {
        if (!event.isNote() || step < 1)
            continue;
        const std::int64_t at = (event.time + step / 4) / step;
        if (at >= steps)
            break;
        if (at >= 0)
            mask |= 1u << ((steps - at - 1) & 31);
    }
    if (count != nullptr)
        *count = std::popcount(mask & 0xFFFFu);
    return mask;
}

void CMidiTrack::CountLGroups(const LGroups* groups, int n, int* counts) const
{
    std::fill_n(counts, n + 1, 0);
    for (int key = 0; key < kKeys; ++key) {
        if (keyPresent[static_cast<std::size_t>(key)] == 0)
            continue;
        bool grouped = false;
        for (int g = 0; g < n; ++g) {
            if (!listsKey(groups[g], key))
                continue;
            ++counts[g];
            grouped = true;
        }
        counts[n] += grouped ? 0 : 1;
    }
}

std::int32_t CMidiTrack::GetRhythmComplexity(std::int32_t& histogram) const
{
    constexpr std::array<std::uint32_t, 5> kWeights{8, 6, 4, 2, 1};
    std::array<std::uint32_t, 5> counters{};
    const MfxEvent* previous = nullptr;
    for (const MfxEvent& event : events) {
        if (!event.isNote())
            continue;
        if (previous != nullptr && ticksPerQuarter != 0) {
            const std::int64_t interval = std::int64_t{event.time} - previous->time;
            const auto triples = static_cast<std::uint64_t>(
                std::max<std::int64_t>(interval * 16 / ticksPerQuarter / 3, 0));
            const int highest = std::max(static_cast<int>(std::bit_width(triples)) - 1, 0);
            ++counters[static_cast<std::size_t>(std::min(highest, 4))];
        }
        previous = &event;
    }
    std::uint32_t packed = 0;
    std::uint32_t weight = 0;
    for (std::size_t i = 0; i < counters.size(); ++i) {
        packed |=
            counters[i] << (16 -
                            4 * i); // counts above 15 spill into the neighbour, which is accepted
        weight += kWeights[i] * counters[i];
    }
    histogram = static_cast<std::int32_t>(packed);
    return static_cast<std::int32_t>(weight);
}

// Key statistics ----------------------------------------------------------------------------------

void CMidiTrack::clearKeysStat()
{
    lastTick = -1;
    lowKey = 127;
    highKey = 0;
    keyCount = 0;
    keyPresent.fill(0);
}

void CMidiTrack::onInsertion(const MfxEvent& event)
{
    if (event.isNote() && event.key < kKeys && keyPresent[event.key] == 0) {
        keyPresent[event.key] = 1;
        ++keyCount;
        lowKey = std::min<std::int16_t>(lowKey, event.key);
        highKey = std::max<std::int16_t>(highKey, event.key);
    }
    lastTick = std::max(lastTick, toTicks(endOf(event)));
}

void CMidiTrack::updateKeysStat()
{
    clearKeysStat();
    for (const MfxEvent& event : events)
        onInsertion(event);
}

void CMidiTrack::copyKeyStat(const CMidiTrack& other)
{
    lastTick = other.lastTick;
    lowKey = other.lowKey;
    highKey = other.highKey;
    keyCount = other.keyCount;
    keyPresent = other.keyPresent;
}

void CMidiTrack::copyFrame(const CMidiTrack& other)
{
    tempo = other.tempo;
    ticksPerQuarter = other.ticksPerQuarter;
    numerator = other.numerator;
    denominator = other.denominator;
    beatUnit = other.beatUnit;
}

void CMidiTrack::clearNames()
{
    name.clear();
    subName.clear();
}

void CMidiTrack::copyNames(const CMidiTrack& other)
{
    name = other.name;
    subName = other.subName;
}

} // namespace Korvanel
