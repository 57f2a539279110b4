#include "fuzz/HeapLimit.h"

#include <cstdio>
#include <cstdlib>
#include <sanitizer/allocator_interface.h>

namespace {

std::size_t sAllowed = 0; ///< 0: nobody watches

void onAllocation(const volatile void*, std::size_t)
{
    if (sAllowed == 0 || __sanitizer_get_current_allocated_bytes() <= sAllowed)
        return;
    sAllowed = 0;
    std::fputs("an input costs more memory than any may\n", stderr);
    std::abort();
}

void onFree(const volatile void*) {}

const int sHooks = __sanitizer_install_malloc_and_free_hooks(&onAllocation, &onFree);

} // namespace

HeapLimit::HeapLimit(std::size_t limit)
{
    if (sHooks == 0)
        std::abort(); // a watch that sees nothing is none
    sAllowed = __sanitizer_get_current_allocated_bytes() + limit;
}

HeapLimit::~HeapLimit()
{
    sAllowed = 0;
}
