/// A host's queue that keeps what it gets, in the order of insertion.
#pragma once
#include "effect/MidiQueue.h"

#include <vector>

class ListQueue : public Korvanel::MidiQueue
{
public:
    void hostSlot1() override {}

    void hostSlot2() override {}

    void InsertEvent(const Korvanel::MidiEvent& event) override { events.push_back(event); }

    int GetCount() override { return static_cast<int>(events.size()); }

    Korvanel::MidiEvent GetEvent(int index) override
    {
        return events[static_cast<std::size_t>(index)];
    }

    void hostSlot6() override {}

    void RemoveEvent(int index) override { events.erase(events.begin() + index); }

    std::vector<Korvanel::MidiEvent> events;
};
