// Records, blocks and whole files.
#include "midi/MidiFile.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <new>

namespace Korvanel {

namespace {

/// A declared length is believed up to the first piece; beyond, the block grows with what arrives,
/// and is never ahead of it by more than the largest.
constexpr std::uint32_t kFirstPiece = 64 * 1024;
constexpr std::uint32_t kLargestPiece = 1024 * 1024;

struct CloseFile
{
    void operator()(std::FILE* file) const { std::fclose(file); }
};

using OwnedFile = std::unique_ptr<std::FILE, CloseFile>;

/// Reallocates the block with its guard. Bytes between the old and the new capacity are left as
/// they come.
bool reallocateBlock(_track* track, std::uint32_t size)
{
    void* moved = std::realloc(track->data, std::size_t{size} + kGuardBytes);
    if (moved == nullptr)
        return false;
    track->data = static_cast<unsigned char*>(moved);
    track->capacity = size;
    std::memset(track->data + size, 0, kGuardBytes);
    return true;
}

/// What a file is read from. Most streams say how many bytes came; one over a File says 1 for a
/// block that came whole and 0 for a torn one. The magic shows which it is: four bytes, or one
/// block.
class Source
{
public:
    explicit Source(InputStream& stream)
        : mStream(stream)
    {
    }

    /// The file's first four bytes. @return false when they are not the magic
    bool readMagic()
    {
        std::array<char, 4> raw{};
        mCountsBlocks = mStream.Read(static_cast<void*>(raw.data()), 4) == 1;
        return std::memcmp(raw.data(), "MThd", 4) == 0;
    }

    bool readTag(const char* tag)
    {
        std::array<char, 4> raw{};
        mStream.Read(static_cast<void*>(raw.data()), 4);
        return std::memcmp(raw.data(), tag, 4) == 0;
    }

    std::uint32_t readBigEndian(std::uint32_t bytes)
    {
        std::array<unsigned char, 4> raw{};
        mStream.Read(static_cast<void*>(raw.data()), bytes);
        std::uint32_t value = 0;
        for (std::uint32_t i = 0; i < bytes; ++i)
            value = value << 8 | raw[i];
        return value;
    }

    /// @return the bytes that came: fewer than `size` only when the stream has no more
    std::uint32_t read(unsigned char* to, std::uint32_t size)
    {
        // A torn block does not tell how many of its bytes came. Of one byte both counts are equal.
        const std::uint32_t step = mCountsBlocks ? 1 : size;
        std::uint32_t came = 0;
        while (came < size) {
            const std::uint32_t asked = std::min(step, size - came);
            const std::uint32_t count = mStream.Read(static_cast<void*>(to + came), asked);
            if (count == 0)
                break;
            came += std::min(count, asked);
        }
        return came;
    }

private:
    InputStream& mStream;
    bool mCountsBlocks = false;
};

unsigned char* putBigEndian(unsigned char* at, std::uint32_t value, int bytes)
{
    for (int shift = 8 * (bytes - 1); shift >= 0; shift -= 8)
        *at++ = static_cast<unsigned char>(value >> shift);
    return at;
}

unsigned char* putTag(unsigned char* at, const char* tag)
{
    std::memcpy(at, tag, 4);
    return at + 4;
}

/// Fills the block with up to `size` bytes, piece by piece as they arrive.
int readBlock(_track* track, Source& source, std::uint32_t size)
{
    do {
        const std::uint32_t had = track->length;
        const std::uint32_t piece =
            std::min(size - had, std::clamp(had, kFirstPiece, kLargestPiece));
        if (!reallocateBlock(track, had + piece))
            return kMfNoMemory;
        const std::uint32_t came = source.read(track->data + had, piece);
        track->length = had + came;
        if (came < piece)
            return reallocateBlock(track, track->length) ? kMfOk : kMfNoMemory;
    } while (track->length < size);
    return kMfOk;
}

int loadTracks(MIDIFILE* file, Source& source)
{
    _track* last = mf_last_track(file);
    for (int i = 0; i < file->ntracks; ++i) {
        auto* track = static_cast<_track*>(std::calloc(1, sizeof(_track)));
        if (track == nullptr)
            return kMfNoMemory;
        (last == nullptr ? file->tracks : last->next) = track;
        last = track;
        if (!source.readTag("MTrk"))
            return kMfBadData;
        const std::uint32_t size = source.readBigEndian(4);
        if (const int result = readBlock(track, source, size); result != kMfOk)
            return result;
    }
    return kMfOk;
}

void writeHeader(const MIDIFILE* file, OutputStream& stream)
{
    std::array<unsigned char, 14> header{};
    unsigned char* at = putBigEndian(putTag(header.data(), "MThd"), 6, 4);
    at = putBigEndian(at, file->format, 2);
    at = putBigEndian(at, file->ntracks, 2);
    putBigEndian(at, file->division, 2);
    stream.Write(static_cast<const void*>(header.data()), header.size());
}

bool holdsNote(const _track& track)
{
    short running = 0;
    Pkt pkt{};
    for (std::uint32_t pos = 0; pos < track.length;) {
        read_delta(track.data, pos);
        read_event(track.data, pos, pkt, running, nullptr, nullptr);
        if (pkt.IsNote())
            return true;
    }
    return false;
}

template <typename WriteTrack>
void forEachWrittenTrack(const MIDIFILE* file, WriteTrack writeTrack)
{
    const _track* track = file->tracks;
    for (int i = 0; i < file->ntracks && track != nullptr; ++i, track = track->next)
        writeTrack(*track);
}

} // namespace

void mf_init(MIDIFILE* file)
{
    *file = {1, 0, 96, nullptr};
}

_track* mf_add_track(MIDIFILE* file)
{
    auto* track = static_cast<_track*>(std::calloc(1, sizeof(_track)));
    if (track == nullptr)
        return nullptr;
    _track* last = mf_last_track(file);
    (last == nullptr ? file->tracks : last->next) = track;
    return track;
}

_track* mf_last_track(MIDIFILE* file)
{
    _track* track = file->tracks;
    while (track != nullptr && track->next != nullptr)
        track = track->next;
    return track;
}

int mf_add_tblk(_track* track, std::uint32_t size)
{
    auto* data = static_cast<unsigned char*>(std::malloc(std::size_t{size} + kGuardBytes));
    if (data == nullptr)
        return kMfNoMemory;
    std::free(track->data);
    std::memset(data + size, 0, kGuardBytes);
    track->data = data;
    track->capacity = size;
    track->length = std::min(track->length, size); // the readers stop there
    return kMfOk;
}

int mf_grow_tblk(_track* track, std::uint32_t size)
{
    if (track->capacity >= size)
        return kMfNoMemory;
    return reallocateBlock(track, size) ? kMfOk : kMfNoMemory;
}

void mf_trim_tblk(_track* track, std::uint32_t size)
{
    if (track->capacity > size && track->length <= size)
        reallocateBlock(track, size);
}

int copy_track(_track* dst, const _track* src)
{
    auto* copy = static_cast<unsigned char*>(std::malloc(std::size_t{src->length} + kGuardBytes));
    if (copy == nullptr)
        return kMfNoMemory;
    if (src->length > 0)
        std::memcpy(copy, src->data, src->length);
    std::memset(copy + src->length, 0, kGuardBytes);
    const std::uint32_t length = src->length; // src may be dst
    std::free(dst->data);
    dst->data = copy;
    dst->capacity = length;
    dst->length = length;
    return kMfOk;
}

_track* mf_last_netrack(MIDIFILE* file)
{
    if (file->tracks == nullptr)
        return nullptr;
    _track* found = file->tracks;
    for (_track* track = file->tracks->next; track != nullptr; track = track->next)
        if (holdsNote(*track))
            found = track;
    return found;
}

void mf_free(MIDIFILE* file)
{
    for (_track* track = file->tracks; track != nullptr;) {
        _track* next = track->next;
        std::free(track->data);
        std::free(track);
        track = next;
    }
    file->tracks = nullptr;
    file->ntracks = 0;
}

int mf_load(MIDIFILE* file, InputStream& stream)
{
    Source source(stream);
    if (!source.readMagic() || source.readBigEndian(4) != 6)
        return kMfBadData;
    file->format = static_cast<std::uint16_t>(source.readBigEndian(2));
    file->ntracks = static_cast<std::uint16_t>(source.readBigEndian(2));
    file->division = static_cast<std::uint16_t>(source.readBigEndian(2));
    return loadTracks(file, source);
}

int mf_load(MIDIFILE* file, const char* path)
{
    const OwnedFile opened(std::fopen(path, "rb"));
    if (opened == nullptr)
        return kMfCannotOpen;
    SimpleStream<std::FILE*> stream(opened.get());
    return mf_load(file, stream);
}

int mf_save(const MIDIFILE* file, OutputStream& stream)
{
    writeHeader(file, stream);
    forEachWrittenTrack(file, [&](const _track& track) {
        std::array<unsigned char, 8> header{};
        putBigEndian(putTag(header.data(), "MTrk"), track.length, 4);
        stream.Write(static_cast<const void*>(header.data()), header.size());
        if (track.length > 0) // an empty track may have no block at all
            stream.Write(static_cast<const void*>(track.data), track.length);
    });
    return kMfOk;
}

int mf_save(const MIDIFILE* file, const char* path)
{
    const OwnedFile opened(std::fopen(path, "wb"));
    if (opened == nullptr)
        return kMfOk; // as for every other failure to write
    SimpleStream<std::FILE*> stream(opened.get());
    writeHeader(file, stream);
    forEachWrittenTrack(file, [&](const _track& track) {
        stream.Write(static_cast<const void*>("MTrk"), 4);
        if (track.length > 0)
            stream.Write(static_cast<const void*>(track.data), track.length);
    });
    return kMfOk;
}

void write_ulong(std::uint32_t value, OutputStream& stream)
{
    std::array<unsigned char, 4> raw{};
    putBigEndian(raw.data(), value, 4);
    stream.Write(static_cast<const void*>(raw.data()), raw.size());
}

} // namespace Korvanel
