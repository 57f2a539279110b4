#include "bench/Floor.h"
#include "bench/Inputs.h"

#include <array>
#include <cstring>

namespace bench {

namespace {

std::uint32_t number(const std::uint8_t*& at)
{
    std::uint32_t value = 0;
    std::uint8_t byte = 0;
    do {
        byte = *at++;
        value = value << 7 | (byte & 0x7Fu);
    } while (byte >= 0x80);
    return value;
}

/// The open note of each channel and key, as the index of its record. It is never cleared: an end
/// always follows its own beginning.
using OpenNotes = std::array<std::uint32_t, 16 * 128>;

void addRecord(MfxEvent& out, std::int32_t tick, unsigned status, const std::uint8_t* data)
{
    out = {};
    out.time = tick;
    out.channel = static_cast<std::uint8_t>(status & 0x0F);
    switch (status & 0xF0) {
    case 0xA0:
        out.type = MfxEvent::KeyAftertouch;
        out.key = data[0];
        out.amount = data[1];
        break;
    case 0xB0:
        out.type = MfxEvent::Controller;
        out.key = data[0];
        out.velocity = data[1];
        break;
    case 0xD0:
        out.type = MfxEvent::ChannelAftertouch;
        out.amount = data[0];
        break;
    case 0xE0:
        out.type = MfxEvent::Wheel;
        out.setWheel(static_cast<std::int16_t>(data[1] * 128 + data[0] - 8192));
        break;
    default:
        out.key = data[0];
        out.velocity = data[1];
        break;
    }
}

std::uint8_t* putDelta(std::uint8_t* at, std::uint32_t delta)
{
    if (delta >= 128)
        *at++ = static_cast<std::uint8_t>(0x80 | delta >> 7);
    *at++ = static_cast<std::uint8_t>(delta & 0x7F);
    return at;
}

struct Off
{
    std::int32_t time;
    std::uint8_t status;
    std::uint8_t key;
    std::uint8_t velocity;
};

/// The ends that are to come, the next one last; of equal ones the newest is the next.
struct PendingOffs
{
    std::array<Off, 1024> offs;
    std::size_t count = 0;

    void add(const Off& off)
    {
        std::size_t at = count++;
        for (; at > 0 && offs[at - 1].time < off.time; --at)
            offs[at] = offs[at - 1];
        offs[at] = off;
    }
};

std::uint8_t* putOffsUpTo(PendingOffs& pending, std::int32_t time, std::int32_t& last,
                          std::uint8_t* at)
{
    while (pending.count > 0 && pending.offs[pending.count - 1].time <= time) {
        const Off& off = pending.offs[--pending.count];
        at = putDelta(at, static_cast<std::uint32_t>(off.time - last));
        last = off.time;
        *at++ = off.status;
        *at++ = off.key;
        *at++ = off.velocity;
    }
    return at;
}

std::uint8_t* putRecord(const MfxEvent& event, std::uint8_t* at)
{
    constexpr std::array<std::uint8_t, 6> kStatus{0x90, 0xA0, 0xB0, 0xC0, 0xD0, 0xE0};
    *at++ =
        static_cast<std::uint8_t>(kStatus[static_cast<std::size_t>(event.type)] | event.channel);
    if (event.type == MfxEvent::Wheel) {
        const int wheel = event.wheel() + 8192;
        *at++ = static_cast<std::uint8_t>(wheel & 0x7F);
        *at++ = static_cast<std::uint8_t>(wheel >> 7);
    } else {
        *at++ = event.key;
        *at++ = event.type == MfxEvent::KeyAftertouch ? event.amount : event.velocity;
    }
    return at;
}

} // namespace

std::size_t floorRead(std::span<const std::uint8_t> chunk, MfxEvent* out)
{
    static OpenNotes open;
    const std::uint8_t* at = chunk.data();
    const std::uint8_t* const end = at + chunk.size();
    std::int32_t tick = 0;
    unsigned status = 0;
    std::uint32_t count = 0;
    while (at < end) {
        tick += static_cast<std::int32_t>(number(at));
        if (*at >= 0x80)
            status = *at++;
        const unsigned kind = status & 0xF0;
        if (kind == 0xF0) {
            at += status == 0xFF ? 1 : 0;
            at += number(at);
            continue;
        }
        const unsigned note = (status & 0x0F) << 7 | *at;
        if (kind == 0x80 || (kind == 0x90 && at[1] == 0)) {
            MfxEvent& opened = out[open[note]];
            opened.duration = static_cast<std::uint32_t>(tick - opened.time);
        } else if (kind != 0xC0) {
            if (kind == 0x90)
                open[note] = count;
            addRecord(out[count++], tick, status, at);
        }
        at += kind == 0xC0 || kind == 0xD0 ? 1 : 2;
    }
    return count;
}

std::size_t floorWrite(std::span<const MfxEvent> events, std::uint16_t ppq, std::uint8_t* out)
{
    static const Bytes head = fileHead(ppq);
    static PendingOffs pending;
    std::memcpy(out, head.data(), head.size());
    std::uint8_t* at = out + head.size();
    std::int32_t last = 0;
    for (const MfxEvent& event : events) {
        at = putOffsUpTo(pending, event.time, last, at);
        at = putDelta(at, static_cast<std::uint32_t>(event.time - last));
        last = event.time;
        at = putRecord(event, at);
        if (event.isNote())
            pending.add({event.time + static_cast<std::int32_t>(event.duration),
                         static_cast<std::uint8_t>(0x80 | event.channel), event.key,
                         event.velocity});
    }
    at = putOffsUpTo(pending, INT32_MAX, last, at);
    std::memcpy(at, kTrackEnd.data(), kTrackEnd.size());
    const auto size = static_cast<std::size_t>(at - out) + kTrackEnd.size();
    setChunkLength({out, size});
    return size;
}

} // namespace bench
