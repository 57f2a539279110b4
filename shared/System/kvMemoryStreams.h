/// Small streams over memory that needs no StreamBuffer.
#pragma once
#include "shared/System/kvStream.h"

#include <cstdint>
#include <string>

namespace Korvanel {

/// A cursor over raw memory. It checks no bound: the caller knows what lies there.
class SimpleMemoryStream : public Stream
{
public:
    explicit SimpleMemoryStream(void* memory)
        : mCursor(static_cast<unsigned char*>(memory))
    {
    }

    using InputStream::Read;
    using OutputStream::Write;
    std::uint32_t Read(void* data, std::uint32_t size) override;
    std::uint32_t Write(const void* data, std::uint32_t size) override;

private:
    unsigned char* mCursor;
};

/// A standard string read from its start and written from its start; a write cuts off what lay
/// behind it.
class stringStream : public Stream
{
public:
    /// @param slack  bytes to reserve beyond each write that outgrows the capacity
    explicit stringStream(std::string text = {}, std::uint32_t slack = 0)
        : mSlack(slack)
        , mText(std::move(text))
    {
    }

    using InputStream::Read;
    using OutputStream::Write;

    bool IsEOF() override { return mPosition >= mText.size(); }

    std::uint32_t Read(void* data, std::uint32_t size) override;
    std::uint32_t Write(const void* data, std::uint32_t size) override;

    const std::string& text() const { return mText; }

private:
    std::uint32_t mSlack;
    std::string mText;
    std::size_t mPosition = 0;
};

/// Measures what a write would produce; keeps nothing.
class CountingStream : public OutputStream
{
public:
    using OutputStream::Write;
    std::uint32_t Write(const void* data, std::uint32_t size) override;

    std::uint32_t count() const { return mCount; } ///< bytes so far

private:
    std::uint32_t mCount = 0;
};

} // namespace Korvanel
