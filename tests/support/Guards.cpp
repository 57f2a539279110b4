#include "tests/support/Guards.h"

#include <algorithm>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <dlfcn.h>
#include <fcntl.h>
#include <pthread.h>
#include <unistd.h>
#include <utility>

namespace {

thread_local std::size_t tAllocations = 0;
thread_local std::size_t tLargest = 0;
thread_local std::size_t tLocks = 0;
thread_local std::size_t tFiles = 0;

void countAllocation(std::size_t size)
{
    ++tAllocations;
    tLargest = std::max(tLargest, size);
}

} // namespace

#ifdef KV_SANITIZED

// From the sanitizers' run time; not every compiler ships its header.
extern "C" int __sanitizer_install_malloc_and_free_hooks(void (*onMalloc)(const volatile void*,
                                                                          std::size_t),
                                                         void (*onFree)(const volatile void*));

namespace {

void onAllocation(const volatile void*, std::size_t size)
{
    countAllocation(size);
}

void onFree(const volatile void*) {}

[[maybe_unused]] const int sHooks =
    __sanitizer_install_malloc_and_free_hooks(&onAllocation, &onFree);

} // namespace

#else

// Visible, so that a plug-in that a test loads is counted as well.
#pragma GCC visibility push(default)

extern "C" {
void* __libc_malloc(std::size_t size);
void* __libc_calloc(std::size_t count, std::size_t size);
void* __libc_realloc(void* block, std::size_t size);

void* malloc(std::size_t size)
{
    countAllocation(size);
    return __libc_malloc(size);
}

void* calloc(std::size_t count, std::size_t size)
{
    countAllocation(count * size);
    return __libc_calloc(count, size);
}

void* realloc(void* block, std::size_t size)
{
    countAllocation(size);
    return __libc_realloc(block, size);
}

int pthread_mutex_lock(pthread_mutex_t* mutex)
{
    using Lock = int (*)(pthread_mutex_t*);
    static const Lock real = reinterpret_cast<Lock>(::dlsym(RTLD_NEXT, "pthread_mutex_lock"));
    ++tLocks;
    return real(mutex);
}

ssize_t read(int descriptor, void* data, std::size_t size)
{
    static const auto real = reinterpret_cast<decltype(&::read)>(::dlsym(RTLD_NEXT, "read"));
    ++tFiles;
    return real(descriptor, data, size);
}

ssize_t write(int descriptor, const void* data, std::size_t size)
{
    static const auto real = reinterpret_cast<decltype(&::write)>(::dlsym(RTLD_NEXT, "write"));
    ++tFiles;
    return real(descriptor, data, size);
}

int open(const char* path, int flags, ...)
{
    using Open = int (*)(const char*, int, ...);
    static const Open real = reinterpret_cast<Open>(::dlsym(RTLD_NEXT, "open"));
    std::va_list arguments;
    va_start(arguments, flags);
    const auto mode = va_arg(arguments, mode_t); // whatever it is where nobody gives one
    va_end(arguments);
    ++tFiles;
    return real(path, flags, mode);
}

std::FILE* fopen(const char* path, const char* mode)
{
    static const auto real = reinterpret_cast<decltype(&::fopen)>(::dlsym(RTLD_NEXT, "fopen"));
    ++tFiles;
    return real(path, mode);
}
}

#pragma GCC visibility pop

#endif

AllocationGuard::AllocationGuard()
    : mBefore(tAllocations)
    , mLargestBefore(std::exchange(tLargest, 0))
{
}

AllocationGuard::~AllocationGuard()
{
    tLargest = std::max(tLargest, mLargestBefore); // for the guard around this one
}

std::size_t AllocationGuard::count() const
{
    return tAllocations - mBefore;
}

std::size_t AllocationGuard::largest() const
{
    return tLargest;
}

// There with the address sanitizer only.
extern "C" {
[[gnu::weak]] void __lsan_disable();
[[gnu::weak]] void __lsan_enable();
}

LeakAllowance::LeakAllowance()
{
    if (&__lsan_disable != nullptr)
        __lsan_disable();
}

LeakAllowance::~LeakAllowance()
{
    if (&__lsan_enable != nullptr)
        __lsan_enable();
}

LockCounter::LockCounter()
    : mBefore(tLocks)
{
}

std::size_t LockCounter::count() const
{
    return tLocks - mBefore;
}

FileCounter::FileCounter()
    : mBefore(tFiles)
{
}

std::size_t FileCounter::count() const
{
    return tFiles - mBefore;
}
