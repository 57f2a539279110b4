#include "effect/MidiQueue.h"

namespace Korvanel {

void MidiQueue::Insert(std::int32_t time, int status, int data1, int data2)
{
    InsertEvent({time, static_cast<std::uint8_t>(status), static_cast<std::uint8_t>(data1),
                 static_cast<std::uint8_t>(data2), 0, 0});
}

void MidiQueue::InsertNote(std::int32_t time, std::int32_t duration, int channel, int key,
                           int velocity)
{
    InsertEvent({time, static_cast<std::uint8_t>(0x90 + (channel & 15)),
                 static_cast<std::uint8_t>(key), static_cast<std::uint8_t>(velocity), 0, duration});
}

void MidiQueue::InsertData(std::int32_t time, std::uint32_t data)
{
    InsertEvent({time, static_cast<std::uint8_t>(data), static_cast<std::uint8_t>(data >> 8),
                 static_cast<std::uint8_t>(data >> 16), static_cast<std::uint8_t>(data >> 24), 0});
}

} // namespace Korvanel
