/// This host's queue: a list in the order of insertion, emptied after each slice.
#pragma once
#include "effect/MidiQueue.h"

#include <vector>

class HostQueue : public Korvanel::MidiQueue
{
public:
    HostQueue() { mEvents.reserve(4096); }

    void hostSlot1() override {}

    void hostSlot2() override {}

    void InsertEvent(const Korvanel::MidiEvent& event) override { mEvents.push_back(event); }

    int GetCount() override { return static_cast<int>(mEvents.size()); }

    Korvanel::MidiEvent GetEvent(int index) override
    {
        return mEvents[static_cast<std::size_t>(index)];
    }

    void hostSlot6() override {}

    void RemoveEvent(int index) override { mEvents.erase(mEvents.begin() + index); }

    const std::vector<Korvanel::MidiEvent>& events() const { return mEvents; }

    void clear() { mEvents.clear(); }

private:
    std::vector<Korvanel::MidiEvent> mEvents;
};
