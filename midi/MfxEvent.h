/// The host's event record: what tracks hold and host queues exchange.
#pragma once
#include <cstddef>
#include <cstdint>
#include <cstring>

/// 18 bytes without padding, as the host lays it out. Copied freely. Its fields lie at any address,
/// so take a copy of one where something wants a reference.
struct __attribute__((packed)) MfxEvent
{
    enum Type : std::int32_t {
        NotChannel = -1, ///< not a channel message; carries nothing
        Note = 0,        ///< one record for the whole note
        KeyAftertouch = 1,
        Controller = 2,
        Patch = 3,
        ChannelAftertouch = 4,
        Wheel = 5,
    };

    /// The duration of a note whose end is not known.
    static constexpr std::uint32_t kOpen = 0xFFFFFFFF;

    /// What a MIDI message holds for a wheel at 0.
    static constexpr int kWheelCentre = 8192;

    std::int32_t time;     ///< ticks of the owning track or queue
    std::uint8_t port;     ///< the host's; never written here
    std::uint8_t channel;  ///< 0..15
    std::int32_t type;     ///< a Type; hosts may use further codes
    std::uint8_t key;      ///< note, key aftertouch: key; controller: its number; patch: program
    std::uint8_t velocity; ///< note: velocity; controller: its value
    std::uint8_t releaseVelocity; ///< notes only
    std::uint32_t duration;       ///< notes only: ticks, or kOpen
    std::uint8_t amount;          ///< key and channel aftertouch: pressure

    bool isNote() const { return type == Note; }

    /// Wheel events: -8192..8191, 0 in the centre. It shares the bytes of key and velocity.
    std::int16_t wheel() const { return static_cast<std::int16_t>(key | velocity << 8); }

    void setWheel(std::int16_t value)
    {
        key = static_cast<std::uint8_t>(value & 0xFF);
        velocity = static_cast<std::uint8_t>(value >> 8 & 0xFF);
    }
};

static_assert(sizeof(MfxEvent) == 18);
static_assert(offsetof(MfxEvent, time) == 0 && offsetof(MfxEvent, port) == 4 &&
              offsetof(MfxEvent, channel) == 5 && offsetof(MfxEvent, type) == 6 &&
              offsetof(MfxEvent, key) == 10 && offsetof(MfxEvent, velocity) == 11 &&
              offsetof(MfxEvent, releaseVelocity) == 12 && offsetof(MfxEvent, duration) == 13 &&
              offsetof(MfxEvent, amount) == 17);

/// Controllers that choose or balance a sound (bank, volume, pan and their fine
/// parts) belong to the host's mixer, so a pattern neither plays nor exports them.
inline bool isMixerController(const MfxEvent& event)
{
    if (event.type != MfxEvent::Controller)
        return false;
    switch (event.key) {
    case 0:
    case 7:
    case 10:
    case 32:
    case 39:
    case 42:
        return true;
    default:
        return false;
    }
}
