/// The lock of the whole system: recursive, so that a locked operation may call another one, and
/// with priority inheritance, so that the processing thread never waits behind a thread of middle
/// priority.
#pragma once
#include "shared/System/kvContracts.h"

#include <pthread.h>

namespace Korvanel {

/// Not copyable. Thread: any. An uncontended Enter or Leave makes no system call.
class KV_CAPABILITY("mutex") CriticalSection
{
public:
    /// Throws std::system_error when the system cannot make a lock.
    CriticalSection();
    ~CriticalSection();
    CriticalSection(const CriticalSection&) = delete;
    CriticalSection& operator=(const CriticalSection&) = delete;

    /// Waits without limit. The holder may enter again and leaves once for each entry.
    void Enter() KV_ACQUIRE() { pthread_mutex_lock(&mMutex); }

    void Leave() KV_RELEASE() { pthread_mutex_unlock(&mMutex); }

private:
    pthread_mutex_t mMutex;
};

/// Holds a lock for a scope, exceptions included.
class KV_SCOPED_CAPABILITY ScopedLock
{
public:
    explicit ScopedLock(CriticalSection& lock) KV_ACQUIRE(lock)
        : mLock(lock)
    {
        mLock.Enter();
    }

    ~ScopedLock() KV_RELEASE() { mLock.Leave(); }

    ScopedLock(const ScopedLock&) = delete;
    ScopedLock& operator=(const ScopedLock&) = delete;

private:
    CriticalSection& mLock;
};

} // namespace Korvanel
