// Ours and the floor as file subjects.
#include "bench/FileSubject.h"
#include "bench/Floor.h"
#include "midi/CMidiTrack.h"
#include "shared/System/kvStream.h"

#include <algorithm>
#include <cstring>
#include <optional>

namespace bench {

namespace {

/// A StreamBuffer for a scope.
class OwnedBuffer
{
public:
    OwnedBuffer()
        : mBuffer(*new Korvanel::StreamBuffer)
    {
    }

    explicit OwnedBuffer(std::span<const std::uint8_t> fixed)
        : mBuffer(
              *new Korvanel::StreamBuffer(fixed.data(), static_cast<std::uint32_t>(fixed.size())))
    {
    }

    OwnedBuffer(const OwnedBuffer&) = delete;
    OwnedBuffer& operator=(const OwnedBuffer&) = delete;

    ~OwnedBuffer() { mBuffer.Release(); }

    Korvanel::StreamBuffer& operator*() { return mBuffer; }

private:
    Korvanel::StreamBuffer& mBuffer;
};

std::size_t countNoteRecords(std::span<const MfxEvent> events)
{
    return static_cast<std::size_t>(
        std::count_if(events.begin(), events.end(), [](const MfxEvent& e) { return e.isNote(); }));
}

/// Through streams over memory, as the effect loads and saves: a fresh track, a fresh buffer.
class Ours final : public FileSubject
{
public:
    const char* name() const override { return "ours"; }

    void read(std::span<const std::uint8_t> file) override
    {
        OwnedBuffer buffer(file);
        Korvanel::MemoryStream stream(*buffer);
        mTrack.emplace();
        mTrack->Load(stream, nullptr, nullptr);
    }

    void write() override
    {
        mOut.emplace();
        Korvanel::MemoryStream stream(**mOut);
        mTrack->Save(stream);
    }

    std::span<const std::uint8_t> written() override
    {
        return {static_cast<const std::uint8_t*>((**mOut).GetBuffer()), (**mOut).GetSize()};
    }

    std::size_t notes() const override { return countNoteRecords(mTrack->events); }

    std::span<const MfxEvent> events() const { return mTrack->events; }

private:
    std::optional<Korvanel::CMidiTrack> mTrack;
    std::optional<OwnedBuffer> mOut;
};

class Floor final : public FileSubject
{
public:
    const char* name() const override { return "floor"; }

    void read(std::span<const std::uint8_t> file) override
    {
        constexpr std::size_t kHeaders = 22;
        if (mRecords.size() < file.size() / 3) { // the first time only: the rest is on used memory
            mRecords.resize(file.size() / 3);
            mOut.resize(file.size() * 2);
        }
        mCount = floorRead(file.subspan(kHeaders), mRecords.data());
    }

    void write() override { mSize = floorWrite(events(), kPatternPpq, mOut.data()); }

    std::span<const std::uint8_t> written() override { return {mOut.data(), mSize}; }

    std::size_t notes() const override { return countNoteRecords(events()); }

    std::span<const MfxEvent> events() const { return {mRecords.data(), mCount}; }

private:
    std::vector<MfxEvent> mRecords;
    std::size_t mCount = 0;
    Bytes mOut;
    std::size_t mSize = 0;
};

} // namespace

std::unique_ptr<FileSubject> makeOurs()
{
    return std::make_unique<Ours>();
}

std::unique_ptr<FileSubject> makeFloor()
{
    return std::make_unique<Floor>();
}

std::string compareOursWithFloor(const InputFile& file)
{
    Ours ours;
    Floor floor;
    ours.read(file.bytes);
    floor.read(file.bytes);
    const auto a = ours.events();
    const auto b = floor.events();
    if (a.size() != b.size() || std::memcmp(a.data(), b.data(), a.size_bytes()) != 0)
        return file.name + ": ours and the floor read different records";
    ours.write();
    floor.write();
    if (!std::ranges::equal(ours.written(), floor.written()))
        return file.name + ": ours and the floor write different bytes";
    return {};
}

} // namespace bench
