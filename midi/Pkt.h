/// One raw MIDI message, as files hold it.
#pragma once
#include "midi/MfxEvent.h"

#include <cstdint>

namespace Korvanel {

/// Words beyond the message's length are undefined. Copied freely.
struct Pkt
{
    std::uint16_t status; ///< whole status byte: kind and channel; 0xFF for a meta event, 0xF0 for
                          ///< system exclusive
    std::uint16_t data1;  ///< meta events: the meta type
    std::uint16_t data2;

    /// Fills the packet from a record. A note always becomes a note-on; who writes its end makes
    /// the note-off.
    /// @return false, with the packet as it was, for a record that is no channel message
    bool Assign(const MfxEvent& event);

    /// A record of the message; time, port and a note's duration are the caller's to set. A program
    /// change becomes NotChannel on purpose: patterns that a reader loads leave the host's sounds
    /// alone.
    operator MfxEvent() const;

    bool IsNoteOn() const { return kind() == 0x90 && data2 != 0; }

    bool IsNoteOff() const { return kind() == 0x90 ? data2 == 0 : kind() == 0x80; }

    bool IsNote() const { return kind() == 0x90 || kind() == 0x80; }

    /// Bytes on the wire: 2 or 3.
    int Len() const { return kind() == 0xC0 || kind() == 0xD0 ? 2 : 3; }

private:
    int kind() const { return status & 0xF0; }
};

} // namespace Korvanel
