/// Stops a fuzzer when an input costs more memory than any input may.
#pragma once
#include <cstddef>

/// Watches this process's heap while it lives: more than `limit` bytes above what there was at its
/// start abort.
class HeapLimit
{
public:
    explicit HeapLimit(std::size_t limit = std::size_t{64} << 20);
    HeapLimit(const HeapLimit&) = delete;
    HeapLimit& operator=(const HeapLimit&) = delete;
    ~HeapLimit();
};
