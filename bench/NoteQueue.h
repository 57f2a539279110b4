/// Where every player of the slice benchmarks puts its notes: an array that is used again for each
/// slice.
#pragma once
#include "effect/MidiQueue.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>

namespace bench {

constexpr int kVeloPlus = -10; ///< what every player adds to a velocity

inline std::uint8_t playedVelocity(int velocity)
{
    return static_cast<std::uint8_t>(std::clamp(velocity + kVeloPlus, 1, 127));
}

class NoteQueue final : public Korvanel::MidiQueue
{
public:
    void clear() { mCount = 0; }

    void add(const Korvanel::MidiEvent& event) { mEvents[mCount++ % kRoom] = event; }

    void addNote(std::int32_t time, unsigned channel, unsigned key, int velocity,
                 std::int32_t duration)
    {
        add({time, static_cast<std::uint8_t>(0x90 | channel), static_cast<std::uint8_t>(key),
             playedVelocity(velocity), 0, duration});
    }

    std::size_t count() const { return mCount; }

    const Korvanel::MidiEvent& operator[](std::size_t i) const { return mEvents[i]; }

    void hostSlot1() override {}

    void hostSlot2() override {}

    void InsertEvent(const Korvanel::MidiEvent& event) override { add(event); }

    int GetCount() override { return static_cast<int>(mCount); }

    Korvanel::MidiEvent GetEvent(int index) override
    {
        return mEvents[static_cast<std::size_t>(index)];
    }

    void hostSlot6() override {}

    void RemoveEvent(int) override {}

private:
    static constexpr std::size_t kRoom = 1024;

    std::array<Korvanel::MidiEvent, kRoom> mEvents{};
    std::size_t mCount = 0;
};

} // namespace bench
