#include "shared/System/kvAssert.h"

#include <cstdio>
#include <cstdlib>

namespace Korvanel {

void assertionFailed(const char* source, unsigned line, const char* condition)
{
    std::fprintf(stderr, "%s:%u: failed assertion `%s'\n", source, line, condition);
    std::abort();
}

} // namespace Korvanel
