/// The growable memory block behind memory streams, with an exchangeable allocator.
#pragma once
#include "shared/System/kvException.h"
#include "shared/System/kvStream.h"

#include <atomic>
#include <cstdint>
#include <memory>

namespace Korvanel {

/// Shared ownership by counting. The creator holds the first reference. Thread: any.
class IRefCounter
{
public:
    virtual void AddRef() = 0;
    virtual void Release() = 0; ///< the last one destroys the object

protected:
    ~IRefCounter() = default;
};

class Allocator : public IRefCounter
{
public:
    virtual void* Alloc(std::uint32_t size) = 0; ///< null when out of memory
    virtual void* Realloc(void* block,
                          std::uint32_t size) = 0; ///< null when out of memory; the block stays
    virtual void Free(void* block) = 0;

protected:
    ~Allocator() = default;
};

/// The C heap.
class MemAllocator final : public Allocator
{
public:
    void AddRef() override;
    void Release() override;
    void* Alloc(std::uint32_t size) override;
    void* Realloc(void* block, std::uint32_t size) override;
    void Free(void* block) override;

private:
    ~MemAllocator() = default;

    std::atomic<std::int32_t> mRefs{1};
};

class IStreamBuffer : public IRefCounter
{
public:
    virtual std::uint32_t Read(void* data, std::uint32_t size) = 0;
    virtual std::uint32_t Write(const void* data, std::uint32_t size) = 0;
    virtual std::uint32_t Seek(std::uint32_t offset, int whence) = 0;
    virtual void* GetBuffer() const = 0;
    virtual std::uint32_t GetSize() const = 0;
    virtual Allocator* Detach(void*& data, std::uint32_t& size) = 0;
    virtual std::uint32_t EndAtPos() = 0;
    virtual void* Grow(std::uint32_t size) = 0;
    virtual ~IStreamBuffer() = default;
};

/// Sizes and positions are bytes. The size is also what is allocated: every growth is to the exact
/// new end. Thread: counting from any; the rest from one at a time.
class StreamBuffer : public IStreamBuffer
{
public:
    /// An empty buffer on the C heap.
    StreamBuffer();
    /// A buffer over the caller's memory, which outlives it: read and overwritten in place, never
    /// grown, never freed.
    StreamBuffer(const void* data, std::uint32_t size);
    StreamBuffer(const StreamBuffer&) = delete;
    StreamBuffer& operator=(const StreamBuffer&) = delete;

    void AddRef() override;
    void Release() override;
    /// @return `size`, or 0 for no bytes or null. Throws ReadPastEnd, with the position unmoved,
    /// when fewer are left.
    std::uint32_t Read(void* data, std::uint32_t size) override;
    /// @return `size`, or 0 for no bytes or null. Throws as Grow does.
    std::uint32_t Write(const void* data, std::uint32_t size) override;
    /// As RandomAccess::Seek; the sum wraps, so that 2^32 - n goes back by n. A target beyond the
    /// end grows the buffer with zeros, or stops at the end of fixed memory.
    std::uint32_t Seek(std::uint32_t offset, int whence) override;

    void* GetBuffer() const override { return mData; }

    std::uint32_t GetSize() const override { return mSize; }

    /// Hands the memory to the caller, who frees it through the returned allocator and then
    /// releases that; the buffer is empty from then on and grows no more. @return null for a buffer
    /// over fixed memory
    Allocator* Detach(void*& data, std::uint32_t& size) override;
    std::uint32_t EndAtPos() override;
    /// Makes the size exactly `size`; new bytes are 0. @return the memory
    /// Throws NotResizable over fixed memory, OutOfMemory when there is none (the buffer is then
    /// unchanged).
    void* Grow(std::uint32_t size) override;

private:
    ~StreamBuffer() override;

    void resize(std::uint32_t size);

    std::atomic<std::int32_t> mRefs{1};
    Allocator* mAllocator;
    unsigned char* mData = nullptr;
    std::uint32_t mSize = 0;
    std::uint32_t mPosition = 0;
};

struct ReleaseBuffer
{
    void operator()(StreamBuffer* buffer) const { buffer->Release(); }
};

/// Holds the reference of whoever made the buffer.
using OwnedStreamBuffer = std::unique_ptr<StreamBuffer, ReleaseBuffer>;

/// A failure of a StreamBuffer; thrown by value.
class StreamBufferException : public Exception
{
public:
    enum ExceptId { NotResizable = 0, OutOfMemory = 1, ReadPastEnd = 2 };

    StreamBufferException(StreamBuffer* buffer, ExceptId id)
        : mBuffer(buffer)
        , mId(id)
    {
    }

    /// The buffer concerned, for comparison only: it may be gone when the exception is caught.
    const StreamBuffer* GetBuffer() const { return mBuffer; }

    ExceptId GetId() const { return mId; }

private:
    StreamBuffer* mBuffer;
    ExceptId mId;
};

/// Random access over a StreamBuffer, which the caller keeps alive.
class MemoryStream : public InputRandomAccessStream, public OutputRandomAccessStream
{
public:
    explicit MemoryStream(StreamBuffer& buffer)
        : mBuffer(buffer)
    {
    }

    using InputStream::Read;
    using OutputStream::Write;
    bool IsEOF() override;
    std::uint32_t Read(void* data, std::uint32_t size) override;
    std::uint32_t Write(const void* data, std::uint32_t size) override;
    std::uint32_t Seek(std::uint32_t offset, int whence) override;
    std::uint32_t EndAtPos() override;

private:
    StreamBuffer& mBuffer;
};

} // namespace Korvanel
