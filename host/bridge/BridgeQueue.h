/// The queue that the bridge hands to the effect for one slice: a list of a fixed length.
#pragma once
#include "effect/MidiQueue.h"

#include <cstdint>
#include <span>
#include <vector>

/// [audio thread] but for construction, the only moment that allocates.
class BridgeQueue : public Korvanel::MidiQueue
{
public:
    /// Events beyond the capacity are dropped: a note that never starts needs no end.
    explicit BridgeQueue(std::size_t capacity);

    void hostSlot1() override {}

    void hostSlot2() override {}

    void InsertEvent(const Korvanel::MidiEvent& event) override;

    int GetCount() override { return static_cast<int>(mCount); }

    Korvanel::MidiEvent GetEvent(int index) override
    {
        return mEvents[static_cast<std::size_t>(index)];
    }

    void hostSlot6() override {}

    void RemoveEvent(int index) override;

    void clear() { mCount = 0; }

    /// Puts the events in the order of time; those of one time stay as they came.
    void sort()
    {
        if (mCount > 1)
            mergeRuns();
    }

    std::span<const Korvanel::MidiEvent> events() const { return {mEvents.data(), mCount}; }

private:
    void mergeRuns();

    std::vector<Korvanel::MidiEvent> mEvents;
    std::size_t mCount = 0;
};
