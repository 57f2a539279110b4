#include "host/bridge/BridgeQueue.h"

#include "tests/support/Guards.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>

namespace {

Korvanel::MidiEvent at(std::int32_t time, int key)
{
    return {time, 0x90, static_cast<std::uint8_t>(key), 100, 0, 10};
}

std::vector<std::pair<int, int>> content(const BridgeQueue& queue)
{
    std::vector<std::pair<int, int>> all;
    for (const Korvanel::MidiEvent& event : queue.events())
        all.emplace_back(event.time, event.data1);
    return all;
}

using Pairs = std::vector<std::pair<int, int>>;

} // namespace

TEST(BridgeQueue, RemovingMovesLaterEventsDown)
{
    BridgeQueue queue(4);
    for (const int key : {1, 2, 3})
        queue.InsertEvent(at(0, key));
    queue.RemoveEvent(1);
    EXPECT_EQ(content(queue), (Pairs{{0, 1}, {0, 3}}));
    EXPECT_EQ(queue.GetEvent(1).data1, 3);
}

TEST(BridgeQueue, WhatIsTooMuchIsDropped)
{
    BridgeQueue queue(2);
    for (const int key : {1, 2, 3})
        queue.InsertEvent(at(0, key));
    EXPECT_EQ(queue.GetCount(), 2);
}

TEST(BridgeQueue, SortingKeepsTheOrderOfEqualTimes)
{
    std::mt19937 random(1);
    BridgeQueue queue(1000);
    Pairs expected;
    for (int i = 0; i < 1000; ++i) {
        const auto time = static_cast<std::int32_t>(random() % 50);
        queue.InsertEvent(at(time, i % 128));
        expected.emplace_back(time, i % 128);
    }
    std::stable_sort(expected.begin(), expected.end(),
                     [](const auto& a, const auto& b) { return a.first < b.first; });
    const AllocationGuard allocations;
    queue.sort();
    EXPECT_EQ(allocations.count(), 0u);
    EXPECT_EQ(content(queue), expected);
}
