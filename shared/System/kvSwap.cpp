#include "shared/System/kvSwap.h"

#include <algorithm>

namespace Korvanel {

namespace {

void reverseElements(void* data, std::uint32_t count, std::uint32_t size)
{
    auto* element = static_cast<unsigned char*>(data);
    for (std::uint32_t i = 0; i < count; ++i, element += size)
        std::reverse(element, element + size);
}

} // namespace

void OSSwapArrayInt16(void* data, std::uint32_t count)
{
    reverseElements(data, count, 2);
}

void OSSwapArrayInt24(void* data, std::uint32_t count)
{
    reverseElements(data, count, 3);
}

void OSSwapArrayInt32(void* data, std::uint32_t count)
{
    reverseElements(data, count, 4);
}

void OSSwapArrayInt64(void* data, std::uint32_t count)
{
    reverseElements(data, count, 8);
}

void OSSwapArray(void* data, std::uint32_t count, std::uint32_t size)
{
    if (size == 2 || size == 3 || size == 4 || size == 8)
        reverseElements(data, count, size);
}

} // namespace Korvanel
