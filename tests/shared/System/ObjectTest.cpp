#include "shared/System/kvObject.h"

#include <gtest/gtest.h>

#include <thread>

using namespace Korvanel;

namespace {

/// Tells when it dies.
class Mortal : public Object
{
public:
    explicit Mortal(bool& dead)
        : mDead(dead)
    {
    }

    ~Mortal() override { mDead = true; }

private:
    bool& mDead;
};

/// An interface of its own beside the counted object, as streams over files have it.
struct Interface : RefCounted
{
};

class Both : public Object, public Interface
{
public:
    std::int32_t keepRef() override { return Object::keepRef(); }

    std::int32_t releaseRef() override { return Object::releaseRef(); }
};

} // namespace

TEST(Base, CountsItsLiveBlocks)
{
    const std::int32_t before = Base::numAllocations;
    void* block = Base::memoryAlloc(16);
    EXPECT_EQ(Base::numAllocations, before + 1);
    Base::memoryFree(block);
    EXPECT_EQ(Base::numAllocations, before);
}

TEST(Base, FreeingNothingCountsNothing)
{
    const std::int32_t before = Base::numAllocations;
    Base::memoryFree(nullptr);
    EXPECT_EQ(Base::numAllocations, before);
}

TEST(Object, IsCountedAmongTheAllocations)
{
    const std::int32_t before = Base::numAllocations;
    auto* object = new Object;
    EXPECT_EQ(Base::numAllocations, before + 1);
    object->releaseRef();
    EXPECT_EQ(Base::numAllocations, before);
}

TEST(Object, LivesUntilTheLastRelease)
{
    bool dead = false;
    auto* object = new Mortal(dead);
    EXPECT_EQ(object->keepRef(), 2);
    EXPECT_EQ(object->releaseRef(), 1);
    EXPECT_FALSE(dead);
    EXPECT_EQ(object->releaseRef(), 0);
    EXPECT_TRUE(dead);
}

TEST(Object, IsReleasedThroughAnInterfaceOfItsOwn)
{
    const std::int32_t before = Base::numAllocations;
    Interface* interface = new Both;
    EXPECT_EQ(interface->keepRef(), 2);
    interface->releaseRef();
    interface->releaseRef();
    EXPECT_EQ(Base::numAllocations, before);
}

TEST(Object, CountsOnTwoThreads)
{
    bool dead = false;
    auto* object = new Mortal(dead);
    auto keepAndRelease = [object] {
        for (int i = 0; i < 10'000; ++i) {
            object->keepRef();
            object->releaseRef();
        }
    };
    std::thread other(keepAndRelease);
    keepAndRelease();
    other.join();
    EXPECT_EQ(object->releaseRef(), 0);
    EXPECT_TRUE(dead);
}

TEST(Ref, TakesAReferenceOfItsOwn)
{
    bool dead = false;
    auto* object = new Mortal(dead);
    {
        const Ref<Mortal> ref(object);
        object->releaseRef();
        EXPECT_FALSE(dead);
    }
    EXPECT_TRUE(dead);
}

TEST(Ref, AdoptingTakesTheCreatorsReference)
{
    bool dead = false;
    {
        const auto ref = Ref<Mortal>::adopt(new Mortal(dead));
    }
    EXPECT_TRUE(dead);
}

TEST(Ref, AssigningReleasesTheOldObject)
{
    bool firstDead = false;
    bool secondDead = false;
    auto ref = Ref<Mortal>::adopt(new Mortal(firstDead));
    ref = Ref<Mortal>::adopt(new Mortal(secondDead));
    EXPECT_TRUE(firstDead);
    EXPECT_FALSE(secondDead);
    ref = nullptr;
    EXPECT_TRUE(secondDead);
    EXPECT_FALSE(ref);
}

TEST(Ref, AssigningItsOwnObjectKeepsIt)
{
    bool dead = false;
    auto ref = Ref<Mortal>::adopt(new Mortal(dead));
    ref = ref.get();
    EXPECT_FALSE(dead);
    const Ref<Mortal> copy = ref;
    EXPECT_TRUE(copy == ref);
    const Ref<Mortal> moved = std::move(ref);
    EXPECT_FALSE(dead);
}
