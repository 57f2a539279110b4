#include "effect/ListenerList.h"

#include "tests/support/Guards.h"

#include <gtest/gtest.h>

#include <atomic>
#include <thread>

using Korvanel::ListenerList;

namespace {

struct Counting
{
    std::atomic<int> told{0};
};

void tell(Counting& listener)
{
    ++listener.told;
}

} // namespace

TEST(ListenerList, TellsInTheOrderOfRegistrationAndTwiceIfAddedTwice)
{
    ListenerList<int> list;
    int a = 1;
    int b = 2;
    list.add(&a);
    list.add(&b);
    list.add(&a);
    std::vector<int> told;
    list.broadcast([&told](int& listener) { told.push_back(listener); });
    EXPECT_EQ(told, (std::vector<int>{1, 2, 1}));
    list.remove(&a);
    EXPECT_EQ(list.size(), 1u);
}

TEST(ListenerList, AListenerMayRemoveItselfAndOthersWhileItIsTold)
{
    ListenerList<Counting> list;
    Counting first;
    Counting second;
    list.add(&first);
    list.add(&second);
    list.broadcast([&](Counting& listener) {
        tell(listener);
        list.remove(&first);
        list.remove(&second);
    });
    EXPECT_EQ(first.told, 1);
    EXPECT_EQ(second.told, 0);
    EXPECT_EQ(list.size(), 0u);
}

TEST(ListenerList, TellsOnlyTheFirstWhenAsked)
{
    ListenerList<Counting> list;
    Counting first;
    Counting second;
    list.tellFirst(tell);
    list.add(&first);
    list.add(&second);
    list.tellFirst(tell);
    EXPECT_EQ(first.told, 1);
    EXPECT_EQ(second.told, 0);
}

TEST(ListenerList, ABroadcastNeitherAllocatesNorLocks)
{
    ListenerList<Counting> list;
    Counting listener;
    list.add(&listener);
    const AllocationGuard allocations;
    const LockCounter locks;
    list.broadcast(tell);
    EXPECT_EQ(allocations.count(), 0u);
    EXPECT_EQ(locks.count(), 0u);
}

TEST(ListenerList, AListenerMayRemoveItselfWhileAnotherThreadRemoves)
{
    ListenerList<Counting> list;
    Counting own;
    Counting other;
    list.add(&own);
    list.add(&other);
    std::atomic<bool> called{false};
    std::thread teller([&] {
        list.broadcast([&](Counting& listener) {
            if (&listener != &own)
                return;
            called = true;
            while (list.size() != 1) // until the other thread is in the midst of its removal
                std::this_thread::yield();
            list.remove(&own);
        });
    });
    while (!called)
        std::this_thread::yield();
    list.remove(&other);
    teller.join();
    EXPECT_EQ(list.size(), 0u);
}

TEST(ListenerList, ARemovalFromInsideABroadcastWaitsForOtherThreadsToo)
{
    ListenerList<Counting> list;
    Counting remover;
    Counting removed;
    list.add(&remover);
    list.add(&removed);
    std::atomic<bool> called{false};
    std::atomic<bool> left{false};
    std::thread teller([&] {
        list.broadcast([&](Counting& listener) {
            if (&listener != &removed)
                return;
            called = true;
            for (int i = 0; i < 2000 || list.size() != 1; ++i)
                std::this_thread::yield();
            left = true;
        });
    });
    while (!called)
        std::this_thread::yield();
    list.broadcast([&](Counting& listener) {
        if (&listener == &remover)
            list.remove(&removed);
        EXPECT_TRUE(left);
    });
    teller.join();
}

TEST(ListenerList, RemovingNobodyRemovesAndWaitsForNobody)
{
    ListenerList<Counting> list;
    Counting listener;
    list.add(&listener);
    list.remove(nullptr);
    EXPECT_EQ(list.size(), 1u);
}

TEST(ListenerList, AnExceptionOfAListenerEndsItsCall)
{
    ListenerList<Counting> list;
    Counting listener;
    list.add(&listener);
    EXPECT_THROW(list.broadcast([](Counting&) { throw 1; }), int);
    std::thread remover([&] { list.remove(&listener); }); // would wait for a call that never ends
    remover.join();
    EXPECT_EQ(list.size(), 0u);
}

TEST(ListenerList, OnceRemovedAListenerIsNoLongerToldByAnyThread)
{
    ListenerList<Counting> list;
    std::atomic<bool> done{false};
    std::thread teller([&] {
        while (!done)
            list.broadcast(tell);
    });
    for (int i = 0; i < 500; ++i) {
        auto listener = std::make_unique<Counting>();
        list.add(listener.get());
        list.remove(listener.get());
        listener.reset(); // a late call would be caught by the sanitizers
    }
    done = true;
    teller.join();
    EXPECT_EQ(list.size(), 0u);
}
