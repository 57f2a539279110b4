/// Byte streams: everything that the system keeps or exchanges (state chunks, pattern files,
/// volumes, dragged data) passes through these interfaces.
///
/// Numbers lie in a stream exactly as they lie in memory: least significant byte first, floating
/// point as IEEE 754. A text is its length in bytes as a 32-bit number and then its bytes, without
/// a terminator.
///
/// A stream reports failure by its result, false or a short count; only a stream over a
/// StreamBuffer throws. Thread: a stream belongs to one thread at a time.
#pragma once
#include "shared/System/kvString.h"

#include <cstdint>

namespace Korvanel {

class InputStream
{
public:
    /// True when no byte is left. A stream that cannot tell says false.
    virtual bool IsEOF();
    /// Reads up to `size` bytes. @return the bytes read
    virtual std::uint32_t Read(void* data, std::uint32_t size) = 0;
    /// count x size bytes in one raw read. @return what that read returned
    virtual std::uint32_t ReadArray(void* data, std::uint32_t count, std::uint32_t size);

    // True when the whole value arrived; otherwise the value is undefined.
    virtual bool Read(unsigned char& value);
    virtual bool Read(unsigned short& value);
    virtual bool Read(std::uint32_t& value);
    virtual bool Read(unsigned long long& value);
    virtual bool Read(float& value);
    virtual bool Read(double& value);
    virtual bool Read(signed char& value);
    virtual bool Read(short& value);
    virtual bool Read(std::int32_t& value);
    virtual bool Read(long long& value);

    // The value, or 0 when it did not arrive.
    virtual signed char ReadInt8();
    virtual short ReadInt16();
    virtual std::int32_t ReadInt32();
    virtual long long ReadInt64();
    virtual unsigned char ReadUInt8();
    virtual unsigned short ReadUInt16();
    virtual std::uint32_t ReadUInt32();
    virtual unsigned long long ReadUInt64();
    virtual float ReadFloat32();
    virtual double ReadFloat64();

    virtual String ReadString(); ///< empty when the text did not arrive whole
    /// True when the text arrived whole, or its length was 0 or missing (then it is empty);
    /// otherwise `value` is left as it was. A text is cut at its first NUL. A length that the
    /// stream cannot supply costs no more memory than what it does supply, and a small constant.
    virtual bool Read(String& value);

protected:
    ~InputStream() = default;
};

class OutputStream
{
public:
    /// Writes `size` bytes. @return the bytes written
    virtual std::uint32_t Write(const void* data, std::uint32_t size) = 0;
    /// count x size bytes in one raw write. @return what that write returned
    virtual std::uint32_t WriteArray(const void* data, std::uint32_t count, std::uint32_t size);

    // True when the whole value was written.
    virtual bool Write(unsigned char value);
    virtual bool Write(unsigned short value);
    virtual bool Write(std::uint32_t value);
    virtual bool Write(unsigned long long value);
    virtual bool Write(float value);
    virtual bool Write(double value);
    virtual bool Write(signed char value);
    virtual bool Write(short value);
    virtual bool Write(std::int32_t value);
    virtual bool Write(long long value);

    virtual bool WriteInt8(signed char value);
    virtual bool WriteInt16(short value);
    virtual bool WriteInt32(std::int32_t value);
    virtual bool WriteInt64(long long value);
    virtual bool WriteUInt8(unsigned char value);
    virtual bool WriteUInt16(unsigned short value);
    virtual bool WriteUInt32(std::uint32_t value);
    virtual bool WriteUInt64(unsigned long long value);
    virtual bool WriteFloat32(float value);
    virtual bool WriteFloat64(double value);

    virtual bool WriteString(String value);
    virtual bool Write(const String& value);

protected:
    ~OutputStream() = default;
};

class Stream : public InputStream, public OutputStream
{
protected:
    ~Stream() = default;
};

/// A position in a stream. Offsets and positions are bytes from the start.
class RandomAccess
{
public:
    /// Moves the position. @param whence  1 from the position, 2 from the end, anything else from
    /// the start
    /// @return the new position
    virtual std::uint32_t Seek(std::uint32_t offset, int whence) = 0;
    virtual std::uint32_t Tell();
    /// True when the position moved by exactly `count`.
    virtual bool Skip(std::uint32_t count);
    /// Makes the position the end. @return the size
    virtual std::uint32_t EndAtPos() = 0;

protected:
    ~RandomAccess() = default;
};

class InputRandomAccessStream : public InputStream, public virtual RandomAccess
{
protected:
    ~InputRandomAccessStream() = default;
};

class OutputRandomAccessStream : public OutputStream, public virtual RandomAccess
{
protected:
    ~OutputRandomAccessStream() = default;
};

/// Arrays whose elements of 2, 3, 4 or 8 bytes lie most significant byte first in the stream;
/// elements of other sizes pass unchanged. The transfer stops at the first raw call that fails.
/// @return the elements moved; 0 for null, no elements or a size of 0
std::uint32_t writeArray(OutputStream& stream, const void* data, std::uint32_t count,
                         std::uint32_t size);
std::uint32_t readArray(InputStream& stream, void* data, std::uint32_t count, std::uint32_t size);

} // namespace Korvanel

#include "shared/System/kvFile.h"
#include "shared/System/kvMemoryStreams.h"
#include "shared/System/kvStreamBuffer.h"
