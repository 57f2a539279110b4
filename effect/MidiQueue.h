/// The host's container of timed MIDI events for one slice. The host implements and owns it.
#pragma once
#include <cstddef>
#include <cstdint>

namespace Korvanel {

struct MidiEvent
{
    std::int32_t time;   ///< host ticks
    std::uint8_t status; ///< kind in the high nibble, channel in the low one
    std::uint8_t data1;
    std::uint8_t data2;
    std::uint8_t extra;    ///< 0 for channel messages
    std::int32_t duration; ///< host ticks of a note-on that stands for a whole note, else 0
};

static_assert(sizeof(MidiEvent) == 12 && offsetof(MidiEvent, status) == 4 &&
              offsetof(MidiEvent, extra) == 7 && offsetof(MidiEvent, duration) == 8);

/// Thread: [audio thread]; the host's operations neither allocate nor wait.
class MidiQueue
{
public:
    virtual void hostSlot1() = 0; ///< the host's; never called here
    virtual void hostSlot2() = 0; ///< the host's; never called here
    virtual void InsertEvent(const MidiEvent& event) = 0;
    virtual int GetCount() = 0;
    virtual MidiEvent GetEvent(int index) = 0;
    virtual void hostSlot6() = 0;            ///< the host's; never called here
    virtual void RemoveEvent(int index) = 0; ///< later events move down by one

    /// One event of three bytes, each cut to 8 bits.
    void Insert(std::int32_t time, int status, int data1, int data2);
    /// One whole note. The channel is masked to 0..15; a velocity of 0 passes as it is.
    void InsertNote(std::int32_t time, std::int32_t duration, int channel, int key, int velocity);
    /// Status in bits 0-7, then the two data bytes, then the extra byte.
    void InsertData(std::int32_t time, std::uint32_t data);

protected:
    ~MidiQueue() = default;
};

} // namespace Korvanel
