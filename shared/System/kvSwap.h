/// Byte-order swaps of arrays, in place. Thread: any. Elements need no alignment.
#pragma once
#include <cstdint>

namespace Korvanel {

void OSSwapArrayInt16(void* data, std::uint32_t count);
void OSSwapArrayInt24(void* data,
                      std::uint32_t count); ///< 3-byte elements: the outer two change places
void OSSwapArrayInt32(void* data, std::uint32_t count);
void OSSwapArrayInt64(void* data, std::uint32_t count);
/// Swaps elements of `size` bytes: 2, 3, 4 or 8; does nothing for any other size.
void OSSwapArray(void* data, std::uint32_t count, std::uint32_t size);

} // namespace Korvanel
