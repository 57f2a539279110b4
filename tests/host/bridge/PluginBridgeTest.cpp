#include "host/bridge/PluginBridge.h"

#include "library/PatternTree.h"
#include "tests/host/bridge/BridgeHost.h"
#include "tests/support/Guards.h"

#include <gtest/gtest.h>

#include <random>

namespace {

/// At 48,000 frames a second and 120 BPM a quarter is 24,000 frames.
class Bridge : public testing::Test, protected BridgeHost
{
protected:
    Bridge() { bridge.effect().set_track(fourQuarters()); }
};

} // namespace

// Where notes fall --------------------------------------------------------------------------------

TEST_F(Bridge, NotesFallOnTheirFrames)
{
    report(0, playingAt(0));
    block(48000);
    EXPECT_EQ(take(), (SentList{on(0, 60), off(12000, 60), on(24000, 62), off(36000, 62)}));
}

TEST_F(Bridge, PositionsNeedNotBeRepeated)
{
    report(0, playingAt(0));
    for (int i = 0; i < 96; ++i)
        block(1000);
    EXPECT_EQ(sink.sent.size(), 8u);
    EXPECT_EQ(sink.sent[6], on(72000, 65));
}

TEST_F(Bridge, AStartInMidBlockIsHeardFromItsFrame)
{
    report(500, playingAt(0));
    block(1000);
    EXPECT_EQ(take(), (SentList{on(500, 60)}));
}

TEST_F(Bridge, TheFirstNoteIsThereAfterStartLocateAndLoop)
{
    report(0, playingAt(0));
    report(1000, playingAt(16));
    report(2000, playingAt(4));
    block(3000);
    EXPECT_EQ(take(),
              (SentList{on(0, 60), off(1000, 60), on(1000, 60), off(2000, 60), on(2000, 60)}));
}

TEST_F(Bridge, AHostsLoopInsideABlockPlaysItsFirstNote)
{
    HostPosition position = playingAt(3.5);
    position.looping = true;
    position.loopEnd = 4;
    report(0, position);
    block(24000);
    EXPECT_EQ(take(), (SentList{on(12000, 60)}));
    position.quarters = 0.5;
    report(24000, position);
    block(12000);
    EXPECT_EQ(take(), (SentList{off(24000, 60)}));
}

TEST_F(Bridge, ATempoChangeInsideABlockHoldsFromItsFrame)
{
    report(0, playingAt(0, 120));
    report(12000, playingAt(0.5, 60));
    block(48000);
    EXPECT_EQ(take(), (SentList{on(0, 60), off(12000, 60), on(36000, 62)}));
}

TEST_F(Bridge, NotesOfANegativeCountInStayOut)
{
    report(0, playingAt(-1));
    block(36000);
    EXPECT_EQ(take(), (SentList{on(24000, 60)}));
}

TEST_F(Bridge, TheOutputDoesNotDependOnTheBlocks)
{
    const unsigned seed = std::random_device{}();
    SCOPED_TRACE(seed);
    std::mt19937 random(seed);
    constexpr std::int64_t kLength = 400'000;
    const auto song = [](BridgeHost& host) {
        host.bridge.effect().set_track(fourQuarters());
        host.bridge.effect().useVelocity(true);
        host.report(777, playingAt(1.3, 133.7));
        host.message(5000, {0x91, 62, 80});
        host.report(60'001, playingAt(1.3 + 59'224 * 133.7 / 60 / 48000, 240));
        host.message(99'999, {0xBF, 127, 40});
        host.report(150'000, playingAt(2));
        host.message(160'000, {0x81, 62, 0});
        host.report(200'000, stoppedAt(4));
        host.report(201'234, playingAt(7, 77));
    };
    BridgeHost whole;
    song(whole);
    whole.block(kLength);
    ASSERT_GT(whole.sink.sent.size(), 20u);
    for (int i = 0; i < 20; ++i) {
        BridgeHost cut;
        song(cut);
        while (cut.now < kLength)
            cut.block(static_cast<std::uint32_t>(
                std::min<std::int64_t>(random() % 4096 + 1, kLength - cut.now)));
        ASSERT_EQ(cut.sink.sent, whole.sink.sent);
    }
}

TEST(BridgeSamples, AKnownPatternFallsOnItsSamplesAtAnyRateTempoAndBlockSize)
{
    const unsigned seed = std::random_device{}();
    SCOPED_TRACE(seed);
    std::mt19937 random(seed);
    for (const std::int64_t rate : {22050, 44100, 48000, 96000, 192000})
        for (const std::int64_t tempo : {20, 61, 97, 120, 400}) {
            BridgeHost host(static_cast<double>(rate));
            host.bridge.effect().set_track(fourQuarters());
            host.report(0, playingAt(0, static_cast<double>(tempo)));
            const std::int64_t end = 9 * 60 * rate / tempo;
            while (host.now < end)
                host.block(static_cast<std::uint32_t>(random() % 4096 + 1));
            const SentList sent = host.take();
            ASSERT_GE(sent.size(), 18u);
            for (std::size_t i = 0; i < 18; ++i) // an on and an off in each quarter
                EXPECT_EQ(sent[i].frame, static_cast<std::int64_t>(i) * 30 * rate / tempo)
                    << rate << " Hz, " << tempo << " BPM, message " << i;
        }
}

// Silence -----------------------------------------------------------------------------------------

TEST_F(Bridge, AStopSilencesAtItsFrame)
{
    report(0, playingAt(0));
    report(700, stoppedAt(0.1));
    block(2000);
    block(48000);
    EXPECT_EQ(take(), (SentList{on(0, 60), off(700, 60)}));
}

TEST_F(Bridge, BypassSilencesAndPassesEverythingOn)
{
    report(0, playingAt(0));
    block(1000);
    bridge.setBypassed(true);
    message(1500, {0xC0, 5});
    block(23500);
    EXPECT_EQ(take(), (SentList{on(0, 60), off(1000, 60), {1500, {0xC0, 5}}}));
    EXPECT_FALSE(bridge.wantsWork());
    bridge.setBypassed(false);
    block(30000);
    EXPECT_EQ(take(), (SentList{on(48000, 64)}));
}

TEST_F(Bridge, ThruSilencesThePattern)
{
    report(0, playingAt(0));
    block(1000);
    bridge.effect().setThru(true);
    block(47000);
    EXPECT_EQ(take(), (SentList{on(0, 60), off(1000, 60)}));
}

TEST_F(Bridge, DisablingTheEffectSilencesThePattern)
{
    report(0, playingAt(0));
    block(1000);
    bridge.effect().Disable();
    block(1000);
    EXPECT_EQ(take(), (SentList{on(0, 60), off(1000, 60)}));
}

TEST_F(Bridge, DeactivationSilencesEverythingWithTheNextBlock)
{
    report(0, playingAt(0));
    message(10, {0x90, 90, 80});
    block(1000);
    bridge.deactivate();
    bridge.activate();
    block(48000);
    EXPECT_EQ(take(), (SentList{on(0, 60), {10, {0x90, 90, 80}}, off(1000, 60), off(1000, 90)}));
}

TEST_F(Bridge, RemovingThePatternSilencesIt)
{
    report(0, playingAt(0));
    block(1000);
    bridge.effect().Clear();
    block(48000);
    EXPECT_EQ(take(), (SentList{on(0, 60), off(1000, 60)}));
}

TEST_F(Bridge, ANewPatternEndsTheNotesOfTheOldOne)
{
    report(0, playingAt(0));
    block(1000);
    bridge.effect().set_track(pattern(480, {noteAt(480, 240, 40)}));
    block(24000);
    EXPECT_EQ(take(), (SentList{on(0, 60), off(1000, 60), on(24000, 40)}));
}

TEST_F(Bridge, AStopLeavesAPlayersNotesAlone)
{
    report(0, playingAt(0));
    message(10, {0x90, 90, 80});
    report(20, stoppedAt(0));
    message(30, {0x80, 90, 0});
    block(1000);
    EXPECT_EQ(take(),
              (SentList{on(0, 60), {10, {0x90, 90, 80}}, off(20, 60), {30, {0x80, 90, 0}}}));
}

// Input -------------------------------------------------------------------------------------------

TEST_F(Bridge, WhatTheEffectDoesNotUseIsPassedOn)
{
    message(10, {0xB0, 1, 64});
    message(20, {0xBF, 127, 64});
    message(30, {0xF0, 1, 2, 3, 4, 0xF7});
    message(40, {0xF8});
    message(50, {});
    block(100);
    EXPECT_EQ(take(),
              (SentList{{10, {0xB0, 1, 64}}, {30, {0xF0, 1, 2, 3, 4, 0xF7}}, {40, {0xF8}}}));
}

TEST_F(Bridge, TheVelocityControllerHoldsFromItsFrame)
{
    bridge.effect().useVelocity(true);
    report(0, playingAt(0));
    message(24000, {0xBF, 127, 40}); // -20
    block(24001);
    EXPECT_EQ(take(), (SentList{on(0, 60), off(12000, 60), on(24000, 62, 80)}));
}

TEST_F(Bridge, FramesBehindTheBlockCountAsItsLast)
{
    bridge.beginBlock(10, sink);
    bridge.position(99, playingAt(0));
    bridge.message(99, std::array<std::uint8_t, 3>{0x90, 90, 1});
    bridge.endBlock();
    EXPECT_EQ(take(), (SentList{{9, {0x90, 90, 1}}, on(9, 60)}));
}

TEST_F(Bridge, ABlockOfNoFramesIsHarmless)
{
    bridge.beginBlock(0, sink);
    bridge.position(0, playingAt(0));
    bridge.endBlock();
    block(10);
    EXPECT_EQ(take(), (SentList{on(0, 60)}));
}

TEST_F(Bridge, AFullPortLosesNoNoteOff)
{
    sink.room = 1;
    report(0, playingAt(0));
    block(13000);
    sink.room = SIZE_MAX;
    block(7000);
    EXPECT_EQ(take(), (SentList{on(0, 60), off(13000, 60)}));
}

// Programs ----------------------------------------------------------------------------------------

TEST_F(Bridge, AProgramChangePicksAPatternOfTheStyleOffTheAudioThread)
{
    library.put("Jazz/a.mid", midiFileWithNote(40));
    library.put("Rock/a.mid", midiFileWithNote(41));
    library.put("Rock/b.mid", midiFileWithNote(42));
    CLooper::patternTree()->update();
    bridge.effect().ChangePattern("Rock", "a.mid");
    message(0, {0xC0, 1});
    block(100);
    EXPECT_EQ(take(), SentList{});
    ASSERT_TRUE(bridge.wantsWork());
    EXPECT_STREQ(bridge.effect().GetPatternName().c_str(), "a.mid");
    bridge.work();
    EXPECT_STREQ(bridge.effect().GetPatternName().c_str(), "b.mid");
    EXPECT_STREQ(bridge.effect().GetStyleName().c_str(), "Rock");
    EXPECT_FALSE(bridge.wantsWork());
}

TEST_F(Bridge, AProgramThatTheStyleHasNotChangesNothing)
{
    library.put("Rock/a.mid", midiFileWithNote(41));
    CLooper::patternTree()->update();
    bridge.effect().ChangePattern("Rock", "a.mid");
    message(0, {0xC0, 1});
    block(100);
    bridge.work();
    EXPECT_STREQ(bridge.effect().GetPatternName().c_str(), "a.mid");
}

TEST_F(Bridge, WithoutAStyleProgramsAreThoseOfTheFirstOne)
{
    library.put("Jazz/a.mid", midiFileWithNote(40));
    library.put("Jazz/b.mid", midiFileWithNote(41));
    CLooper::patternTree()->update();
    message(0, {0xC0, 1});
    block(100);
    bridge.work();
    EXPECT_STREQ(bridge.effect().GetStyleName().c_str(), "Jazz");
    EXPECT_STREQ(bridge.effect().GetPatternName().c_str(), "b.mid");
}

TEST_F(Bridge, ALoosePatternHasAnEmptyStyle)
{
    library.put("loose.mid", midiFileWithNote(40));
    CLooper::patternTree()->update();
    message(0, {0xC0, 0});
    block(100);
    bridge.work();
    EXPECT_STREQ(bridge.effect().GetStyleName().c_str(), "");
    EXPECT_STREQ(bridge.effect().GetPatternName().c_str(), "loose.mid");
}

// Time and transport for the effect ---------------------------------------------------------------

TEST_F(Bridge, TheEffectHearsOfStartStopAndLoop)
{
    struct Starts : CLooper::Listener
    {
        void startPlaying() override { ++count; }

        int count = 0;
    } starts;

    bridge.effect().AddLooperListener(&starts);
    report(0, playingAt(0));
    report(10, playingAt(4));
    report(20, playingAt(0));
    report(30, stoppedAt(0));
    block(100);
    bridge.effect().RemoveLooperListener(&starts);
    EXPECT_EQ(starts.count, 3);
}

TEST_F(Bridge, ABlockAllocatesNothingTouchesNoFileAndTakesTheEffectsLockOncePerSlice)
{
    struct Deaf : MidiSink
    {
        bool send(std::uint32_t, std::span<const std::uint8_t>) override { return true; }
    } deaf;

    const std::array<std::uint8_t, 3> wheel{0xE0, 0, 64};
    const std::array<std::uint8_t, 2> program{0xC0, 1};
    const AllocationGuard allocations;
    const LockCounter locks;
    const FileCounter files;
    for (int i = 0; i < 100; ++i) {
        bridge.beginBlock(4096, deaf);
        bridge.position(0, playingAt(i % 7));
        bridge.message(1000, wheel);
        bridge.message(2000, program);
        bridge.endBlock();
    }
    EXPECT_EQ(allocations.count(), 0u);
    EXPECT_EQ(locks.count(), LockCounter::counts ? 300u : 0u);
    EXPECT_EQ(files.count(), 0u);
}

TEST(BridgeLibrary, EveryBridgeOfTheProcessUsesTheUsersLibrary)
{
    const OwnLibrary library;
    PluginBridge first;
    PluginBridge second;
    EXPECT_EQ(first.effect().GetPatternsDir().c_str(), library.path());
    EXPECT_EQ(second.effect().GetPatternsDir().c_str(), library.path());
    EXPECT_EQ(CLooper::patternTree()->GetRoot().c_str(), library.path());
}
