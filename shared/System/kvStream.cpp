#include "shared/System/kvStream.h"

#include "shared/System/kvSwap.h"

#include <algorithm>
#include <cstring>
#include <vector>

namespace Korvanel {

namespace {

constexpr std::uint32_t kStagingBytes = 1024;

/// A text of more bytes than this is read piece by piece, so that a false length costs little.
constexpr std::uint32_t kLargestBlindText = 64 * 1024;

template <typename Value>
bool readValue(InputStream& stream, Value& value)
{
    return stream.Read(static_cast<void*>(&value), sizeof value) == sizeof value;
}

template <typename Value>
bool writeValue(OutputStream& stream, const Value& value)
{
    return stream.Write(static_cast<const void*>(&value), sizeof value) == sizeof value;
}

template <typename Value>
Value valueOrZero(InputStream& stream)
{
    Value value{};
    return stream.Read(value) ? value : Value{};
}

/// Reads a signed value through the virtual reader of the unsigned type of its width.
template <typename Unsigned, typename Signed>
bool readSigned(InputStream& stream, Signed& value)
{
    Unsigned bits{};
    const bool whole = stream.Read(bits);
    value = static_cast<Signed>(bits);
    return whole;
}

/// Reads `length` bytes, in pieces that grow with what has arrived.
bool readPieces(InputStream& stream, std::vector<char>& bytes, std::uint32_t length)
{
    while (bytes.size() < length) {
        const auto had = static_cast<std::uint32_t>(bytes.size());
        const std::uint32_t piece = std::min(length - had, std::max(had, kLargestBlindText));
        bytes.resize(had + piece);
        if (stream.Read(static_cast<void*>(bytes.data() + had), piece) != piece)
            return false;
    }
    return true;
}

} // namespace

// InputStream -------------------------------------------------------------------------------------

bool InputStream::IsEOF()
{
    return false;
}

std::uint32_t InputStream::ReadArray(void* data, std::uint32_t count, std::uint32_t size)
{
    return Read(data, count * size);
}

bool InputStream::Read(unsigned char& value)
{
    return readValue(*this, value);
}

bool InputStream::Read(unsigned short& value)
{
    return readValue(*this, value);
}

bool InputStream::Read(std::uint32_t& value)
{
    return readValue(*this, value);
}

bool InputStream::Read(unsigned long long& value)
{
    return readValue(*this, value);
}

bool InputStream::Read(float& value)
{
    return readValue(*this, value);
}

bool InputStream::Read(double& value)
{
    return readValue(*this, value);
}

bool InputStream::Read(signed char& value)
{
    return readSigned<unsigned char>(*this, value);
}

bool InputStream::Read(short& value)
{
    return readSigned<unsigned short>(*this, value);
}

bool InputStream::Read(std::int32_t& value)
{
    return readSigned<std::uint32_t>(*this, value);
}

bool InputStream::Read(long long& value)
{
    return readSigned<unsigned long long>(*this, value);
}

signed char InputStream::ReadInt8()
{
    return valueOrZero<signed char>(*this);
}

short InputStream::ReadInt16()
{
    return valueOrZero<short>(*this);
}

std::int32_t InputStream::ReadInt32()
{
    return valueOrZero<std::int32_t>(*this);
}

long long InputStream::ReadInt64()
{
    return valueOrZero<long long>(*this);
}

unsigned char InputStream::ReadUInt8()
{
    return valueOrZero<unsigned char>(*this);
}

unsigned short InputStream::ReadUInt16()
{
    return valueOrZero<unsigned short>(*this);
}

std::uint32_t InputStream::ReadUInt32()
{
    return valueOrZero<std::uint32_t>(*this);
}

unsigned long long InputStream::ReadUInt64()
{
    return valueOrZero<unsigned long long>(*this);
}

float InputStream::ReadFloat32()
{
    return valueOrZero<float>(*this);
}

double InputStream::ReadFloat64()
{
    return valueOrZero<double>(*this);
}

String InputStream::ReadString()
{
    String text;
    Read(text);
    return text;
}

bool InputStream::Read(String& value)
{
    const auto length = static_cast<std::uint32_t>(ReadInt32());
    if (length == 0) {
        value = String();
        return true;
    }
    std::vector<char> bytes;
    if (!readPieces(*this, bytes, length))
        return false;
    bytes.push_back(0);
    value = String(bytes.data());
    return true;
}

// OutputStream ------------------------------------------------------------------------------------

std::uint32_t OutputStream::WriteArray(const void* data, std::uint32_t count, std::uint32_t size)
{
    return Write(data, count * size);
}

bool OutputStream::Write(unsigned char value)
{
    return writeValue(*this, value);
}

bool OutputStream::Write(unsigned short value)
{
    return writeValue(*this, value);
}

bool OutputStream::Write(std::uint32_t value)
{
    return writeValue(*this, value);
}

bool OutputStream::Write(unsigned long long value)
{
    return writeValue(*this, value);
}

bool OutputStream::Write(float value)
{
    return writeValue(*this, value);
}

bool OutputStream::Write(double value)
{
    return writeValue(*this, value);
}

bool OutputStream::Write(signed char value)
{
    return Write(static_cast<unsigned char>(value));
}

bool OutputStream::Write(short value)
{
    return Write(static_cast<unsigned short>(value));
}

bool OutputStream::Write(std::int32_t value)
{
    return Write(static_cast<std::uint32_t>(value));
}

bool OutputStream::Write(long long value)
{
    return Write(static_cast<unsigned long long>(value));
}

bool OutputStream::WriteInt8(signed char value)
{
    return Write(value);
}

bool OutputStream::WriteInt16(short value)
{
    return Write(value);
}

bool OutputStream::WriteInt32(std::int32_t value)
{
    return Write(value);
}

bool OutputStream::WriteInt64(long long value)
{
    return Write(value);
}

bool OutputStream::WriteUInt8(unsigned char value)
{
    return Write(value);
}

bool OutputStream::WriteUInt16(unsigned short value)
{
    return Write(value);
}

bool OutputStream::WriteUInt32(std::uint32_t value)
{
    return Write(value);
}

bool OutputStream::WriteUInt64(unsigned long long value)
{
    return Write(value);
}

bool OutputStream::WriteFloat32(float value)
{
    return Write(value);
}

bool OutputStream::WriteFloat64(double value)
{
    return Write(value);
}

// By value, as callers know its slot; a copy of a string is a count.
bool OutputStream::WriteString(String value) // NOLINT(performance-unnecessary-value-param)
{
    return Write(value);
}

bool OutputStream::Write(const String& value)
{
    const auto length = static_cast<std::uint32_t>(value.GetLength());
    if (!WriteInt32(static_cast<std::int32_t>(length)))
        return false;
    return length == 0 || Write(static_cast<const void*>(value.c_str()), length) == length;
}

// RandomAccess ------------------------------------------------------------------------------------

std::uint32_t RandomAccess::Tell()
{
    return Seek(0, 1);
}

bool RandomAccess::Skip(std::uint32_t count)
{
    const std::uint32_t before = Tell();
    return Seek(count, 1) - before == count;
}

// Arrays ------------------------------------------------------------------------------------------

std::uint32_t writeArray(OutputStream& stream, const void* data, std::uint32_t count,
                         std::uint32_t size)
{
    if (data == nullptr || count == 0 || size == 0)
        return 0;
    std::vector<unsigned char> staging(std::max(kStagingBytes, size));
    const auto* from = static_cast<const unsigned char*>(data);
    const std::uint32_t atOnce = std::max<std::uint32_t>(kStagingBytes / size, 1);
    std::uint32_t moved = 0;
    while (moved < count) {
        const std::uint32_t elements = std::min(count - moved, atOnce);
        const std::uint32_t bytes = elements * size;
        std::memcpy(staging.data(), from, bytes);
        OSSwapArray(staging.data(), elements, size);
        if (stream.Write(static_cast<const void*>(staging.data()), bytes) != bytes)
            break;
        from += bytes;
        moved += elements;
    }
    return moved;
}

std::uint32_t readArray(InputStream& stream, void* data, std::uint32_t count, std::uint32_t size)
{
    if (data == nullptr || count == 0 || size == 0)
        return 0;
    auto* to = static_cast<unsigned char*>(data);
    const std::uint32_t atOnce = std::max<std::uint32_t>(kStagingBytes / size, 1);
    std::uint32_t moved = 0;
    while (moved < count) {
        const std::uint32_t elements = std::min(count - moved, atOnce);
        const std::uint32_t bytes = elements * size;
        if (stream.Read(static_cast<void*>(to), bytes) != bytes)
            break;
        OSSwapArray(to, elements, size);
        to += bytes;
        moved += elements;
    }
    return moved;
}

} // namespace Korvanel
