// Callers compiled elsewhere know the order of the virtual operations only. The mirrors declare
// that order independently; the probes tell, by their signatures, which operation was called.
#include "shared/System/kvStream.h"
#include "tests/support/Slots.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

using namespace Korvanel;

namespace {

using Calls = std::vector<std::string>;

struct MirrorAllocator
{
    virtual void add() = 0;
    virtual void release() = 0;
    virtual void* allocate(std::uint32_t) = 0;
    virtual void* resize(void*, std::uint32_t) = 0;
    virtual void free(void*) = 0;

protected:
    ~MirrorAllocator() = default;
};

struct AllocatorProbe final : Allocator
{
    void AddRef() override { calls.emplace_back("AddRef"); }

    void Release() override { calls.emplace_back("Release"); }

    void* Alloc(std::uint32_t) override { return said("Alloc"); }

    void* Realloc(void*, std::uint32_t) override { return said("Realloc"); }

    void Free(void*) override { calls.emplace_back("Free"); }

    void* said(const char* name)
    {
        calls.emplace_back(name);
        return nullptr;
    }

    Calls calls;
};

struct MirrorBuffer
{
    virtual void add() = 0;
    virtual void release() = 0;
    virtual std::uint32_t read(void*, std::uint32_t) = 0;
    virtual std::uint32_t write(const void*, std::uint32_t) = 0;
    virtual std::uint32_t seek(std::uint32_t, int) = 0;
    virtual void* memory() const = 0;
    virtual std::uint32_t size() const = 0;
    virtual void* detach(void**, std::uint32_t*) = 0;
    virtual std::uint32_t endHere() = 0;
    virtual void* grow(std::uint32_t) = 0;
    virtual ~MirrorBuffer() = default;
};

struct BufferProbe final : IStreamBuffer
{
    explicit BufferProbe(Calls& told)
        : calls(told)
    {
    }

    ~BufferProbe() override { said("destructor"); }

    void AddRef() override { said("AddRef"); }

    void Release() override { said("Release"); }

    std::uint32_t Read(void*, std::uint32_t) override { return said("Read"); }

    std::uint32_t Write(const void*, std::uint32_t) override { return said("Write"); }

    std::uint32_t Seek(std::uint32_t, int) override { return said("Seek"); }

    void* GetBuffer() const override { return said("GetBuffer") == 0 ? nullptr : &calls; }

    std::uint32_t GetSize() const override { return said("GetSize"); }

    Allocator* Detach(void*&, std::uint32_t&) override
    {
        said("Detach");
        return nullptr;
    }

    std::uint32_t EndAtPos() override { return said("EndAtPos"); }

    void* Grow(std::uint32_t) override { return said("Grow") == 0 ? nullptr : &calls; }

    std::uint32_t said(const char* name) const
    {
        calls.emplace_back(name);
        return 0;
    }

    Calls& calls;
};

struct MirrorFile
{
    virtual ~MirrorFile() = default;
    virtual bool open(const char*, unsigned, unsigned) = 0;
    virtual void close() = 0;
    virtual std::uint32_t length() = 0;
    virtual bool cut() = 0;
    virtual int seek(std::uint32_t, int) = 0;
    virtual std::uint32_t read(void*, std::uint32_t) = 0;
    virtual std::uint32_t write(const void*, std::uint32_t) = 0;
};

struct FileProbe final : File
{
    explicit FileProbe(Calls& told)
        : calls(told)
    {
    }

    ~FileProbe() override { calls.emplace_back("destructor"); }

    bool open(const char*, unsigned, unsigned) override { return said("open") == 0; }

    void close() override { said("close"); }

    std::uint32_t length() override { return said("length"); }

    bool seteof() override { return said("seteof") == 0; }

    int seek(std::uint32_t, int) override { return static_cast<int>(said("seek")); }

    std::uint32_t read(void*, std::uint32_t) override { return said("read"); }

    std::uint32_t write(const void*, std::uint32_t) override { return said("write"); }

    std::uint32_t said(const char* name)
    {
        calls.emplace_back(name);
        return 0;
    }

    Calls& calls;
};

struct MirrorException
{
    virtual ~MirrorException() = default;
    virtual const char* text() const = 0;
};

struct MortalException final : StreamBufferException
{
    explicit MortalException(bool& died)
        : StreamBufferException(nullptr, ReadPastEnd)
        , dead(died)
    {
    }

    MortalException(const MortalException&) = delete;
    MortalException& operator=(const MortalException&) = delete;

    ~MortalException() override { dead = true; }

    bool& dead;
};

} // namespace

TEST(BufferSlots, AnAllocatorsOperationsStandInTheirOrder)
{
    AllocatorProbe probe;
    auto& slots = through<MirrorAllocator>(static_cast<Allocator*>(&probe));

    slots.add();
    slots.release();
    slots.allocate(1);
    slots.resize(nullptr, 1);
    slots.free(nullptr);

    EXPECT_EQ(probe.calls, (Calls{"AddRef", "Release", "Alloc", "Realloc", "Free"}));
}

TEST(BufferSlots, ABuffersOperationsStandInTheirOrder)
{
    Calls calls;
    auto& slots = through<MirrorBuffer>(static_cast<IStreamBuffer*>(new BufferProbe(calls)));

    slots.add();
    slots.release();
    slots.read(nullptr, 0);
    slots.write(nullptr, 0);
    slots.seek(0, 0);
    slots.memory();
    slots.size();
    slots.detach(nullptr, nullptr);
    slots.endHere();
    slots.grow(0);
    delete &slots;

    EXPECT_EQ(calls, (Calls{"AddRef", "Release", "Read", "Write", "Seek", "GetBuffer", "GetSize",
                            "Detach", "EndAtPos", "Grow", "destructor"}));
}

TEST(BufferSlots, TheBufferItselfHasThemInThatOrder)
{
    auto& slots = through<MirrorBuffer>(static_cast<IStreamBuffer*>(new StreamBuffer));

    slots.write("abcdef", 6);
    slots.seek(2, 0);
    EXPECT_EQ(slots.endHere(), 2u);
    const void* grown = slots.grow(9);
    EXPECT_EQ(slots.memory(), grown);
    EXPECT_EQ(slots.size(), 9u);
    slots.add();
    slots.release();
    slots.release();
}

TEST(BufferSlots, AFilesOperationsStandInTheirOrder)
{
    Calls calls;
    auto& slots = through<MirrorFile>(static_cast<File*>(new FileProbe(calls)));

    slots.open(nullptr, 0, 0);
    slots.close();
    slots.length();
    slots.cut();
    slots.seek(0, 0);
    slots.read(nullptr, 0);
    slots.write(nullptr, 0);
    delete &slots;

    EXPECT_EQ(calls,
              (Calls{"open", "close", "length", "seteof", "seek", "read", "write", "destructor"}));
}

TEST(BufferSlots, AnExceptionsTextFollowsItsDestructor)
{
    bool dead = false;
    auto& slots = through<MirrorException>(static_cast<Exception*>(new MortalException(dead)));

    EXPECT_STREQ(slots.text(), "Korvanel::Exception");
    EXPECT_FALSE(dead);
    delete &slots;

    EXPECT_TRUE(dead);
}
