/// Whole numbers as text in any radix. Thread: any.
#pragma once
#include <cstdint>

namespace Korvanel {

// Radix 2 to 36, digits above 9 as lower-case letters; any other radix gives the empty text. The
// buffer holds what is written: 34 bytes are enough for every number (a sign, 32 digits and the
// terminator). Each returns the buffer.

/// @param negative  other than 0: writes "-" and then `value` negated
char* myxtoa(std::uint32_t value, char* buffer, std::uint32_t radix, int negative);
/// A sign in radix 10 only; in any other a negative number appears as its unsigned bits.
char* myitoa(int value, char* buffer, int radix);
char* myltoa(std::int32_t value, char* buffer, int radix);
char* myultoa(std::uint32_t value, char* buffer, int radix); ///< never a sign

} // namespace Korvanel
