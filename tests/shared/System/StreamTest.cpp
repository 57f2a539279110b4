#include "shared/System/kvStream.h"
#include "tests/support/Folders.h"
#include "tests/support/Guards.h"
#include "tests/support/MemoryLimit.h"

#include <gtest/gtest.h>

#include <array>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <unistd.h>
#include <vector>

using namespace Korvanel;

namespace {

using Buffer = OwnedStreamBuffer;

Buffer growable()
{
    return Buffer(new StreamBuffer);
}

std::vector<int> bytesOf(const StreamBuffer& buffer)
{
    const auto* data = static_cast<const unsigned char*>(buffer.GetBuffer());
    return {data, data + buffer.GetSize()};
}

std::string temporary()
{
    std::string path = std::filesystem::temp_directory_path() / "kv-stream-XXXXXX";
    ::close(::mkstemp(path.data()));
    return path;
}

} // namespace

TEST(OutputStream, NumbersLieLeastSignificantByteFirst)
{
    const Buffer buffer = growable();
    MemoryStream stream(*buffer);
    EXPECT_TRUE(stream.Write(static_cast<unsigned short>(0x1234)));
    EXPECT_TRUE(stream.WriteInt32(-2));
    EXPECT_EQ(bytesOf(*buffer), (std::vector<int>{0x34, 0x12, 0xFE, 0xFF, 0xFF, 0xFF}));
}

TEST(OutputStream, EveryWidthReadsBackAsItWasWritten)
{
    stringStream out;
    out.WriteInt8(-8);
    out.WriteInt16(-1600);
    out.WriteInt32(-320000);
    out.WriteInt64(-6400000000LL);
    out.WriteUInt8(200);
    out.WriteUInt16(60000);
    out.WriteUInt32(4000000000u);
    out.WriteUInt64(1ULL << 63);
    out.WriteFloat32(0.5f);
    out.WriteFloat64(-0.25);
    stringStream in(out.text());
    EXPECT_EQ(in.ReadInt8(), -8);
    EXPECT_EQ(in.ReadInt16(), -1600);
    EXPECT_EQ(in.ReadInt32(), -320000);
    EXPECT_EQ(in.ReadInt64(), -6400000000LL);
    EXPECT_EQ(in.ReadUInt8(), 200);
    EXPECT_EQ(in.ReadUInt16(), 60000);
    EXPECT_EQ(in.ReadUInt32(), 4000000000u);
    EXPECT_EQ(in.ReadUInt64(), 1ULL << 63);
    EXPECT_EQ(in.ReadFloat32(), 0.5f);
    EXPECT_EQ(in.ReadFloat64(), -0.25);
    EXPECT_TRUE(in.IsEOF());
}

TEST(InputStream, AMissingNumberReadsAsZero)
{
    stringStream in("ab");
    EXPECT_EQ(in.ReadInt32(), 0);
    std::int32_t value = 0;
    EXPECT_FALSE(in.Read(value));
}

TEST(OutputStream, ATextIsItsLengthAndItsBytes)
{
    const Buffer buffer = growable();
    MemoryStream stream(*buffer);
    EXPECT_TRUE(stream.Write(String("ab")));
    EXPECT_TRUE(stream.WriteString(String()));
    EXPECT_EQ(bytesOf(*buffer), (std::vector<int>{2, 0, 0, 0, 'a', 'b', 0, 0, 0, 0}));
}

TEST(InputStream, ATextThatIsCutShortLeavesTheOldOne)
{
    stringStream in(std::string("\5\0\0\0abc", 7));
    String text("old");
    EXPECT_FALSE(in.Read(text));
    EXPECT_STREQ(text.c_str(), "old");
}

TEST(InputStream, AMissingLengthReadsAsTheEmptyText)
{
    stringStream in;
    String text("old");
    EXPECT_TRUE(in.Read(text));
    EXPECT_TRUE(text.IsEmpty());
}

TEST(InputStream, AnEmbeddedNulCutsTheText)
{
    stringStream out;
    out.Write(String("a\0b", 3));
    stringStream in(out.text());
    EXPECT_STREQ(in.ReadString().c_str(), "a");
    EXPECT_TRUE(in.IsEOF());
}

TEST(InputStream, AFalseTextLengthCostsLittle)
{
    stringStream in(std::string("\xFF\xFF\xFF\x7F", 4) + "abc");
    String text("old");
    const AllocationGuard guard;
    EXPECT_FALSE(in.Read(text));
    EXPECT_LE(guard.largest(), 64u * 1024);
    EXPECT_STREQ(text.c_str(), "old");
}

TEST(OutputStream, ArraysOfTheStreamAreNotSwapped)
{
    const std::array<unsigned short, 2> values{0x1234, 0x5678};
    stringStream stream;
    EXPECT_EQ(stream.WriteArray(values.data(), 2, 2), 4u);
    EXPECT_EQ(stream.text(), "\x34\x12\x78\x56");
}

TEST(WriteArray, ElementsLieMostSignificantByteFirst)
{
    const unsigned short value = 0x1234;
    stringStream stream;
    EXPECT_EQ(writeArray(stream, &value, 1, 2), 1u);
    EXPECT_EQ(stream.text(), "\x12\x34");
}

TEST(WriteArray, ReadArrayUndoesIt)
{
    for (const std::uint32_t size : {1u, 2u, 3u, 4u, 5u, 8u, 1000u, 1500u}) {
        std::vector<unsigned char> data(size * 700);
        for (std::size_t i = 0; i < data.size(); ++i)
            data[i] = static_cast<unsigned char>(i * 7);
        stringStream out;
        EXPECT_EQ(writeArray(out, data.data(), 700, size), 700u);
        std::vector<unsigned char> read(data.size());
        stringStream in(out.text());
        EXPECT_EQ(readArray(in, read.data(), 700, size), 700u);
        EXPECT_EQ(read, data) << "elements of " << size;
    }
}

TEST(WriteArray, NothingMovesWithoutDataElementsOrSize)
{
    int value = 1;
    stringStream stream;
    EXPECT_EQ(writeArray(stream, nullptr, 1, 4), 0u);
    EXPECT_EQ(writeArray(stream, &value, 0, 4), 0u);
    EXPECT_EQ(writeArray(stream, &value, 1, 0), 0u);
    EXPECT_EQ(readArray(stream, nullptr, 1, 4), 0u);
    EXPECT_TRUE(stream.text().empty());
}

TEST(ReadArray, StopsAtTheFirstStagingBlockThatIsShort)
{
    stringStream in(std::string(1024 + 10, 'x'));
    std::vector<unsigned char> data(2000);
    EXPECT_EQ(readArray(in, data.data(), 1000, 2), 512u);
}

TEST(StreamBuffer, AWritePastTheEndGrowsToTheExactEnd)
{
    const Buffer buffer = growable();
    const char ten[] = "0123456789";
    buffer->Write(ten, 10);
    EXPECT_EQ(buffer->Write("abc", 3), 3u);
    EXPECT_EQ(buffer->GetSize(), 13u);
    EXPECT_EQ(buffer->Write(nullptr, 3), 0u);
    EXPECT_EQ(buffer->Write("abc", 0), 0u);
}

TEST(StreamBuffer, ReadingPastTheEndThrowsAndStays)
{
    const Buffer buffer(new StreamBuffer("abcd", 4));
    buffer->Seek(2, 0);
    char read[4];
    try {
        buffer->Read(read, 4);
        FAIL() << "two bytes passed for four";
    } catch (const StreamBufferException& exception) {
        EXPECT_EQ(exception.GetId(), 2);
        EXPECT_EQ(exception.GetBuffer(), buffer.get());
        EXPECT_STREQ(exception.GetText(), "Korvanel::Exception");
    }
    EXPECT_EQ(buffer->Seek(0, 1), 2u);
}

TEST(StreamBuffer, SeekingInFixedMemoryStopsAtItsEnd)
{
    char memory[10] = {};
    const Buffer buffer(new StreamBuffer(memory, 10));
    EXPECT_EQ(buffer->Seek(100, 0), 10u);
    EXPECT_EQ(buffer->Seek(4, 0), 4u);
    EXPECT_EQ(buffer->Seek(4, 1), 8u);
    EXPECT_EQ(buffer->Seek(1, 2), 10u);
}

TEST(StreamBuffer, NegativeOffsetsGoBack)
{
    const Buffer buffer = growable();
    buffer->Write("abcdef", 6);

    EXPECT_EQ(buffer->Seek(static_cast<std::uint32_t>(-2), 2), 4u);
    EXPECT_EQ(buffer->Seek(static_cast<std::uint32_t>(-1), 1), 3u);
    EXPECT_EQ(buffer->GetSize(), 6u);
}

TEST(StreamBuffer, SeekingBeyondTheEndGrowsWithZeros)
{
    const Buffer buffer = growable();
    EXPECT_EQ(buffer->Seek(3, 0), 3u);
    EXPECT_EQ(bytesOf(*buffer), (std::vector<int>{0, 0, 0}));
}

TEST(StreamBuffer, FixedMemoryIsOverwrittenInPlaceAndNeverGrows)
{
    char memory[4] = {};
    const Buffer buffer(new StreamBuffer(memory, 4));
    EXPECT_EQ(buffer->Write("abcd", 4), 4u);
    EXPECT_EQ(memory[3], 'd');
    try {
        buffer->Write("e", 1);
        FAIL() << "fixed memory grew";
    } catch (const StreamBufferException& exception) {
        EXPECT_EQ(exception.GetId(), StreamBufferException::NotResizable);
    }
}

TEST(StreamBuffer, NullMemoryHasNoSize)
{
    const Buffer buffer(new StreamBuffer(nullptr, 10));
    EXPECT_EQ(buffer->GetSize(), 0u);
}

TEST(StreamBuffer, AWriteBeyondFourGigabytesIsOutOfMemoryAndChangesNothing)
{
    const Buffer buffer = growable();
    buffer->Write("abcdef", 6);
    buffer->Seek(4, 0);
    try {
        buffer->Write("x", UINT32_MAX); // refused before the bytes are looked at
        FAIL() << "more than 32 bits hold";
    } catch (const StreamBufferException& exception) {
        EXPECT_EQ(exception.GetId(), StreamBufferException::OutOfMemory);
    }
    EXPECT_EQ(bytesOf(*buffer), (std::vector<int>{'a', 'b', 'c', 'd', 'e', 'f'}));
    EXPECT_EQ(buffer->Seek(0, 1), 4u);
}

#ifndef KV_SANITIZED // whose memory cannot be limited

TEST(StreamBuffer, AGrowthWithoutMemoryThrowsAndChangesNothing)
{
    const Buffer buffer = growable();
    buffer->Write("abcdef", 6);
    buffer->Seek(4, 0);
    const void* memory = buffer->GetBuffer();
    try {
        const MemoryLimit limit(std::size_t{16} << 20);
        buffer->Grow(64u << 20);
        FAIL() << "there was memory";
    } catch (const StreamBufferException& exception) {
        EXPECT_EQ(exception.GetId(), 1);
    }
    EXPECT_EQ(buffer->GetBuffer(), memory);
    EXPECT_EQ(bytesOf(*buffer), (std::vector<int>{'a', 'b', 'c', 'd', 'e', 'f'}));
    EXPECT_EQ(buffer->Seek(0, 1), 4u);
}

#endif

TEST(StreamBuffer, EndAtPosCutsOrKeeps)
{
    const Buffer buffer = growable();
    buffer->Write("abcdef", 6);
    buffer->Seek(2, 0);
    EXPECT_EQ(buffer->EndAtPos(), 2u);
    EXPECT_EQ(buffer->EndAtPos(), 2u);
    EXPECT_EQ(bytesOf(*buffer), (std::vector<int>{'a', 'b'}));
}

TEST(StreamBuffer, GrowingDownKeepsThePositionInside)
{
    const Buffer buffer = growable();
    buffer->Write("abcdef", 6);
    buffer->Grow(3);
    EXPECT_EQ(buffer->Seek(0, 1), 3u);
    buffer->Grow(0);
    EXPECT_EQ(buffer->Write("x", 1), 1u);
}

TEST(StreamBuffer, DetachHandsOverTheMemory)
{
    const Buffer buffer = growable();
    buffer->Write("abc", 3);
    void* data = nullptr;
    std::uint32_t size = 0;
    Allocator* allocator = buffer->Detach(data, size);
    EXPECT_EQ(size, 3u);
    EXPECT_EQ(std::memcmp(data, "abc", 3), 0);
    EXPECT_EQ(buffer->GetSize(), 0u);
    allocator->Free(data);
    allocator->Release();
}

TEST(StreamBuffer, LivesUntilTheLastRelease)
{
    auto* buffer = new StreamBuffer;
    buffer->AddRef();
    buffer->Release();
    EXPECT_EQ(buffer->Write("a", 1), 1u); // the address sanitizer would tell
    buffer->Release();
}

TEST(MemoryStream, TellsSkipsAndEnds)
{
    const Buffer buffer = growable();
    MemoryStream stream(*buffer);
    stream.Write(static_cast<const void*>("abcd"), 4);
    EXPECT_TRUE(stream.IsEOF());
    stream.Seek(1, 0);
    EXPECT_FALSE(stream.IsEOF());
    EXPECT_TRUE(stream.Skip(2));
    EXPECT_EQ(stream.Tell(), 3u);
}

TEST(MemoryStream, SkippingPastFixedMemoryReportsIt)
{
    const Buffer buffer(new StreamBuffer("abcd", 4));
    MemoryStream stream(*buffer);
    EXPECT_FALSE(stream.Skip(5));
}

TEST(SimpleMemoryStream, WalksRawMemory)
{
    char memory[4] = {};
    SimpleMemoryStream(memory).WriteInt32(0x04030201);
    EXPECT_EQ(memory[0], 1);
    EXPECT_EQ(SimpleMemoryStream(memory).ReadInt16(), 0x0201);
}

TEST(stringStream, AWriteCutsWhatLayBehindIt)
{
    stringStream stream("abcdef");
    char read[2];
    stream.Read(static_cast<void*>(read), 2);
    stream.Write(static_cast<const void*>("X"), 1);
    EXPECT_EQ(stream.text(), "abX");
}

TEST(CountingStream, CountsWhatAWriteWouldTake)
{
    CountingStream stream;
    stream.WriteInt16(1);
    stream.Write(String("abc"));
    EXPECT_EQ(stream.count(), 9u);
}

TEST(File, ReadsBackWhatItWrote)
{
    const std::string path = temporary();
    {
        File file(path.c_str(), File::WriteMode, 0);
        EXPECT_EQ(file.write("abcdef", 6), 1u); // one block
    }
    File file;
    EXPECT_TRUE(file.open(path.c_str(), File::ReadMode, 0));
    char read[6];
    EXPECT_EQ(file.seek(4, SEEK_SET), 0);
    EXPECT_EQ(file.read(read, 2), 1u);
    EXPECT_EQ(read[0], 'e');
    EXPECT_EQ(file.read(read, 6), 0u); // not a whole block
    std::filesystem::remove(path);
}

TEST(File, NegativeOffsetsGoBackFromTheEndAndFromThePosition)
{
    const TemporaryFolder folder;
    putContent(folder / "file", "abcdef");
    File file((folder / "file").c_str(), File::ReadMode, 0);
    char read = 0;

    EXPECT_EQ(file.seek(static_cast<std::uint32_t>(-2), SEEK_END), 0);
    EXPECT_EQ(file.read(&read, 1), 1u);
    EXPECT_EQ(read, 'e');
    EXPECT_EQ(file.seek(static_cast<std::uint32_t>(-3), SEEK_CUR), 0);
    EXPECT_EQ(file.read(&read, 1), 1u);
    EXPECT_EQ(read, 'c');
}

TEST(File, OffsetsFromTheStartReachBeyondTwoGigabytes)
{
    const TemporaryFolder folder;
    {
        File file((folder / "sparse").c_str(), File::WriteMode, 0);
        EXPECT_EQ(file.seek(3000000000u, SEEK_SET), 0);
        EXPECT_EQ(file.write("x", 1), 1u);
    }

    EXPECT_EQ(std::filesystem::file_size(folder / "sparse"), 3000000001u);
}

TEST(File, ItsLengthIsTheResultOfTheSeek)
{
    const std::string path = temporary();
    File file(path.c_str(), File::WriteMode, 0);
    file.write("abcdef", 6);
    EXPECT_EQ(file.length(), 0u);
    file.write("g", 1);
    file.close();
    EXPECT_EQ(std::filesystem::file_size(path), 7u); // the position was kept
    std::filesystem::remove(path);
}

TEST(File, OtherModesAndMissingFilesDoNotOpen)
{
    const std::string path = temporary();
    File file;
    EXPECT_FALSE(file.open(path.c_str(), 1, 0));
    EXPECT_FALSE(file.open("/nonexistent/file", File::ReadMode, 0));
    EXPECT_EQ(file.seek(1, SEEK_SET), 0);
    char byte = 0;
    EXPECT_EQ(file.read(&byte, 1), 0u);
    std::filesystem::remove(path);
}

TEST(File, SetsItsEndAtThePosition)
{
    const std::string path = temporary();
    File file(path.c_str(), File::WriteMode, 0);
    file.write("abcdef", 6);
    file.seek(2, SEEK_SET);
    EXPECT_TRUE(file.seteof());
    file.close();
    EXPECT_EQ(std::filesystem::file_size(path), 2u);
    std::filesystem::remove(path);
}

TEST(SimpleStream, OverAFileCountsBlocksSoTypedValuesReportFailure)
{
    const std::string path = temporary();
    File file(path.c_str(), File::WriteMode, 0);
    SimpleStream<File> stream(file);
    EXPECT_FALSE(stream.WriteInt32(7));
    file.close();
    EXPECT_EQ(std::filesystem::file_size(path), 4u); // and yet they are all there
    std::filesystem::remove(path);
}

TEST(SimpleStream, OverACFileCountsBytes)
{
    const std::string path = temporary();
    std::FILE* file = std::fopen(path.c_str(), "w+b");
    SimpleStream<std::FILE*> stream(file);
    EXPECT_TRUE(stream.WriteInt32(7));
    std::rewind(file);
    EXPECT_EQ(stream.ReadInt32(), 7);
    std::fclose(file);
    std::filesystem::remove(path);
}
