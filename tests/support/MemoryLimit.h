/// A machine that is short of memory, for a test.
#pragma once
#include <cstddef>
#include <cstdio>
#include <sys/resource.h>
#include <unistd.h>

/// While it lives this process may take `more` bytes beyond the addresses that it has. Not under
/// sanitizers, which reserve more addresses than any limit allows.
class MemoryLimit
{
public:
    explicit MemoryLimit(std::size_t more)
    {
        ::getrlimit(RLIMIT_AS, &mBefore);
        const rlimit small{held() + more, mBefore.rlim_max};
        ::setrlimit(RLIMIT_AS, &small);
    }

    MemoryLimit(const MemoryLimit&) = delete;
    MemoryLimit& operator=(const MemoryLimit&) = delete;

    ~MemoryLimit() { ::setrlimit(RLIMIT_AS, &mBefore); }

private:
    static rlim_t held()
    {
        long pages = 0;
        if (std::FILE* statm = std::fopen("/proc/self/statm", "r")) {
            if (std::fscanf(statm, "%ld", &pages) != 1)
                pages = 0;
            std::fclose(statm);
        }
        return static_cast<rlim_t>(pages * ::sysconf(_SC_PAGESIZE));
    }

    rlimit mBefore{};
};
