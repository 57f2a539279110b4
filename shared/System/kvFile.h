/// C files as streams.
#pragma once
#include "shared/System/kvStream.h"

#include <cstdint>
#include <cstdio>

namespace Korvanel {

/// Owner of one C file. Thread: one at a time.
class File
{
public:
    enum Mode : unsigned { ReadMode = 2, WriteMode = 3 };

    File() = default;
    File(const char* path, unsigned mode, unsigned);
    File(const File&) = delete;
    File& operator=(const File&) = delete;
    virtual ~File();

    /// Opens a file in place of the one held. Any mode but the two of Mode fails. @return false
    /// when it cannot be opened
    virtual bool open(const char* path, unsigned mode, unsigned);
    virtual void close();
    /// Not the length: 0 when the file's end could be found, as fseek says it. Files written
    /// through here hold that number where a length would stand, and readers of them rely on it.
    virtual std::uint32_t length();
    virtual bool seteof(); ///< cuts the file at the position; false when that fails
    /// As fseek; 0 when closed. From the position and from the end, offsets of 2 GB and more are
    /// the negative numbers of 32 bits and go backwards.
    virtual int seek(std::uint32_t offset, int whence);
    /// Reads one block whole. @return 1 when all of it came, else 0
    virtual std::uint32_t read(void* data, std::uint32_t size);
    /// Writes one block whole. @return 1 when all of it went, else 0
    virtual std::uint32_t write(const void* data, std::uint32_t size);

    bool isOpen() const { return mFile != nullptr; }

    std::FILE* get() const { return mFile; } ///< null when closed; stays ours

private:
    std::FILE* mFile = nullptr;
};

template <typename Source>
class SimpleStream;

/// Counts blocks, not bytes, as File does: a typed value through this stream reports failure even
/// where its bytes were transferred. Whoever needs true counts reads through SimpleStream<FILE*>.
/// The file outlives the stream.
template <>
class SimpleStream<File> : public Stream
{
public:
    explicit SimpleStream(File& file)
        : mFile(file)
    {
    }

    using InputStream::Read;
    using OutputStream::Write;
    std::uint32_t Read(void* data, std::uint32_t size) override;
    std::uint32_t Write(const void* data, std::uint32_t size) override;

private:
    File& mFile;
};

/// Counts bytes. The file outlives the stream; null reads and writes nothing.
template <>
class SimpleStream<std::FILE*> : public Stream
{
public:
    explicit SimpleStream(std::FILE* file)
        : mFile(file)
    {
    }

    using InputStream::Read;
    using OutputStream::Write;
    std::uint32_t Read(void* data, std::uint32_t size) override;
    std::uint32_t Write(const void* data, std::uint32_t size) override;

private:
    std::FILE* mFile;
};

} // namespace Korvanel
