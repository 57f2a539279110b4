#include "shared/System/kvStreamBuffer.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>

namespace Korvanel {

// MemAllocator ------------------------------------------------------------------------------------

void MemAllocator::AddRef()
{
    ++mRefs;
}

void MemAllocator::Release()
{
    if (--mRefs == 0)
        delete this;
}

void* MemAllocator::Alloc(std::uint32_t size)
{
    return std::malloc(size);
}

void* MemAllocator::Realloc(void* block, std::uint32_t size)
{
    if (size == 0) { // the C library leaves it open what this would return
        std::free(block);
        return nullptr;
    }
    return std::realloc(block, size);
}

void MemAllocator::Free(void* block)
{
    std::free(block);
}

// StreamBuffer ------------------------------------------------------------------------------------

StreamBuffer::StreamBuffer()
    : mAllocator(new MemAllocator)
{
}

StreamBuffer::StreamBuffer(const void* data, std::uint32_t size)
    : mAllocator(nullptr)
    , mData(static_cast<unsigned char*>(const_cast<void*>(data)))
    , mSize(data == nullptr ? 0 : size)
{
}

StreamBuffer::~StreamBuffer()
{
    if (mAllocator == nullptr)
        return;
    mAllocator->Free(mData);
    mAllocator->Release();
}

void StreamBuffer::AddRef()
{
    ++mRefs;
}

void StreamBuffer::Release()
{
    if (--mRefs == 0)
        delete this;
}

std::uint32_t StreamBuffer::Read(void* data, std::uint32_t size)
{
    if (size == 0 || data == nullptr)
        return 0;
    if (size > mSize - mPosition)
        throw StreamBufferException(this, StreamBufferException::ReadPastEnd);
    std::memcpy(data, mData + mPosition, size);
    mPosition += size;
    return size;
}

std::uint32_t StreamBuffer::Write(const void* data, std::uint32_t size)
{
    if (size == 0 || data == nullptr)
        return 0;
    if (size > mSize - mPosition) {
        if (size > UINT32_MAX - mPosition)
            throw StreamBufferException(this, StreamBufferException::OutOfMemory);
        resize(mPosition + size);
    }
    std::memcpy(mData + mPosition, data, size);
    mPosition += size;
    return size;
}

std::uint32_t StreamBuffer::Seek(std::uint32_t offset, int whence)
{
    const std::uint32_t start = whence == 1 ? mPosition : whence == 2 ? mSize : 0;
    const std::uint32_t target = start + offset; // wraps: callers go back by negative offsets
    if (target > mSize && mAllocator != nullptr)
        Grow(target);
    mPosition = std::min(target, mSize);
    return mPosition;
}

Allocator* StreamBuffer::Detach(void*& data, std::uint32_t& size)
{
    data = mData;
    size = mSize;
    Allocator* allocator = mAllocator; // the reference to it passes to the caller
    mAllocator = nullptr;
    mData = nullptr;
    mSize = 0;
    mPosition = 0;
    return allocator;
}

std::uint32_t StreamBuffer::EndAtPos()
{
    if (mAllocator != nullptr && mPosition != mSize)
        Grow(mPosition);
    return mSize;
}

void* StreamBuffer::Grow(std::uint32_t size)
{
    const std::uint32_t before = mSize;
    resize(size);
    if (size > before)
        std::memset(mData + before, 0, size - before);
    return mData;
}

void StreamBuffer::resize(std::uint32_t size)
{
    if (mAllocator == nullptr)
        throw StreamBufferException(this, StreamBufferException::NotResizable);
    void* moved = mAllocator->Realloc(mData, size);
    if (moved == nullptr && size > mSize)
        throw StreamBufferException(this, StreamBufferException::OutOfMemory);
    mData = static_cast<unsigned char*>(moved);
    mSize = size;
    mPosition = std::min(mPosition, size);
}

// MemoryStream ------------------------------------------------------------------------------------

bool MemoryStream::IsEOF()
{
    return mBuffer.Seek(0, 1) == mBuffer.GetSize();
}

std::uint32_t MemoryStream::Read(void* data, std::uint32_t size)
{
    return mBuffer.Read(data, size);
}

std::uint32_t MemoryStream::Write(const void* data, std::uint32_t size)
{
    return mBuffer.Write(data, size);
}

std::uint32_t MemoryStream::Seek(std::uint32_t offset, int whence)
{
    return mBuffer.Seek(offset, whence);
}

std::uint32_t MemoryStream::EndAtPos()
{
    return mBuffer.EndAtPos();
}

} // namespace Korvanel
