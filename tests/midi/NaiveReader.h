/// A plain reader of Standard MIDI Files for comparison: it shares no code with the one under test.
#pragma once
#include "tests/midi/MidiBytes.h"

#include <algorithm>
#include <cstring>
#include <deque>
#include <map>
#include <optional>

struct NaiveNote
{
    std::int64_t time;
    int channel;
    int key;
    int velocity;
    std::int64_t duration; ///< -1: never ended

    friend bool operator==(const NaiveNote&, const NaiveNote&) = default;
};

struct NaivePattern
{
    int division = 0;
    int numerator = 4;
    int power = 2;
    std::uint32_t tempo = 500000;
    std::vector<NaiveNote> notes; ///< by start
    int otherRecords = 0;         ///< controllers, pressure, wheel
};

/// Nothing for files that our reader refuses: other header lengths, other chunks, no magic. Missing
/// bytes count as 0.
inline std::optional<NaivePattern> readNaively(const Bytes& bytes)
{
    const auto be = [&](std::size_t at, int count) {
        std::uint32_t value = 0;
        for (int i = 0; i < count; ++i)
            value = value << 8 | (at + static_cast<std::size_t>(i) < bytes.size()
                                      ? bytes[at + static_cast<std::size_t>(i)]
                                      : 0u);
        return value;
    };
    if (bytes.size() < 8 || std::memcmp(bytes.data(), "MThd", 4) != 0 || be(4, 4) != 6)
        return std::nullopt;
    NaivePattern pattern;
    pattern.division = static_cast<int>(be(12, 2));
    std::vector<Bytes> tracks;
    std::size_t at = 14;
    for (std::uint32_t i = 0; i < be(10, 2); ++i) {
        if (at + 4 > bytes.size() || std::memcmp(&bytes[at], "MTrk", 4) != 0)
            return std::nullopt;
        const std::size_t end = std::min(bytes.size(), at + 8 + be(at + 4, 4));
        const std::size_t start = std::min(bytes.size(), at + 8);
        tracks.emplace_back(bytes.begin() + static_cast<std::ptrdiff_t>(start),
                            bytes.begin() + static_cast<std::ptrdiff_t>(end));
        at = end;
    }

    struct Found
    {
        std::vector<NaiveNote> notes;
        int other = 0;
        bool anyNote = false;
        std::optional<std::pair<int, int>> meter;
        std::optional<std::uint32_t> tempo;
    };

    std::vector<Found> found;
    for (const Bytes& data : tracks) {
        Found f;
        std::map<std::pair<int, int>, std::deque<std::size_t>> open;
        std::size_t i = 0;
        const auto byte = [&]() -> int { return i < data.size() ? data[i++] : (++i, 0); };
        const auto number = [&] {
            std::uint32_t value = 0;
            int b = 0;
            do {
                b = byte();
                value = value << 7 | static_cast<std::uint32_t>(b & 0x7F);
            } while (b & 0x80);
            return value;
        };
        std::int64_t now = 0;
        int status = 0;
        bool ended = false;
        while (i < data.size()) {
            now += number();
            const bool ownStatus = i < data.size() && data[i] & 0x80;
            if (ownStatus)
                status = byte();
            const int channel = status & 15;
            const auto kind = status < 0xF0 ? status & 0xF0 : status;
            if (kind == 0x90 || kind == 0x80) {
                const int key = byte();
                const int velocity = byte();
                f.anyNote = true;
                auto& queue = open[{channel, key}];
                if (kind == 0x90 && velocity > 0) {
                    queue.push_back(f.notes.size());
                    f.notes.push_back({now, channel, key, velocity, -1});
                } else if (!queue.empty()) {
                    f.notes[queue.front()].duration = now - f.notes[queue.front()].time;
                    queue.pop_front();
                }
            } else if (kind == 0xA0 || kind == 0xB0 || kind == 0xE0) {
                byte();
                byte();
                ++f.other;
            } else if (kind == 0xD0) {
                byte();
                ++f.other;
            } else if (kind == 0xC0) {
                byte();
            } else if (kind == 0xF0) {
                i += number();
            } else if (kind == 0xFF) {
                const int type = byte();
                const auto length = static_cast<std::size_t>(byte());
                if (type == 0x2F)
                    ended = true;
                if (type == 0x51 && !ended && !f.tempo)
                    f.tempo = data[i] * 65536u + data[i + 1] * 256u + data[i + 2];
                if (type == 0x58 && ownStatus && !ended && !f.meter)
                    f.meter = {data[i], data[i + 1]};
                i += length;
            }
        }
        found.push_back(f);
    }
    if (found.empty())
        return pattern;
    std::size_t source = 0;
    for (std::size_t t = 1; t < found.size(); ++t)
        if (found[t].anyNote)
            source = t;
    pattern.notes = found[source].notes;
    pattern.otherRecords = found[source].other;
    if (found[0].meter) {
        pattern.numerator = found[0].meter->first;
        pattern.power = found[0].meter->second;
    }
    pattern.tempo = found[0].tempo.value_or(500000);
    return pattern;
}

inline std::vector<NaiveNote> notesOf(const Korvanel::CMidiTrack& track)
{
    std::vector<NaiveNote> notes;
    for (const MfxEvent& event : track.events)
        if (event.isNote())
            notes.push_back(
                {event.time, event.channel, event.key, event.velocity,
                 event.duration == MfxEvent::kOpen ? -1 : std::int64_t{event.duration}});
    return notes;
}
