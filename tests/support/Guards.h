/// Counts what real-time code must not do on the calling thread: allocations, locks, file accesses.
/// Says which leaks are meant.
#pragma once
#include <cstddef>

/// Counts allocations of this thread, by new or by the C heap, while it lives.
class AllocationGuard
{
public:
    AllocationGuard();
    AllocationGuard(const AllocationGuard&) = delete;
    AllocationGuard& operator=(const AllocationGuard&) = delete;
    ~AllocationGuard();

    std::size_t count() const;
    std::size_t largest() const; ///< bytes of the largest of them, whether it was granted or not

private:
    std::size_t mBefore;
    std::size_t mLargestBefore;
};

/// What this thread allocates while it lives may stay behind: the address sanitizer does not report
/// it.
class LeakAllowance
{
public:
    LeakAllowance();
    LeakAllowance(const LeakAllowance&) = delete;
    LeakAllowance& operator=(const LeakAllowance&) = delete;
    ~LeakAllowance();
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

/// Counts the files that this thread opens, reads and writes while it lives, descriptors of other
/// kinds included. Under sanitizers, which have these functions to themselves, always 0.
class FileCounter
{
public:
    FileCounter();
    FileCounter(const FileCounter&) = delete;
    FileCounter& operator=(const FileCounter&) = delete;

    std::size_t count() const;

private:
    std::size_t mBefore;
};
