#include "shared/System/kvObject.h"

#include <limits>
#include <new>

namespace Korvanel {

std::atomic<std::int32_t> Base::numAllocations{0};

void* Base::memoryAlloc(std::uint32_t size)
{
    ++numAllocations;
    void* block = ::operator new(size, std::nothrow);
    if (block == nullptr)
        --numAllocations;
    return block;
}

void Base::memoryFree(void* block)
{
    if (block == nullptr)
        return;
    ::operator delete(block);
    --numAllocations;
}

void* Base::operator new(std::size_t size)
{
    void* block = size > std::numeric_limits<std::uint32_t>::max()
                      ? nullptr
                      : memoryAlloc(static_cast<std::uint32_t>(size));
    if (block == nullptr)
        throw std::bad_alloc();
    return block;
}

std::int32_t Object::releaseRef()
{
    const std::int32_t left = --mRefs;
    if (left == 0)
        delete this;
    return left;
}

} // namespace Korvanel
