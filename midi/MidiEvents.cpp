// Events in a track block: reading, looking up, writing.
#include "midi/MidiFile.h"
#include "midi/TickMath.h"

#include <algorithm>
#include <cmath>
#include <cstdarg>
#include <cstdlib>
#include <cstring>

namespace Korvanel {

namespace {

constexpr unsigned char kMeta = 0xFF;
constexpr unsigned char kSystemExclusive = 0xF0;
constexpr unsigned char kTrackEnd = 0x2F;
constexpr unsigned char kSetTempo = 0x51;
constexpr unsigned char kTimeSignature = 0x58;
constexpr unsigned char kKeySignature = 0x59;
constexpr std::uint32_t kDefaultTempo = 500000;
constexpr std::uint32_t kBlockStep = 1000;

/// Moves on by a declared length; a length that would run round the number's end stops at it,
/// behind every block.
void skip(std::uint32_t& pos, std::uint32_t count)
{
    pos = count > UINT32_MAX - pos ? UINT32_MAX : pos + count;
}

/// The first data byte of the block's first meta event of a kind; null when there is none before
/// the track's end. One that runs on the status of the meta event before it does not count: no
/// writer means that.
unsigned char* findMeta(const _track* track, unsigned char type)
{
    short running = 0;
    Pkt pkt{};
    for (std::uint32_t pos = 0; pos < track->length;) {
        read_delta(track->data, pos);
        const bool ownStatus = track->data[pos] == kMeta;
        unsigned char* text = nullptr;
        if (!read_event(track->data, pos, pkt, running, &text, nullptr))
            return nullptr;
        if (ownStatus && pkt.data1 == type)
            return text;
    }
    return nullptr;
}

std::int32_t truncated(double value)
{
    if (!(value > -2147483648.0))
        return value == value ? INT32_MIN : 0;
    return value < 2147483647.0 ? static_cast<std::int32_t>(value) : INT32_MAX;
}

/// Walks the tempo segments until `isLast` says that the target lies in the segment at hand.
struct TempoWalk
{
    std::uint32_t tempo = kDefaultTempo;
    std::int64_t elapsedMs = 0;
    std::int64_t elapsedTicks = 0;

    template <typename IsLast>
    void run(const _track* track, std::int32_t division, IsLast isLast)
    {
        short running = 0;
        std::int32_t ticks = 0;
        for (std::uint32_t pos = 0; read_tempo(track, pos, tempo, ticks, running);) {
            const std::int64_t ms = truncated(double{1} * ticks * tempo / division / 1000);
            if (isLast(elapsedMs + ms, elapsedTicks + ticks))
                return;
            elapsedMs += ms;
            elapsedTicks += ticks;
        }
    }
};

void append(_track* track, int byte)
{
    write_byte(track, track->length, static_cast<short>(byte));
}

} // namespace

std::uint32_t read_delta(const unsigned char* data, std::uint32_t& pos)
{
    std::uint32_t value = 0;
    unsigned char byte = 0;
    do {
        byte = data[pos++];
        value = value << 7 | (byte & 0x7Fu);
    } while (byte >= 0x80);
    return value;
}

bool read_event(unsigned char* data, std::uint32_t& pos, Pkt& pkt, short& running,
                unsigned char** text, std::int32_t* textLength)
{
    if (data[pos] >= 0x80)
        running = data[pos++];
    pkt.status = static_cast<std::uint16_t>(running);

    const auto hand = [&](std::uint32_t length) {
        if (text != nullptr)
            *text = data + pos;
        if (textLength != nullptr)
            *textLength = static_cast<std::int32_t>(std::min<std::uint32_t>(length, INT32_MAX));
        skip(pos, length);
    };
    switch (pkt.status < 0xF0 ? pkt.status & 0xF0 : pkt.status) {
    case 0xC0:
    case 0xD0:
        pkt.data1 = data[pos++];
        return true;
    case 0x80:
    case 0x90:
    case 0xA0:
    case 0xB0:
    case 0xE0:
        pkt.data1 = data[pos++];
        pkt.data2 = data[pos++];
        if (pkt.IsNoteOff()) // whichever way it was written
            pkt.status = static_cast<std::uint16_t>(0x80 | (pkt.status & 0x0F));
        return true;
    case kSystemExclusive:
        hand(read_delta(data, pos));
        return true;
    case kMeta: {
        pkt.data1 = data[pos++];
        const unsigned char length = data[pos++];
        hand(length);
        return pkt.data1 != kTrackEnd;
    }
    default:
        return true; // no data that we know of
    }
}

bool read_tempo(const _track* track, std::uint32_t& pos, std::uint32_t& tempo, std::int32_t& ticks,
                short& running)
{
    std::int64_t total = 0;
    Pkt pkt{};
    while (pos < track->length) {
        total += read_delta(track->data, pos);
        unsigned char* text = nullptr;
        if (!read_event(track->data, pos, pkt, running, &text, nullptr))
            return false;
        if (text != nullptr && pkt.status == kMeta && pkt.data1 == kSetTempo) {
            tempo = static_cast<std::uint32_t>(text[0] << 16 | text[1] << 8 | text[2]);
            ticks = toTicks(total);
            return true;
        }
    }
    return false;
}

bool get_meter(const _track* track, short& numerator, short& denominatorPower)
{
    const unsigned char* meter = findMeta(track, kTimeSignature);
    if (meter == nullptr)
        return false;
    numerator = meter[0];
    denominatorPower = meter[1];
    return true;
}

bool set_meter(_track* track, short numerator, short denominatorPower)
{
    unsigned char* meter = findMeta(track, kTimeSignature);
    if (meter == nullptr || meter + 2 > track->data + track->capacity)
        return false;
    meter[0] = static_cast<unsigned char>(numerator);
    meter[1] = static_cast<unsigned char>(denominatorPower);
    return true;
}

bool set_sig(_track* track, short value)
{
    unsigned char* signature = findMeta(track, kKeySignature);
    if (signature == nullptr || signature + 2 > track->data + track->capacity)
        return false;
    signature[1] = static_cast<unsigned char>(value);
    return true;
}

std::int32_t msec2tick(const _track* track, std::uint32_t msec, std::int32_t division)
{
    TempoWalk walk;
    walk.run(track, division, [msec](std::int64_t ms, std::int64_t) { return msec < ms; });
    const double rest = static_cast<double>(msec - walk.elapsedMs);
    return toTicks(walk.elapsedTicks + truncated(rest * division * 1000 / walk.tempo));
}

std::int32_t tick2msec(const _track* track, std::uint32_t tick, std::int32_t division)
{
    TempoWalk walk;
    walk.run(track, division, [tick](std::int64_t, std::int64_t ticks) { return tick < ticks; });
    const double rest = static_cast<double>(tick - walk.elapsedTicks);
    return toTicks(walk.elapsedMs + truncated(walk.tempo * rest / division / 1000));
}

// Writing -----------------------------------------------------------------------------------------

void write_byte(_track* track, std::uint32_t& pos, short byte)
{
    if (track->length == track->capacity)
        mf_grow_tblk(track, track->capacity + kBlockStep);
    if (pos >= track->capacity)
        return; // out of memory: the byte is lost, the block stays whole
    track->data[pos++] = static_cast<unsigned char>(byte);
}

void write_delta(_track* track, std::uint32_t& pos, std::int32_t delta)
{
    const auto bits = static_cast<std::uint32_t>(delta);
    for (const int shift : {28, 21, 14, 7}) {
        const std::uint32_t group = bits >> shift & 0x7F;
        if (group != 0)
            write_byte(track, pos, static_cast<short>(group | 0x80));
    }
    write_byte(track, pos, static_cast<short>(bits & 0x7F));
}

void write_event(_track* track, std::uint32_t& pos, const Pkt& pkt)
{
    write_byte(track, pos, static_cast<short>(pkt.status));
    write_byte(track, pos, static_cast<short>(pkt.data1));
    if (pkt.Len() == 3)
        write_byte(track, pos, static_cast<short>(pkt.data2));
}

void write_midievent(_track* track, std::int32_t delta, const Pkt& pkt)
{
    write_delta(track, track->length, delta);
    write_event(track, track->length, pkt);
}

void write_metaevent_header(_track* track, std::int32_t delta, short type)
{
    write_delta(track, track->length, delta);
    append(track, kMeta);
    append(track, type);
}

void write_metaevent(_track* track, std::int32_t delta, short type, std::int32_t length, ...)
{
    write_metaevent_header(track, delta, type);
    write_delta(track, track->length, length);
    std::va_list bytes;
    va_start(bytes, length);
    for (std::int32_t i = 0; i < length; ++i)
        append(track, va_arg(bytes, int));
    va_end(bytes);
}

} // namespace Korvanel
