/// Lock and real-time contracts, written where the compiler can check them (clang's
/// -Wthread-safety; other compilers see nothing). Every class with a lock uses them.
#pragma once

#if defined(__clang__)
#define KV_ATTRIBUTE(x) __attribute__((x))
#else
#define KV_ATTRIBUTE(x)
#endif

#define KV_CAPABILITY(name) KV_ATTRIBUTE(capability(name))
#define KV_SCOPED_CAPABILITY KV_ATTRIBUTE(scoped_lockable)

/// The field is read and written only while the lock is held.
#define KV_GUARDED_BY(lock) KV_ATTRIBUTE(guarded_by(lock))
/// The caller holds the lock already.
#define KV_REQUIRES(...) KV_ATTRIBUTE(requires_capability(__VA_ARGS__))
/// The operation takes the lock itself.
#define KV_EXCLUDES(...) KV_ATTRIBUTE(locks_excluded(__VA_ARGS__))
/// This lock is taken before the named ones whenever both are held.
#define KV_BEFORE(...) KV_ATTRIBUTE(acquired_before(__VA_ARGS__))
#define KV_ACQUIRE(...) KV_ATTRIBUTE(acquire_capability(__VA_ARGS__))
#define KV_RELEASE(...) KV_ATTRIBUTE(release_capability(__VA_ARGS__))
/// The operation gives out this lock itself.
#define KV_RETURN_CAPABILITY(lock) KV_ATTRIBUTE(lock_returned(lock))
#define KV_NO_LOCK_ANALYSIS KV_ATTRIBUTE(no_thread_safety_analysis)
