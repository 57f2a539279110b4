// Editing of a track's events.
#include "midi/CMidiTrack.h"
#include "midi/TickMath.h"

#include <algorithm>

namespace Korvanel {

namespace {

/// Behind every tick and every duration, and far enough from the end of its type to be reckoned
/// with.
constexpr std::int64_t kNoEnd = INT64_MAX / 2;

bool isNoteOf(const MfxEvent& event, int key)
{
    return event.isNote() && event.key == key;
}

bool listsKey(const MonoGroup& group, int key)
{
    for (const std::uint8_t listed : group.keys) {
        if (listed == 0)
            return false;
        if (listed == key)
            return true;
    }
    return false;
}

/// Calls `visit` for each event within `window` ticks of the one at `from`, walking away from it,
/// until it returns true.
template <typename Visit>
bool anyWithin(const std::vector<MfxEvent>& events, std::size_t from, int direction,
               std::int64_t window, Visit visit)
{
    const std::int64_t time = events[from].time;
    for (std::size_t i = from + static_cast<std::size_t>(direction); i < events.size();
         i += static_cast<std::size_t>(direction)) {
        const std::int64_t distance = direction > 0 ? events[i].time - time : time - events[i].time;
        if (distance > window)
            return false;
        if (visit(events[i]))
            return true;
    }
    return false;
}

bool groupSounds(const std::vector<MfxEvent>& events, std::size_t note, int direction,
                 const MonoGroup& group, int ignoredKey, std::int64_t window)
{
    int sounding = 0;
    if (sounding >= group.count - 1)
        return true;
    return anyWithin(events, note, direction, window, [&](const MfxEvent& event) {
        if (event.isNote() && event.key != ignoredKey && listsKey(group, event.key))
            ++sounding;
        return sounding >= group.count - 1;
    });
}

} // namespace

void CMidiTrack::insert(const MfxEvent& event)
{
    const std::int32_t time = event.time;
    const auto at =
        std::upper_bound(events.begin(), events.end(), time,
                         [](std::int32_t t, const MfxEvent& other) { return t < other.time; });
    events.insert(at, event);
    onInsertion(event);
}

void CMidiTrack::Delete(iterator& at)
{
    at = events.erase(at);
    updateKeysStat();
}

void CMidiTrack::Copy(const CMidiTrack& src, const bool* keep)
{
    if (&src == this) {
        Copy(CMidiTrack(src), keep);
        return;
    }
    Clear();
    copyFrame(src);
    for (const MfxEvent& event : src.events)
        if (!event.isNote() || keep == nullptr || (event.key < 128 && keep[event.key]))
            insert(event);
}

void CMidiTrack::Filter(const bool* keep)
{
    std::erase_if(events, [keep](const MfxEvent& event) {
        return event.isNote() && !(event.key < 128 && keep[event.key]);
    });
    updateKeysStat();
}

void CMidiTrack::ApplyMap(const char* map)
{
    for (MfxEvent& event : events)
        if (event.isNote() && event.key < 128)
            event.key = static_cast<std::uint8_t>(map[event.key]);
    updateKeysStat();
}

void CMidiTrack::TransposeNote(int from, int to)
{
    for (MfxEvent& event : events)
        if (isNoteOf(event, from))
            event.key = static_cast<std::uint8_t>(to);
    // The statistics stay on purpose: a caller moves many keys in turn and counts once, at the end.
}

void CMidiTrack::FixedLength(std::int32_t ticks)
{
    for (MfxEvent& event : events)
        if (event.isNote())
            event.duration = static_cast<std::uint32_t>(ticks);
    updateKeysStat();
}

void CMidiTrack::Quantize(std::int32_t grid, std::int32_t length)
{
    if (grid < 1)
        return;
    std::erase_if(events, [grid, length](MfxEvent& event) {
        if (!event.isNote())
            return false;
        const std::int64_t early = std::int64_t{event.time} + grid / 2;
        const std::int64_t onGrid = early - early % grid;
        event.time = toTicks(onGrid);
        if (onGrid >= length)
            return true;
        if (onGrid + event.duration >= length)
            event.duration = static_cast<std::uint32_t>(length - onGrid - 1);
        return false;
    });
    // Notes have moved among events that have not.
    std::stable_sort(events.begin(), events.end(),
                     [](const MfxEvent& a, const MfxEvent& b) { return a.time < b.time; });
    updateKeysStat();
}

void CMidiTrack::EatEmptyBars(std::int32_t barTicks)
{
    const std::int32_t first = GetFirst();
    if (barTicks < 1 || first < barTicks)
        return;
    const std::int64_t earlier = std::int64_t{barTicks} * (first / barTicks);
    for (MfxEvent& event : events)
        event.time = toTicks(std::max<std::int64_t>(event.time - earlier, 0));
    updateKeysStat();
}

void CMidiTrack::Slice(int start, int offset, int length)
{
    const std::int64_t quarter = ticksPerQuarter;
    const std::int64_t from = start * quarter;
    const std::int64_t end = length == 0 ? kNoEnd : (std::int64_t{start} + length) * quarter;
    const std::int64_t earlier = (std::int64_t{start} - offset) * quarter;
    lastTick = -1;
    std::erase_if(events, [&](MfxEvent& event) {
        const std::int64_t time = event.time;
        if (time < from || time >= end)
            return true;
        std::int64_t sounding = 0;
        if (event.isNote()) {
            event.duration =
                static_cast<std::uint32_t>(std::min<std::int64_t>(event.duration, end - time));
            sounding = event.duration == MfxEvent::kOpen ? 0 : event.duration;
        }
        event.time = toTicks(time - earlier);
        lastTick = std::max(lastTick, toTicks(time - earlier + sounding));
        return false;
    });
    if (length != 0 && lastTick >= 0)
        lastTick = toTicks((std::int64_t{length} + offset) * quarter);
}

void CMidiTrack::DeleteDoubles(std::int32_t window)
{
    const auto present = keyPresent;
    for (int key = 0; key < static_cast<int>(present.size()); ++key)
        if (present[static_cast<std::size_t>(key)] != 0)
            transposeOrErase(key, key, nullptr, window, true);
}

void CMidiTrack::DeleteDoubles(std::int32_t window, const MonoGroup* groups, bool check)
{
    const auto present = keyPresent;
    for (int key = 0; key < static_cast<int>(present.size()); ++key)
        if (present[static_cast<std::size_t>(key)] != 0)
            transposeOrErase(key, key, groups, window, check);
    updateKeysStat();
}

bool CMidiTrack::meetsSoundingGroup(std::size_t note, int newKey, const MonoGroup* groups,
                                    std::int32_t window, bool check) const
{
    const int ignored = check ? newKey : -1;
    for (const MonoGroup* group = groups; group != nullptr && group->count != 0; ++group) {
        if (!listsKey(*group, newKey))
            continue;
        if (groupSounds(events, note, 1, *group, ignored, window) ||
            groupSounds(events, note, -1, *group, ignored, window))
            return true;
    }
    return false;
}

void CMidiTrack::TransposeNote(int key, int newKey, const MonoGroup* groups, std::int32_t window,
                               bool check)
{
    transposeOrErase(key, newKey, groups, window, check);
    updateKeysStat();
}

void CMidiTrack::transposeOrErase(int key, int newKey, const MonoGroup* groups, std::int32_t window,
                                  bool check)
{
    const auto doubles = [newKey](const MfxEvent& event) { return isNoteOf(event, newKey); };
    for (std::size_t i = 0; i < events.size();) {
        if (!isNoteOf(events[i], key)) {
            ++i;
            continue;
        }
        const bool doubled = check && (anyWithin(events, i, 1, window, doubles) ||
                                       anyWithin(events, i, -1, window, doubles));
        if (doubled || meetsSoundingGroup(i, newKey, groups, window, check)) {
            events.erase(events.begin() + static_cast<std::ptrdiff_t>(i));
            continue;
        }
        events[i].key = static_cast<std::uint8_t>(newKey);
        ++i;
    }
}

} // namespace Korvanel
