#include "host/cli/StateDump.h"

#include "host/cli/PatternFile.h"
#include "midi/MidiFile.h"
#include "shared/System/kvStream.h"

#include <algorithm>
#include <cstdint>

namespace {

constexpr int kNewestVersion = 6;
constexpr long long kParameterBytes = 20;

/// Ends the reading.
struct Damage
{
    StateProblem problem;
};

class StateReader
{
public:
    explicit StateReader(const std::string& chunk)
        : mChunk(chunk)
    {
    }

    StateDump read();

private:
    void readFields();
    void readParameters();
    void readPattern();
    void readTempoType();
    void readRepeat();

    void take(const char* name, std::size_t bytes)
    {
        if (mChunk.size() - mAt < bytes)
            throw Damage{{mAt, "the chunk ends inside " + std::string(name)}};
        mAt += bytes;
    }

    template <typename Number>
    long long number(const char* name)
    {
        const std::size_t from = mAt;
        take(name, sizeof(Number));
        std::uint64_t value = 0;
        for (std::size_t i = sizeof(Number); i-- > 0;)
            value = value << 8 | static_cast<unsigned char>(mChunk[from + i]);
        constexpr int unused = 64 - 8 * static_cast<int>(sizeof(Number));
        const auto signedValue = static_cast<std::int64_t>(value << unused) >> unused;
        mDump.fields.push_back({name, from, sizeof(Number), signedValue});
        return signedValue;
    }

    void text(const char* lengthName, const char* name)
    {
        const std::size_t at = mAt;
        const long long length = number<std::int32_t>(lengthName);
        if (length < 0)
            note(at, std::string(lengthName) + " is negative and counts as 0");
        if (length <= 0)
            return;
        const std::size_t from = mAt;
        take(name, static_cast<std::size_t>(length));
        mDump.fields.push_back(
            {name, from, mAt - from, mChunk.substr(from, static_cast<std::size_t>(length))});
    }

    void note(std::size_t offset, std::string what)
    {
        mDump.problems.push_back({offset, std::move(what)});
    }

    const std::string& mChunk;
    std::size_t mAt = 0;
    StateDump mDump;
};

StateDump StateReader::read()
{
    try {
        readFields();
        if (mAt < mChunk.size())
            note(mAt, std::to_string(mChunk.size() - mAt) + " bytes follow that nobody reads");
    } catch (const Damage& damage) {
        mDump.problems.push_back(damage.problem);
    }
    return std::move(mDump);
}

void StateReader::readFields()
{
    const long long version = number<std::int32_t>("version");
    if (version < 1 || version > kNewestVersion)
        note(0, "no looper of this time writes version " + std::to_string(version));
    if (version > 1) {
        text("folder length", "folder");
        text("style length", "style");
        readPattern();
    }
    if (version > 2) {
        number<std::int32_t>("channel");
        number<std::int32_t>("port");
    }
    if (version > 3)
        readParameters();
    if (version > 4)
        number<std::int8_t>("thru");
    if (version > 5) {
        readTempoType();
        readRepeat();
    }
}

void StateReader::readPattern()
{
    const Korvanel::OwnedStreamBuffer buffer(new Korvanel::StreamBuffer(
        mChunk.data() + mAt, static_cast<std::uint32_t>(mChunk.size() - mAt)));
    Korvanel::MemoryStream stream(*buffer);
    Korvanel::MIDIFILE file{};
    Korvanel::mf_init(&file);
    std::string what;
    try {
        if (Korvanel::mf_load(&file, stream) != Korvanel::kMfOk)
            what = "the pattern is no MIDI file: the effect stops reading here";
    } catch (const Korvanel::StreamBufferException&) {
        what = "the chunk ends inside the pattern";
    }
    const std::size_t bytes = stream.Tell();
    Korvanel::CMidiTrack track;
    if (what.empty())
        track.LoadMidiFile(file);
    Korvanel::mf_free(&file);
    if (!what.empty())
        throw Damage{{mAt, what}};
    const std::string name = fullName(track);
    mDump.fields.push_back({"pattern", mAt, bytes,
                            (name.empty() ? "" : "\"" + name + "\", ") +
                                std::to_string(track.numberOfBars()) + " bars of " +
                                std::to_string(track.numerator) + "/" +
                                std::to_string(track.denominator) + ", " +
                                std::to_string(track.events.size()) + " events"});
    mAt += bytes;
}

void StateReader::readParameters()
{
    const std::size_t at = mAt;
    const long long size = number<std::int32_t>("parameter bytes");
    if (size < kParameterBytes && size % 4 != 0)
        note(at, "a block of " + std::to_string(size) +
                     " bytes ends inside a number: what follows is read from the wrong place");
    const char* const names[] = {"velocity", "random minimum", "random maximum", "random strength"};
    long long needed = 4;
    for (const char* name : names) {
        if (size >= needed)
            number<std::int32_t>(name);
        needed += 4;
    }
    if (size >= kParameterBytes)
        number<std::int32_t>("flags");
    if (size > kParameterBytes)
        take("the rest of the parameter block", static_cast<std::size_t>(size - kParameterBytes));
}

void StateReader::readTempoType()
{
    const std::size_t at = mAt;
    if (const long long type = number<std::int8_t>("tempo type"); type < 0 || type > 2)
        note(at, "there is no such tempo type; it counts as 1");
}

void StateReader::readRepeat()
{
    const std::size_t at = mAt;
    if (const long long repeat = number<std::int16_t>("drag repeat"); repeat < 1 || repeat > 999)
        note(at, "counts as " + std::to_string(std::clamp(repeat, 1LL, 999LL)));
}

} // namespace

StateDump dumpState(const std::string& chunk)
{
    return StateReader(chunk).read();
}
