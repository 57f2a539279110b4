// Callers compiled elsewhere know the order of the virtual operations only. The mirrors declare
// that order independently; the probes tell, by their signatures, which operation was called.
#include "shared/System/kvStream.h"
#include "tests/support/Slots.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

using namespace Korvanel;

namespace {

using Calls = std::vector<std::string>;

struct MirrorInput
{
    virtual bool atEnd() = 0;
    virtual std::uint32_t bytes(void*, std::uint32_t) = 0;
    virtual std::uint32_t array(void*, std::uint32_t, std::uint32_t) = 0;
    // A reference is passed as a pointer.
    virtual bool toUInt8(void*) = 0;
    virtual bool toUInt16(void*) = 0;
    virtual bool toUInt32(void*) = 0;
    virtual bool toUInt64(void*) = 0;
    virtual bool toFloat32(void*) = 0;
    virtual bool toFloat64(void*) = 0;
    virtual bool toInt8(void*) = 0;
    virtual bool toInt16(void*) = 0;
    virtual bool toInt32(void*) = 0;
    virtual bool toInt64(void*) = 0;
    virtual signed char int8() = 0;
    virtual short int16() = 0;
    virtual std::int32_t int32() = 0;
    virtual long long int64() = 0;
    virtual unsigned char uInt8() = 0;
    virtual unsigned short uInt16() = 0;
    virtual std::uint32_t uInt32() = 0;
    virtual unsigned long long uInt64() = 0;
    virtual float float32() = 0;
    virtual double float64() = 0;
    virtual String text() = 0;
    virtual bool toText(void*) = 0;

protected:
    ~MirrorInput() = default;
};

struct InputProbe final : InputStream
{
    bool IsEOF() override { return said("IsEOF"); }

    std::uint32_t Read(void*, std::uint32_t) override { return said("Read(bytes)"); }

    std::uint32_t ReadArray(void*, std::uint32_t, std::uint32_t) override
    {
        return said("ReadArray");
    }

    bool Read(unsigned char&) override { return said("Read(UInt8)"); }

    bool Read(unsigned short&) override { return said("Read(UInt16)"); }

    bool Read(std::uint32_t&) override { return said("Read(UInt32)"); }

    bool Read(unsigned long long&) override { return said("Read(UInt64)"); }

    bool Read(float&) override { return said("Read(Float32)"); }

    bool Read(double&) override { return said("Read(Float64)"); }

    bool Read(signed char&) override { return said("Read(Int8)"); }

    bool Read(short&) override { return said("Read(Int16)"); }

    bool Read(std::int32_t&) override { return said("Read(Int32)"); }

    bool Read(long long&) override { return said("Read(Int64)"); }

    signed char ReadInt8() override { return said("ReadInt8"); }

    short ReadInt16() override { return said("ReadInt16"); }

    std::int32_t ReadInt32() override { return said("ReadInt32"); }

    long long ReadInt64() override { return said("ReadInt64"); }

    unsigned char ReadUInt8() override { return said("ReadUInt8"); }

    unsigned short ReadUInt16() override { return said("ReadUInt16"); }

    std::uint32_t ReadUInt32() override { return said("ReadUInt32"); }

    unsigned long long ReadUInt64() override { return said("ReadUInt64"); }

    float ReadFloat32() override { return said("ReadFloat32"); }

    double ReadFloat64() override { return said("ReadFloat64"); }

    String ReadString() override { return said("ReadString") ? String() : String(); }

    bool Read(String&) override { return said("Read(String)"); }

    bool said(const char* name)
    {
        calls.emplace_back(name);
        return true;
    }

    Calls calls;
};

struct MirrorOutput
{
    virtual std::uint32_t bytes(const void*, std::uint32_t) = 0;
    virtual std::uint32_t array(const void*, std::uint32_t, std::uint32_t) = 0;
    virtual bool fromUInt8(unsigned char) = 0;
    virtual bool fromUInt16(unsigned short) = 0;
    virtual bool fromUInt32(std::uint32_t) = 0;
    virtual bool fromUInt64(unsigned long long) = 0;
    virtual bool fromFloat32(float) = 0;
    virtual bool fromFloat64(double) = 0;
    virtual bool fromInt8(signed char) = 0;
    virtual bool fromInt16(short) = 0;
    virtual bool fromInt32(std::int32_t) = 0;
    virtual bool fromInt64(long long) = 0;
    virtual bool int8(signed char) = 0;
    virtual bool int16(short) = 0;
    virtual bool int32(std::int32_t) = 0;
    virtual bool int64(long long) = 0;
    virtual bool uInt8(unsigned char) = 0;
    virtual bool uInt16(unsigned short) = 0;
    virtual bool uInt32(std::uint32_t) = 0;
    virtual bool uInt64(unsigned long long) = 0;
    virtual bool float32(float) = 0;
    virtual bool float64(double) = 0;
    virtual bool text(String) = 0;
    virtual bool fromText(const void*) = 0;

protected:
    ~MirrorOutput() = default;
};

struct OutputProbe final : OutputStream
{
    std::uint32_t Write(const void*, std::uint32_t) override { return said("Write(bytes)"); }

    std::uint32_t WriteArray(const void*, std::uint32_t, std::uint32_t) override
    {
        return said("WriteArray");
    }

    bool Write(unsigned char) override { return said("Write(UInt8)"); }

    bool Write(unsigned short) override { return said("Write(UInt16)"); }

    bool Write(std::uint32_t) override { return said("Write(UInt32)"); }

    bool Write(unsigned long long) override { return said("Write(UInt64)"); }

    bool Write(float) override { return said("Write(Float32)"); }

    bool Write(double) override { return said("Write(Float64)"); }

    bool Write(signed char) override { return said("Write(Int8)"); }

    bool Write(short) override { return said("Write(Int16)"); }

    bool Write(std::int32_t) override { return said("Write(Int32)"); }

    bool Write(long long) override { return said("Write(Int64)"); }

    bool WriteInt8(signed char) override { return said("WriteInt8"); }

    bool WriteInt16(short) override { return said("WriteInt16"); }

    bool WriteInt32(std::int32_t) override { return said("WriteInt32"); }

    bool WriteInt64(long long) override { return said("WriteInt64"); }

    bool WriteUInt8(unsigned char) override { return said("WriteUInt8"); }

    bool WriteUInt16(unsigned short) override { return said("WriteUInt16"); }

    bool WriteUInt32(std::uint32_t) override { return said("WriteUInt32"); }

    bool WriteUInt64(unsigned long long) override { return said("WriteUInt64"); }

    bool WriteFloat32(float) override { return said("WriteFloat32"); }

    bool WriteFloat64(double) override { return said("WriteFloat64"); }

    bool WriteString(String) override { return said("WriteString"); }

    bool Write(const String&) override { return said("Write(String)"); }

    bool said(const char* name)
    {
        calls.emplace_back(name);
        return true;
    }

    Calls calls;
};

struct MirrorRandomAccess
{
    virtual std::uint32_t seek(std::uint32_t, int) = 0;
    virtual std::uint32_t tell() = 0;
    virtual bool skip(std::uint32_t) = 0;
    virtual std::uint32_t endHere() = 0;

protected:
    ~MirrorRandomAccess() = default;
};

} // namespace

TEST(StreamSlots, AnInputStreamsOperationsStandInTheirOrder)
{
    InputProbe probe;
    auto& slots = through<MirrorInput>(static_cast<InputStream*>(&probe));

    slots.atEnd();
    slots.bytes(nullptr, 0);
    slots.array(nullptr, 0, 0);
    slots.toUInt8(nullptr);
    slots.toUInt16(nullptr);
    slots.toUInt32(nullptr);
    slots.toUInt64(nullptr);
    slots.toFloat32(nullptr);
    slots.toFloat64(nullptr);
    slots.toInt8(nullptr);
    slots.toInt16(nullptr);
    slots.toInt32(nullptr);
    slots.toInt64(nullptr);
    slots.int8();
    slots.int16();
    slots.int32();
    slots.int64();
    slots.uInt8();
    slots.uInt16();
    slots.uInt32();
    slots.uInt64();
    slots.float32();
    slots.float64();
    slots.text();
    slots.toText(nullptr);

    EXPECT_EQ(
        probe.calls,
        (Calls{"IsEOF",        "Read(bytes)",  "ReadArray",     "Read(UInt8)",   "Read(UInt16)",
               "Read(UInt32)", "Read(UInt64)", "Read(Float32)", "Read(Float64)", "Read(Int8)",
               "Read(Int16)",  "Read(Int32)",  "Read(Int64)",   "ReadInt8",      "ReadInt16",
               "ReadInt32",    "ReadInt64",    "ReadUInt8",     "ReadUInt16",    "ReadUInt32",
               "ReadUInt64",   "ReadFloat32",  "ReadFloat64",   "ReadString",    "Read(String)"}));
}

TEST(StreamSlots, AnOutputStreamsOperationsStandInTheirOrder)
{
    OutputProbe probe;
    auto& slots = through<MirrorOutput>(static_cast<OutputStream*>(&probe));
    const String empty;

    slots.bytes(nullptr, 0);
    slots.array(nullptr, 0, 0);
    slots.fromUInt8(0);
    slots.fromUInt16(0);
    slots.fromUInt32(0);
    slots.fromUInt64(0);
    slots.fromFloat32(0);
    slots.fromFloat64(0);
    slots.fromInt8(0);
    slots.fromInt16(0);
    slots.fromInt32(0);
    slots.fromInt64(0);
    slots.int8(0);
    slots.int16(0);
    slots.int32(0);
    slots.int64(0);
    slots.uInt8(0);
    slots.uInt16(0);
    slots.uInt32(0);
    slots.uInt64(0);
    slots.float32(0);
    slots.float64(0);
    slots.text({});
    slots.fromText(&empty);

    EXPECT_EQ(probe.calls,
              (Calls{"Write(bytes)",  "WriteArray",    "Write(UInt8)",   "Write(UInt16)",
                     "Write(UInt32)", "Write(UInt64)", "Write(Float32)", "Write(Float64)",
                     "Write(Int8)",   "Write(Int16)",  "Write(Int32)",   "Write(Int64)",
                     "WriteInt8",     "WriteInt16",    "WriteInt32",     "WriteInt64",
                     "WriteUInt8",    "WriteUInt16",   "WriteUInt32",    "WriteUInt64",
                     "WriteFloat32",  "WriteFloat64",  "WriteString",    "Write(String)"}));
}

TEST(StreamSlots, ARandomAccessStreamsOperationsStandInTheirOrder)
{
    auto* buffer = new StreamBuffer;
    buffer->Write("abcdef", 6);
    MemoryStream stream(*buffer);
    auto& slots = through<MirrorRandomAccess>(static_cast<RandomAccess*>(&stream));

    EXPECT_EQ(slots.seek(1, 0), 1u);
    EXPECT_EQ(slots.tell(), 1u);
    EXPECT_TRUE(slots.skip(2));
    EXPECT_EQ(slots.endHere(), 3u);
    EXPECT_EQ(buffer->GetSize(), 3u);
    buffer->Release();
}
