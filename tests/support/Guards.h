/// Counts what real-time code must not do on the calling thread: allocations, and locks taken.
#pragma once
#include <cstddef>

/// Counts allocations of this thread, by new or by the C heap, while it lives.
class AllocationGuard
{
public:
    AllocationGuard();
    AllocationGuard(const AllocationGuard&) = delete;
    AllocationGuard& operator=(const AllocationGuard&) = delete;

    std::size_t count() const;

private:
    std::size_t mBefore;
};

/// Counts the mutexes that this thread locks while it lives. Sanitizers put their own locks in
/// between, so under them `counts` is false.
class LockCounter
{
public:
    static constexpr bool counts =
#ifdef KV_SANITIZED
        false;
#else
        true;
#endif

    LockCounter();
    LockCounter(const LockCounter&) = delete;
    LockCounter& operator=(const LockCounter&) = delete;

    std::size_t count() const;

private:
    std::size_t mBefore;
};
