// A bridge in a host that renders faster than time passes.
#include "library/PatternTree.h"
#include "tests/host/bridge/BridgeHost.h"

#include <gtest/gtest.h>

#include <random>
#include <thread>

namespace {

/// A bar of 4/4 with a quarter note at its start is 96,000 frames: of key 40 in program 0, of key
/// 41 in program 1.
class Offline : public testing::Test, protected BridgeHost
{
protected:
    Offline()
    {
        library.put("Rock/a.mid", midiFileWithNote(40));
        library.put("Rock/b.mid", midiFileWithNote(41));
        CLooper::patternTree()->update();
        bridge.effect().ChangePattern("Rock", "a.mid");
    }
};

} // namespace

TEST_F(Offline, AProgramChangeIsHeardFromItsFrame)
{
    bridge.setOffline(true);
    report(0, playingAt(0));
    message(1000, {0xC0, 1});
    message(97000, {0xC0, 0});
    block(200000);
    EXPECT_EQ(take(),
              (SentList{on(0, 40), off(1000, 40), on(96000, 41), off(97000, 41), on(192000, 40)}));
}

TEST_F(Offline, ProgramChangesAreTheSameForAnyBlocks)
{
    const unsigned seed = std::random_device{}();
    SCOPED_TRACE(seed);
    std::mt19937 random(seed);
    bridge.setOffline(true);
    report(0, playingAt(0));
    message(1000, {0xC0, 1});
    message(97000, {0xC0, 0});
    while (now < 200000)
        block(
            std::min<std::uint32_t>(1 + random() % 4096, 200000 - static_cast<std::uint32_t>(now)));
    EXPECT_EQ(take(),
              (SentList{on(0, 40), off(1000, 40), on(96000, 41), off(97000, 41), on(192000, 40)}));
}

TEST_F(Offline, WhatWasAskedForBeforeIsThereFromTheFirstBlockOn)
{
    message(0, {0xC0, 1});
    block(100);
    bridge.setOffline(true);
    report(100, playingAt(0));
    block(100);
    EXPECT_EQ(take(), (SentList{on(100, 41)}));
    EXPECT_FALSE(bridge.wantsWork());
}

TEST_F(Offline, WorkThatAnotherThreadHasBegunIsWaitedFor)
{
    for (int i = 0; i < 50; ++i) {
        const auto program = static_cast<std::uint8_t>((i + 1) % 2);
        bridge.setOffline(false);
        message(now, {0xC0, program});
        report(now, stoppedAt(0));
        block(100);
        take();
        std::thread worker([this] { bridge.work(); });
        bridge.setOffline(true);
        const std::int64_t start = now;
        report(start, playingAt(0));
        block(100);
        worker.join();
        ASSERT_EQ(take(), (SentList{on(start, static_cast<std::uint8_t>(40 + program))})) << i;
    }
}
