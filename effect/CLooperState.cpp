// The state chunk. docs/formats/state-chunk.md lists its fields.
#include "effect/CLooper.h"
#include "shared/System/kvLog.h"
#include "shared/System/kvStream.h"

#include <algorithm>
#include <array>
#include <string>

using Korvanel::CMidiTrack;
using Korvanel::InputStream;
using Korvanel::OutputStream;
using Korvanel::ScopedLock;
using Korvanel::String;

namespace {

constexpr std::int32_t kVersion = 6;
constexpr std::int32_t kParameterBytes = 20;
constexpr std::uint8_t kKnownFlags = 7;
constexpr auto kRelaxed = std::memory_order_relaxed;

void writeText(OutputStream& stream, const String& text)
{
    stream.WriteInt32(text.GetLength());
    if (!text.IsEmpty())
        stream.Write(static_cast<const void*>(text.c_str()),
                     static_cast<std::uint32_t>(text.GetLength()));
}

/// Reads `count` bytes in small pieces, so that a false count costs no memory; stops where the
/// stream does.
template <typename Take>
void readPieces(InputStream& stream, std::int64_t count, Take take)
{
    std::array<char, 1024> piece{};
    while (count > 0) {
        const auto wanted =
            static_cast<std::uint32_t>(std::min<std::int64_t>(count, std::int64_t{piece.size()}));
        const std::uint32_t came = stream.Read(static_cast<void*>(piece.data()), wanted);
        take(piece.data(), came);
        if (came < wanted)
            return;
        count -= wanted;
    }
}

void discard(InputStream& stream, std::int64_t count)
{
    readPieces(stream, count, [](const char*, std::uint32_t) {});
}

std::string readText(InputStream& stream, std::int32_t length)
{
    std::string text;
    readPieces(stream, length,
               [&text](const char* bytes, std::uint32_t count) { text.append(bytes, count); });
    return text;
}

} // namespace

void CLooper::SaveTo(OutputStream& stream)
{
    DoSave(&stream, false);
}

void CLooper::LoadFrom(InputStream& stream)
{
    if (!DoLoad(&stream))
        Korvanel::IOLog("  the state's pattern is damaged\n");
}

void CLooper::DoSave(OutputStream* stream, bool)
{
    CMidiTrack pattern;
    String folder;
    String style;
    {
        const ScopedLock edit(mEdit);
        pattern = mSourceTrack;
        folder = mPatternsDir;
        style = mStyleName;
    }
    stream->WriteInt32(kVersion);
    writeText(*stream, folder);
    writeText(*stream, style);
    pattern.Save(*stream);
    stream->WriteInt32(mChannel);
    stream->WriteInt32(mPort);
    write_parameters(*stream);
    stream->WriteInt8(isThru() ? 1 : 0);
    stream->WriteInt8(static_cast<signed char>(tempoType()));
    stream->WriteInt16(static_cast<short>(mDnDRepeat.load(kRelaxed)));
}

bool CLooper::DoLoad(InputStream* stream)
{
    const std::int32_t version = stream->ReadInt32();
    if (version > 1) {
        // The folder that was saved is not used: patterns come from the installation that runs.
        discard(*stream, stream->ReadInt32());
        const std::int32_t styleLength = stream->ReadInt32();
        if (styleLength > 0)
            SetCurrentStyle(readText(*stream, styleLength).c_str());
        CMidiTrack pattern;
        if (pattern.Load(*stream, nullptr, nullptr) != 0)
            return false; // what follows cannot be found any more
        set_track(pattern);
        broadcast_to_listeners(&Listener::loaded);
    }
    if (version > 2) {
        const std::int32_t channel = stream->ReadInt32();
        const std::int32_t port = stream->ReadInt32();
        SetChPort(static_cast<std::int16_t>(channel), static_cast<std::int16_t>(port));
    }
    if (version > 3)
        read_parameters(*stream);
    if (version > 4)
        setThru(stream->ReadInt8() != 0);
    if (version > 5) {
        // Stored, not applied: the engine takes it when it is connected or told.
        const int type = stream->ReadInt8(); // NOLINT(bugprone-signed-char-misuse): a signed number
        mTempoType.store(type < 0 || type > 2 ? 1 : type, kRelaxed);
        setDnDRepeat(std::clamp<int>(stream->ReadInt16(), 1, 999));
    }
    return true;
}

void CLooper::write_parameters(OutputStream& stream) const
{
    stream.WriteInt32(kParameterBytes);
    stream.WriteInt32(mParams.veloPlus.load(kRelaxed));
    stream.WriteInt32(mParams.randomVeloMin.load(kRelaxed));
    stream.WriteInt32(mParams.randomVeloMax.load(kRelaxed));
    stream.WriteInt32(mParams.randomVeloStrength.load(kRelaxed));
    stream.WriteUInt32(mParams.flags.load(kRelaxed));
}

void CLooper::read_parameters(InputStream& stream)
{
    setVeloPlus(LooperParameters::kVeloPlus);
    setRandomVeloMin(LooperParameters::kRandomVeloMin);
    setRandomVeloMax(LooperParameters::kRandomVeloMax);
    setRandomVeloStrength(LooperParameters::kRandomVeloStrength);
    mParams.flags.store(LooperParameters::kFlags, kRelaxed);

    // A block that ends inside a number leaves those bytes to the fields behind it: it always has.
    const std::int32_t size = stream.ReadInt32();
    if (size >= 4)
        setVeloPlus(stream.ReadInt32());
    if (size >= 8)
        setRandomVeloMin(stream.ReadInt32());
    if (size >= 12)
        setRandomVeloMax(stream.ReadInt32());
    if (size >= 16)
        setRandomVeloStrength(stream.ReadInt32());
    if (size >= kParameterBytes)
        mParams.flags.store(static_cast<std::uint8_t>(stream.ReadUInt32() & kKnownFlags), kRelaxed);
    discard(stream, std::int64_t{size} - kParameterBytes);
}
