#include "shared/System/kvMemoryStreams.h"

#include <algorithm>
#include <cstring>

namespace Korvanel {

std::uint32_t SimpleMemoryStream::Read(void* data, std::uint32_t size)
{
    std::memcpy(data, mCursor, size);
    mCursor += size;
    return size;
}

std::uint32_t SimpleMemoryStream::Write(const void* data, std::uint32_t size)
{
    std::memcpy(mCursor, data, size);
    mCursor += size;
    return size;
}

std::uint32_t stringStream::Read(void* data, std::uint32_t size)
{
    const std::size_t count = std::min<std::size_t>(size, mText.size() - mPosition);
    std::copy_n(mText.data() + mPosition, count, static_cast<char*>(data));
    mPosition += count;
    return static_cast<std::uint32_t>(count);
}

std::uint32_t stringStream::Write(const void* data, std::uint32_t size)
{
    mText.resize(mPosition);
    if (mText.capacity() < mPosition + size)
        mText.reserve(mPosition + size + mSlack);
    mText.append(static_cast<const char*>(data), size);
    mPosition += size;
    return size;
}

std::uint32_t CountingStream::Write(const void*, std::uint32_t size)
{
    mCount += size;
    return size;
}

} // namespace Korvanel
