/// Writes messages into a host's output port for one cycle.
#pragma once
#include "host/bridge/MidiSink.h"
#include "host/lv2/Lv2Uris.h"

#include <lv2/atom/atom.h>

#include <cstdint>

/// [audio thread]
class Lv2Output : public MidiSink
{
public:
    /// Empties the port, whose size says at first how much the host has made room for.
    Lv2Output(LV2_Atom_Sequence& port, const Lv2Uris& uris);

    bool send(std::uint32_t frame, std::span<const std::uint8_t> message) override;

private:
    LV2_Atom_Sequence& mPort;
    const std::uint32_t mCapacity; ///< bytes of the sequence's body
    const LV2_URID mMidiEvent;
};
