#include "bench/Inputs.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <random>
#include <tuple>

namespace bench {

namespace {

constexpr std::int32_t kStep = kPatternPpq / 4; ///< a sixteenth
constexpr std::int32_t kStepsPerBar = 16;
constexpr unsigned kDrums = 9;
constexpr std::size_t kFileHeader = 14;
constexpr std::size_t kChunkHeader = 8;

struct Message
{
    std::int32_t tick;
    bool opens; ///< a note-on: ends come first at the same tick
    std::uint8_t status;
    std::uint8_t data1;
    std::uint8_t data2;
};

/// Collects notes and controllers; a key never sounds twice at a time, so that every pairing of ons
/// and offs is the same.
class Score
{
public:
    void note(unsigned channel, unsigned key, unsigned velocity, std::int32_t tick,
              std::int32_t length)
    {
        std::int32_t& free = mFree[channel][key];
        if (tick < free)
            return;
        free = tick + length;
        ++mNotes;
        mMessages.push_back({tick, true, byte(0x90 | channel), byte(key), byte(velocity)});
        mMessages.push_back(
            {tick + length, false, byte(0x80 | channel), byte(key), byte(velocity)});
    }

    void message(std::int32_t tick, unsigned status, unsigned data1, unsigned data2)
    {
        mMessages.push_back({tick, true, byte(status), byte(data1), byte(data2)});
    }

    Bytes file(bool runningStatus);

    std::size_t notes() const { return mNotes; }

private:
    static std::uint8_t byte(unsigned value) { return static_cast<std::uint8_t>(value); }

    std::array<std::array<std::int32_t, 128>, 16> mFree{};
    std::vector<Message> mMessages;
    std::size_t mNotes = 0;
};

void putDelta(Bytes& out, std::uint32_t delta)
{
    if (delta >= 128)
        out.push_back(static_cast<std::uint8_t>(0x80 | delta >> 7));
    out.push_back(static_cast<std::uint8_t>(delta & 0x7F));
}

/// With running status a note-off becomes a note-on of velocity 0, which keeps the status going.
Bytes Score::file(bool runningStatus)
{
    std::stable_sort(mMessages.begin(), mMessages.end(), [](const Message& a, const Message& b) {
        return std::tie(a.tick, a.opens) < std::tie(b.tick, b.opens);
    });
    Bytes out = fileHead(kPatternPpq);
    std::int32_t last = 0;
    unsigned running = 0;
    for (Message message : mMessages) {
        if (runningStatus && (message.status & 0xF0) == 0x80) {
            message.status |= 0x10;
            message.data2 = 0;
        }
        putDelta(out, static_cast<std::uint32_t>(message.tick - last));
        last = message.tick;
        if (!runningStatus || message.status != running)
            out.push_back(message.status);
        running = message.status;
        out.push_back(message.data1);
        out.push_back(message.data2);
    }
    out.insert(out.end(), kTrackEnd.begin(), kTrackEnd.end());
    setChunkLength(out);
    return out;
}

using Random = std::mt19937;

unsigned below(Random& random, unsigned limit)
{
    return static_cast<unsigned>(random() % limit);
}

unsigned velocity(Random& random)
{
    return 40 + below(random, 88);
}

/// Hats on every step, kick, snare, and a ghost note here and there, each a little off the grid.
void drumStep(Score& score, Random& random, std::int32_t step, unsigned channel)
{
    const std::int32_t tick = step * kStep + static_cast<std::int32_t>(below(random, 5));
    score.note(channel, step % 4 == 2 ? 46 : 42, velocity(random), tick, 40);
    if (step % 8 == 0 || below(random, 8) == 0)
        score.note(channel, 36, velocity(random), tick, 50);
    if (step % 8 == 4 || below(random, 12) == 0)
        score.note(channel, 38, velocity(random), tick, 50);
}

void bandStep(Score& score, Random& random, std::int32_t step)
{
    const auto at = [&](unsigned spread) {
        return step * kStep + static_cast<std::int32_t>(below(random, spread));
    };
    drumStep(score, random, step, kDrums);
    if (step % 2 == 0)
        score.note(0, 28 + below(random, 24), velocity(random), at(8), 100);
    for (unsigned channel = 1; channel < 7; ++channel) {
        if (below(random, 6) != 0)
            continue;
        const std::int32_t length = kStep * static_cast<std::int32_t>(1 + below(random, 8)) - 7;
        const unsigned root = 40 + below(random, 40);
        for (unsigned third = 0; third < 3; ++third)
            score.note(channel, root + 4 * third, velocity(random), at(6), length);
    }
    if (below(random, 4) == 0)
        score.message(at(60), 0xB0 | below(random, 7), below(random, 2) == 0 ? 1 : 11,
                      below(random, 128));
    if (below(random, 6) == 0)
        score.message(at(60), 0xE1, below(random, 128), below(random, 128));
    if (below(random, 12) == 0)
        score.message(at(60), 0xB1, 64, below(random, 2) * 127);
}

InputFile build(const char* name, bool drumsOnly, std::int32_t steps)
{
    Random random(20240229);
    Score score;
    for (std::int32_t step = 0; step < steps; ++step) {
        if (drumsOnly)
            drumStep(score, random, step, kDrums);
        else
            bandStep(score, random, step);
    }
    Bytes bytes = score.file(!drumsOnly);
    return {name, std::move(bytes), score.notes()};
}

/// As many bars as come nearest to the size, judged by a probe.
InputFile makeFile(const char* name, bool drumsOnly, std::size_t size)
{
    constexpr std::int32_t kProbe = 64 * kStepsPerBar;
    const double bytesPerStep =
        static_cast<double>(build(name, drumsOnly, kProbe).bytes.size()) / kProbe;
    const double bars = static_cast<double>(size) / bytesPerStep / kStepsPerBar;
    return build(name, drumsOnly, static_cast<std::int32_t>(bars + 0.5) * kStepsPerBar);
}

MfxEvent makeNote(Random& random, std::int32_t time, std::uint32_t duration)
{
    MfxEvent event{};
    event.time = time;
    event.channel = static_cast<std::uint8_t>(below(random, 4));
    event.key = static_cast<std::uint8_t>(36 + below(random, 48));
    event.velocity = static_cast<std::uint8_t>(velocity(random));
    event.duration = duration;
    return event;
}

std::size_t skipNumber(std::span<const std::uint8_t> track, std::size_t& at)
{
    std::size_t value = 0;
    while (at < track.size()) {
        const std::uint8_t byte = track[at++];
        value = value << 7 | (byte & 0x7Fu);
        if (byte < 0x80)
            break;
    }
    return value;
}

std::size_t notesInTrack(std::span<const std::uint8_t> track)
{
    std::size_t notes = 0;
    unsigned status = 0;
    for (std::size_t at = 0; at < track.size();) {
        skipNumber(track, at);
        if (at < track.size() && track[at] >= 0x80)
            status = track[at++];
        if (status >= 0xF0) {
            at += status == 0xFF ? 1 : 0;
            const std::size_t length = skipNumber(track, at);
            at += length;
            continue;
        }
        if (status >> 4 == 9 && at + 1 < track.size() && track[at + 1] != 0)
            ++notes;
        at += status >> 4 == 0xC || status >> 4 == 0xD ? 1 : 2;
    }
    return notes;
}

} // namespace

std::vector<InputFile> makeFiles()
{
    return {makeFile("1KB", true, 1000), makeFile("100KB", false, 100'000),
            makeFile("10MB", false, 10'000'000)};
}

std::vector<MfxEvent> makeDensePattern(int bars)
{
    constexpr std::int32_t kSpacing = kPatternBar / kNotesPerBar;
    Random random(7);
    std::vector<MfxEvent> events;
    for (std::int32_t i = 0; i < bars * kNotesPerBar; ++i)
        events.push_back(makeNote(random, i * kSpacing, 2 + below(random, kSpacing - 2)));
    return events;
}

std::vector<MfxEvent> makeSparsePattern(int bars)
{
    Random random(7);
    const std::int32_t last = bars * kPatternBar - kPatternPpq;
    return {makeNote(random, 0, kPatternPpq), makeNote(random, last, kPatternPpq)};
}

Bytes fileHead(std::uint16_t ppq)
{
    const auto high = static_cast<std::uint8_t>(ppq >> 8);
    const auto low = static_cast<std::uint8_t>(ppq);
    // clang-format off
    return {'M', 'T', 'h', 'd', 0, 0, 0, 6, 0, 0, 0, 1, high, low,
            'M', 'T', 'r', 'k', 0, 0, 0, 0,
            0, 0xFF, 0x58, 4, 4, 2, 24, 8,
            0, 0xFF, 0x59, 2, 0, 0,
            0, 0xFF, 0x51, 3, 0x07, 0xA1, 0x20};
    // clang-format on
}

void setChunkLength(std::span<std::uint8_t> file)
{
    const std::size_t length = file.size() - kFileHeader - kChunkHeader;
    for (std::size_t i = 0; i < 4; ++i)
        file[kFileHeader + 4 + i] = static_cast<std::uint8_t>(length >> (24 - 8 * i));
}

std::size_t countNotes(std::span<const std::uint8_t> file)
{
    std::size_t notes = 0;
    for (std::size_t at = kFileHeader; at + kChunkHeader <= file.size();) {
        const std::size_t length = std::size_t{file[at + 4]} << 24 |
                                   std::size_t{file[at + 5]} << 16 |
                                   std::size_t{file[at + 6]} << 8 | file[at + 7];
        at += kChunkHeader;
        if (std::memcmp(&file[at - kChunkHeader], "MTrk", 4) != 0 || length > file.size() - at)
            return 0;
        notes += notesInTrack(file.subspan(at, length));
        at += length;
    }
    return notes;
}

} // namespace bench
