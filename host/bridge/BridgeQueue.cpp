#include "host/bridge/BridgeQueue.h"

#include <algorithm>

namespace {

bool isEarlier(const Korvanel::MidiEvent& a, const Korvanel::MidiEvent& b)
{
    return a.time < b.time;
}

/// Where the run that starts at `from` stops being in order.
template <typename Iterator>
Iterator endOfRun(Iterator from, Iterator end)
{
    return std::is_sorted_until(from, end, isEarlier);
}

} // namespace

BridgeQueue::BridgeQueue(std::size_t capacity)
    : mEvents(2 * capacity) // the upper half is where sorting merges
{
}

void BridgeQueue::InsertEvent(const Korvanel::MidiEvent& event)
{
    if (mCount < mEvents.size() / 2)
        mEvents[mCount++] = event;
}

void BridgeQueue::RemoveEvent(int index)
{
    const auto at = mEvents.begin() + index;
    std::copy(at + 1, mEvents.begin() + static_cast<std::ptrdiff_t>(mCount), at);
    --mCount;
}

/// Patterns play in order unless their file was damaged; so runs are long and merges few, and a
/// sorted queue costs one look at each event.
void BridgeQueue::mergeRuns()
{
    const auto first = mEvents.begin();
    const auto last = first + static_cast<std::ptrdiff_t>(mCount);
    const auto scratch = first + static_cast<std::ptrdiff_t>(mEvents.size() / 2);
    while (endOfRun(first, last) != last) {
        auto out = scratch;
        for (auto run = first; run != last;) {
            const auto middle = endOfRun(run, last);
            const auto end = middle == last ? last : endOfRun(middle, last);
            out = std::merge(run, middle, middle, end, out, isEarlier);
            run = end;
        }
        std::copy(scratch, out, first);
    }
}
