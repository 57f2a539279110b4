/// Reference-counted objects of the framework, and the count of what it allocates.
#pragma once
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <utility>

namespace Korvanel {

/// Counted memory. What derives from Base is counted when it is made by `new`, without more ado.
/// Thread: any.
class Base
{
public:
    /// @param size  bytes
    /// @return null when out of memory; freed with memoryFree
    static void* memoryAlloc(std::uint32_t size);
    static void memoryFree(void* block); ///< null is allowed

    /// Throws std::bad_alloc.
    static void* operator new(std::size_t size);

    /// In a place of the caller's own, which counts nothing.
    static void* operator new(std::size_t, void* place) noexcept { return place; }

    static void operator delete(void* block) noexcept { memoryFree(block); }

    static void operator delete(void*, void*) noexcept {}

    /// Live blocks from memoryAlloc.
    static std::atomic<std::int32_t> numAllocations;
};

/// Shared ownership by counting, as an interface. The creator holds the first reference.
/// Thread: any.
class RefCounted
{
public:
    virtual std::int32_t keepRef() = 0;    ///< the new count
    virtual std::int32_t releaseRef() = 0; ///< the new count; at 0 the object is gone

protected:
    ~RefCounted() = default;
};

/// A counted object on the heap. Its first reference belongs to whoever made it; the last
/// releaseRef destroys it. Thread: the counting from any.
class Object : public Base
{
public:
    Object() = default;
    Object(const Object&) = delete;
    Object& operator=(const Object&) = delete;
    virtual ~Object() = default;

    std::int32_t keepRef() { return ++mRefs; }

    std::int32_t releaseRef();

private:
    std::atomic<std::int32_t> mRefs{1};
};

/// Holds one reference to an object that has keepRef and releaseRef, or to none. Thread: one Ref
/// belongs to one thread at a time; Refs to one object need not.
template <typename T>
class Ref
{
public:
    Ref() = default;

    /// Takes a reference of its own; the caller keeps the one it has.
    explicit Ref(T* object)
        : mObject(object)
    {
        if (mObject != nullptr)
            mObject->keepRef();
    }

    Ref(const Ref& other)
        : Ref(other.mObject)
    {
    }

    Ref(Ref&& other) noexcept
        : mObject(std::exchange(other.mObject, nullptr))
    {
    }

    ~Ref()
    {
        if (mObject != nullptr)
            mObject->releaseRef();
    }

    /// Takes over the caller's reference, as to an object just made.
    static Ref adopt(T* object)
    {
        Ref ref;
        ref.mObject = object;
        return ref;
    }

    Ref& operator=(T* object)
    {
        Ref(object).swap(*this); // the new reference before the old one goes: they may be the same
        return *this;
    }

    // NOLINTNEXTLINE(bugprone-unhandled-self-assignment): the copy holds the object meanwhile
    Ref& operator=(const Ref& other)
    {
        Ref(other).swap(*this);
        return *this;
    }

    Ref& operator=(Ref&& other) noexcept
    {
        Ref(std::move(other)).swap(*this);
        return *this;
    }

    void swap(Ref& other) noexcept { std::swap(mObject, other.mObject); }

    T* get() const { return mObject; } ///< the reference stays here

    T* operator->() const { return mObject; }

    T& operator*() const { return *mObject; }

    explicit operator bool() const { return mObject != nullptr; }

    friend bool operator==(const Ref& a, const Ref& b) { return a.mObject == b.mObject; }

private:
    T* mObject = nullptr;
};

} // namespace Korvanel
