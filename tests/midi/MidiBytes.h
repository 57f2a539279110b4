/// Bytes of MIDI files for tests, put together and taken apart without the code under test.
#pragma once
#include "midi/CMidiTrack.h"
#include "shared/System/kvStream.h"

#include <cstdint>
#include <string>
#include <vector>

using Bytes = std::vector<std::uint8_t>;

inline Bytes operator+(Bytes a, const Bytes& b)
{
    a.insert(a.end(), b.begin(), b.end());
    return a;
}

inline Bytes bigEndian(std::uint32_t value, int bytes)
{
    Bytes out;
    for (int shift = 8 * (bytes - 1); shift >= 0; shift -= 8)
        out.push_back(static_cast<std::uint8_t>(value >> shift));
    return out;
}

inline Bytes chunk(const Bytes& data)
{
    return Bytes{'M', 'T', 'r', 'k'} + bigEndian(static_cast<std::uint32_t>(data.size()), 4) + data;
}

inline Bytes midiFile(std::uint16_t division, const std::vector<Bytes>& tracks,
                      std::uint16_t format = 1)
{
    Bytes file = Bytes{'M', 'T', 'h', 'd'} + bigEndian(6, 4) + bigEndian(format, 2) +
                 bigEndian(static_cast<std::uint32_t>(tracks.size()), 2) + bigEndian(division, 2);
    for (const Bytes& track : tracks)
        file = file + chunk(track);
    return file;
}

inline const Bytes kTrackEnd{0x00, 0xFF, 0x2F, 0x00};

/// One note of key 60 from tick 0 to `ticks` (below 128) on channel 1.
inline Bytes oneNote(std::uint8_t ticks)
{
    return Bytes{0x00, 0x90, 60, 100, ticks, 0x80, 60, 64};
}

inline std::string text(const Bytes& bytes)
{
    return {bytes.begin(), bytes.end()};
}

/// Loads the bytes as a track. @return what Load returned
inline int load(Korvanel::CMidiTrack& track, const Bytes& bytes)
{
    Korvanel::stringStream stream(text(bytes));
    return track.Load(stream, nullptr, nullptr);
}

inline Bytes save(const Korvanel::CMidiTrack& track)
{
    Korvanel::stringStream stream;
    track.Save(stream);
    return {stream.text().begin(), stream.text().end()};
}

inline MfxEvent note(std::int32_t time, int key, std::uint32_t duration, int velocity = 100,
                     int channel = 0)
{
    MfxEvent event{};
    event.time = time;
    event.type = MfxEvent::Note;
    event.channel = static_cast<std::uint8_t>(channel);
    event.key = static_cast<std::uint8_t>(key);
    event.velocity = static_cast<std::uint8_t>(velocity);
    event.duration = duration;
    return event;
}

inline MfxEvent controller(std::int32_t time, int number, int value)
{
    MfxEvent event{};
    event.time = time;
    event.type = MfxEvent::Controller;
    event.key = static_cast<std::uint8_t>(number);
    event.velocity = static_cast<std::uint8_t>(value);
    return event;
}
