/// Where the bridge's messages go: an output port of a host.
#pragma once
#include <cstdint>
#include <span>

/// Thread: [audio thread]; neither allocates nor waits.
class MidiSink
{
public:
    /// Takes one message; frames do not decrease within a block.
    /// @return false when there is no room for it; nothing was taken then
    virtual bool send(std::uint32_t frame, std::span<const std::uint8_t> message) = 0;

protected:
    ~MidiSink() = default;
};
