#include "host/lv2/Lv2Output.h"

#include <lv2/atom/util.h>

#include <cstring>

Lv2Output::Lv2Output(LV2_Atom_Sequence& port, const Lv2Uris& uris)
    : mPort(port)
    , mCapacity(port.atom.size)
    , mMidiEvent(uris.midiEvent)
{
    port.atom.type = uris.atomSequence;
    port.atom.size = sizeof(LV2_Atom_Sequence_Body);
    port.body.unit = 0; // frames
    port.body.pad = 0;
}

bool Lv2Output::send(std::uint32_t frame, std::span<const std::uint8_t> message)
{
    const std::uint64_t size = sizeof(LV2_Atom_Event) + ((message.size() + 7) & ~std::uint64_t{7});
    if (mPort.atom.size + size > mCapacity)
        return false;
    LV2_Atom_Event& event = *lv2_atom_sequence_end(&mPort.body, mPort.atom.size);
    event.time.frames = frame;
    event.body.type = mMidiEvent;
    event.body.size = static_cast<std::uint32_t>(message.size());
    std::memcpy(LV2_ATOM_BODY(&event.body), message.data(), message.size());
    mPort.atom.size += static_cast<std::uint32_t>(size);
    return true;
}
