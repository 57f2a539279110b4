#include "shared/System/kvNumberText.h"

#include <algorithm>

namespace Korvanel {

char* myxtoa(std::uint32_t value, char* buffer, std::uint32_t radix, int negative)
{
    char* out = buffer;
    if (radix >= 2 && radix <= 36) {
        if (negative != 0) {
            *out++ = '-';
            value = 0 - value; // in unsigned numbers, so that the lowest one has its digits too
        }
        char* const digits = out;
        do {
            *out++ = "0123456789abcdefghijklmnopqrstuvwxyz"[value % radix];
            value /= radix;
        } while (value != 0);
        std::reverse(digits, out);
    }
    *out = 0;
    return buffer;
}

char* myitoa(int value, char* buffer, int radix)
{
    return myxtoa(static_cast<std::uint32_t>(value), buffer, static_cast<std::uint32_t>(radix),
                  radix == 10 && value < 0 ? 1 : 0);
}

char* myltoa(std::int32_t value, char* buffer, int radix)
{
    return myitoa(value, buffer, radix);
}

char* myultoa(std::uint32_t value, char* buffer, int radix)
{
    return myxtoa(value, buffer, static_cast<std::uint32_t>(radix), 0);
}

} // namespace Korvanel
