#include "midi/Pkt.h"

namespace Korvanel {

namespace {

std::uint8_t low(std::uint16_t word)
{
    return static_cast<std::uint8_t>(word);
}

} // namespace

bool Pkt::Assign(const MfxEvent& event)
{
    const auto set = [&](int kind, int first) {
        status = static_cast<std::uint16_t>(kind | event.channel);
        data1 = static_cast<std::uint16_t>(first);
    };
    switch (event.type) {
    case MfxEvent::Note:
        set(0x90, event.key);
        data2 = event.velocity;
        return true;
    case MfxEvent::KeyAftertouch:
        set(0xA0, event.key);
        data2 = event.amount;
        return true;
    case MfxEvent::Controller:
        set(0xB0, event.key);
        data2 = event.velocity;
        return true;
    case MfxEvent::Patch:
        set(0xC0, event.key);
        return true;
    case MfxEvent::ChannelAftertouch:
        set(0xD0, event.amount);
        return true;
    case MfxEvent::Wheel:
        set(0xE0, event.wheel() & 0x7F);
        data2 = static_cast<std::uint16_t>((event.wheel() + MfxEvent::kWheelCentre) >> 7);
        return true;
    default:
        return false;
    }
}

Pkt::operator MfxEvent() const
{
    MfxEvent event{};
    switch (kind()) {
    case 0x90:
    case 0x80:
        event.type = MfxEvent::Note;
        event.key = low(data1);
        event.velocity = low(data2);
        break;
    case 0xA0:
        event.type = MfxEvent::KeyAftertouch;
        event.key = low(data1);
        event.amount = low(data2);
        break;
    case 0xB0:
        event.type = MfxEvent::Controller;
        event.key = low(data1);
        event.velocity = low(data2);
        break;
    case 0xD0:
        event.type = MfxEvent::ChannelAftertouch;
        event.amount = low(data1);
        break;
    case 0xE0:
        event.type = MfxEvent::Wheel;
        event.setWheel(static_cast<std::int16_t>(data2 * 128 + data1 - MfxEvent::kWheelCentre));
        break;
    default:
        event.type = MfxEvent::NotChannel;
        return event;
    }
    event.channel = static_cast<std::uint8_t>(status & 0x0F);
    return event;
}

} // namespace Korvanel
