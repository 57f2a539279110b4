// State of a bridge: whole round trips, and damage of every kind.
#include "library/PatternTree.h"
#include "tests/host/bridge/BridgeHost.h"

#include <gtest/gtest.h>

namespace {

class BridgeState : public testing::Test, protected BridgeHost
{
protected:
    BridgeState()
    {
        bridge.effect().set_track(fourQuarters());
        bridge.effect().SetPatternName("mine");
        bridge.effect().setVeloPlus(7);
        bridge.effect().setDnDRepeat(3);
    }
};

} // namespace

TEST_F(BridgeState, WhatIsSavedComesBack)
{
    const std::string state = bridge.saveState();
    BridgeHost other;
    ASSERT_TRUE(other.bridge.loadState(state));
    EXPECT_EQ(other.bridge.effect().getVeloPlus().value, 7);
    EXPECT_EQ(other.bridge.saveState().size(),
              state.size() + other.library.path().size() - library.path().size());
    other.report(0, playingAt(0));
    other.block(1000);
    EXPECT_EQ(other.take(), (SentList{on(0, 60, 107)}));
}

TEST_F(BridgeState, ALoadedTempoTypeIsHeard)
{
    bridge.effect().TempoType(2);
    const std::string state = bridge.saveState();
    BridgeHost other;
    other.bridge.loadState(state);
    other.report(0, playingAt(0));
    other.block(12001);
    EXPECT_EQ(other.take(), (SentList{on(0, 60, 107), off(6000, 60), on(12000, 62, 107)}));
}

TEST_F(BridgeState, TheHostHearsOfLoadedParameters)
{
    const std::string state = bridge.saveState();
    BridgeHost other;
    other.bridge.parameters().reportChanges([](std::size_t, int) {});
    other.bridge.loadState(state);
    int told = 0;
    other.bridge.parameters().reportChanges([&](std::size_t, int) { ++told; });
    EXPECT_EQ(told, 2);
}

TEST_F(BridgeState, EveryTruncationIsRefusedAndChangesNothing)
{
    const std::string state = bridge.saveState();
    BridgeHost other;
    const std::string before = other.bridge.saveState();
    for (std::size_t size = 0; size < state.size(); ++size)
        ASSERT_FALSE(other.bridge.loadState(state.substr(0, size))) << size;
    EXPECT_EQ(other.bridge.saveState(), before);
}

TEST_F(BridgeState, ADamagedPatternIsRefusedAndTheOldOnePlaysOn)
{
    std::string state = bridge.saveState();
    state.replace(state.find("MThd"), 4, "MTxx");
    EXPECT_FALSE(bridge.loadState(state));
    report(0, playingAt(0));
    block(1000);
    EXPECT_EQ(take(), (SentList{on(0, 60, 107)}));
}

TEST_F(BridgeState, AChunkOfNoVersionIsRefused)
{
    EXPECT_FALSE(bridge.loadState(std::string(4, '\0')));
    EXPECT_FALSE(bridge.loadState("\xFF\xFF\xFF\xFF"));
    EXPECT_FALSE(bridge.loadState(""));
}

TEST_F(BridgeState, WhatWasAskedForBeforeAStateIsOver)
{
    library.put("Rock/a.mid", midiFileWithNote(41));
    CLooper::patternTree()->update();
    const std::string state = bridge.saveState();
    message(0, {0xC0, 0});
    block(100);
    bridge.loadState(state);
    EXPECT_FALSE(bridge.wantsWork());
    EXPECT_STREQ(bridge.effect().GetPatternName().c_str(), "mine");
}

TEST_F(BridgeState, LoadingSilencesTheOldPattern)
{
    const std::string state = bridge.saveState();
    report(0, playingAt(0));
    block(1000);
    bridge.loadState(state);
    block(1000);
    EXPECT_EQ(take(), (SentList{on(0, 60, 107), off(1000, 60)}));
}
