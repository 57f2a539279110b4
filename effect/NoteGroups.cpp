#include "effect/NoteGroups.h"

#include "midi/CMidiTrack.h"

#include <algorithm>
#include <array>
#include <optional>

namespace {

constexpr std::size_t kGroups = 5;

std::optional<std::size_t> groupOf(const MfxEvent& event)
{
    if (!event.isNote() || event.velocity == 0)
        return std::nullopt;
    switch (event.key) {
    case 10:
        return 4;
    case 11:
        return 3;
    case 12:
        return 2;
    case 13:
        return 1;
    default:
        return event.key <= 7 || (event.key >= 14 && event.key <= 22)
                   ? std::optional<std::size_t>(0)
                   : std::nullopt;
    }
}

struct Group
{
    std::int64_t firstStart = INT32_MAX;
    bool open = true; ///< its last note is still to be met
};

bool reachesEnd(const MfxEvent& note, std::int64_t length)
{
    const auto left = static_cast<std::uint32_t>(length - note.time - 1);
    return left <= note.duration;
}

} // namespace

void lengthenLastNotes(Korvanel::CMidiTrack& track)
{
    const std::int64_t length = track.barsLength();
    std::array<Group, kGroups> groups;
    for (const MfxEvent& event : track.events)
        if (const auto g = groupOf(event))
            groups[*g].firstStart = std::min<std::int64_t>(groups[*g].firstStart, event.time);

    for (auto event = track.events.rbegin(); event != track.events.rend(); ++event) {
        const auto g = groupOf(*event);
        if (!g || !groups[*g].open)
            continue;
        groups[*g].open = false; // only the last note of a group, whether it reaches the end or not
        if (event->duration == MfxEvent::kOpen || !reachesEnd(*event, length))
            continue;
        const std::int64_t longer = std::int64_t{event->duration} + groups[*g].firstStart;
        event->duration =
            static_cast<std::uint32_t>(std::min<std::int64_t>(longer, MfxEvent::kOpen - 1));
    }
}
