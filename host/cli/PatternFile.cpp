#include "host/cli/PatternFile.h"

#include "host/cli/CommandError.h"
#include "midi/MidiFile.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <memory>
#include <system_error>

namespace {

struct CloseFile
{
    void operator()(std::FILE* file) const { std::fclose(file); }
};

struct Record
{
    Record() { Korvanel::mf_init(&file); }

    ~Record() { Korvanel::mf_free(&file); }

    Record(const Record&) = delete;
    Record& operator=(const Record&) = delete;

    Korvanel::MIDIFILE file{};
};

[[noreturn]] void refuse(const std::string& path, const std::string& why)
{
    throw CommandError(ExitCode::BadPattern, path + ": " + why);
}

/// What made the reader refuse the data, found out from the bytes themselves.
std::string whyRefused(std::FILE* file)
{
    unsigned char head[14] = {};
    std::rewind(file);
    const std::size_t came = std::fread(head, 1, sizeof head, file);
    if (came < 4 || std::memcmp(head, "MThd", 4) != 0)
        return "is not a MIDI file (it does not begin with MThd)";
    const unsigned length = static_cast<unsigned>(head[4]) << 24 |
                            static_cast<unsigned>(head[5]) << 16 |
                            static_cast<unsigned>(head[6]) << 8 | head[7];
    if (came < 8 || length != 6)
        return "has a header of " + std::to_string(length) + " bytes; only 6 are understood";
    return "is damaged: a track does not begin with MTrk, or the file ends too early";
}

} // namespace

PatternFile readPatternFile(const std::string& path)
{
    std::error_code error;
    if (std::filesystem::is_directory(path, error))
        refuse(path, "is a folder, not a pattern");
    const std::unique_ptr<std::FILE, CloseFile> opened(std::fopen(path.c_str(), "rb"));
    if (opened == nullptr)
        refuse(path, errno == ENOENT ? "does not exist" : std::strerror(errno));

    Record record;
    Korvanel::SimpleStream<std::FILE*> stream(opened.get());
    const int result = Korvanel::mf_load(&record.file, stream);
    if (result == Korvanel::kMfNoMemory)
        refuse(path, "is too large for this machine's memory");
    if (result != Korvanel::kMfOk)
        refuse(path, whyRefused(opened.get()));

    PatternFile read{path, record.file.format, record.file.ntracks, {}};
    read.pattern.LoadMidiFile(record.file);
    read.pattern.updateKeysStat();
    if (read.pattern.ticksPerQuarter == 0)
        refuse(path, "is damaged: it counts no ticks in a quarter note");
    return read;
}

PatternFile readPlayablePattern(const std::string& path)
{
    PatternFile read = readPatternFile(path);
    if (read.pattern.GetLen() == 0)
        refuse(path, "has no notes to play");
    if (read.pattern.barLength() < 1)
        refuse(path, "has a meter that makes no bar");
    return read;
}

std::string fullName(const Korvanel::CMidiTrack& pattern)
{
    std::string name = pattern.name.exists() ? pattern.name.c_str() : "";
    if (pattern.subName.exists())
        name += std::string("/") + pattern.subName.c_str();
    return name;
}
