// The built bundle in a host on lilv.
#include "tests/host/lv2/Lv2Fixture.h"
#include "tests/support/Guards.h"
#include "tests/support/ProcessTally.h"

#include <chrono>
#include <fstream>
#include <iterator>
#include <random>
#include <thread>

// At 48,000 frames a second and 120 BPM a quarter is 24,000 frames, a bar 96,000.

TEST_F(InLv2Host, NotesFallOnTheirFramesThoughThePositionIsNeverRepeated)
{
    Lv2Instance plugin(*world);
    choose(plugin, 0);
    plugin.playAt(0, 0, 0);
    for (int i = 0; i < 100; ++i)
        plugin.run(1000);
    EXPECT_EQ(plugin.take(), (SentList{on(0, 40), off(24000, 40), on(96000, 40)}));
}

TEST_F(InLv2Host, AChangeInTheMiddleOfACycleHoldsFromItsFrame)
{
    Lv2Instance plugin(*world);
    choose(plugin, 0);
    plugin.playAt(100, 0, 0);
    plugin.playAt(200, 2, 0);
    plugin.stop(300);
    plugin.run(1000);
    EXPECT_EQ(plugin.take(), (SentList{on(100, 40), off(200, 40), on(200, 40), off(300, 40)}));
}

TEST_F(InLv2Host, ATempoAloneMayChange)
{
    Lv2Instance plugin(*world);
    choose(plugin, 0);
    plugin.playAt(0, 0, 0, 120);
    plugin.position(12000, {1, {}, {{"beatsPerMinute", 60.0F}}, {}, {}});
    plugin.run(48000);
    EXPECT_EQ(plugin.take(), (SentList{on(0, 40), off(36000, 40)}));
}

TEST_F(InLv2Host, AHostWithoutBarsIsFollowedByItsFrames)
{
    Lv2Instance plugin(*world);
    choose(plugin, 0);
    plugin.position(0, {1, {}, {}, {{"frame", 72000}}, {}});
    plugin.run(30000);
    EXPECT_EQ(plugin.take(), (SentList{on(24000, 40)}));
}

TEST_F(InLv2Host, TheFirstNoteAfterALoopIsThere)
{
    Lv2Instance plugin(*world);
    choose(plugin, 0);
    plugin.playAt(0, 0, 3);
    plugin.run(24000);
    plugin.playAt(0, 0, 0);
    plugin.run(24000);
    EXPECT_EQ(plugin.take(), (SentList{on(24000, 40)}));
}

TEST_F(InLv2Host, TheOutputDoesNotDependOnTheCycles)
{
    const unsigned seed = std::random_device{}();
    SCOPED_TRACE(seed);
    std::mt19937 random(seed);
    Lv2Instance whole(*world);
    choose(whole, 0);
    whole.playAt(0, 3, 1.25F, 133.3F);
    whole.run(1'000'000);
    ASSERT_GT(whole.sent.size(), 10u);
    Lv2Instance cut(*world);
    choose(cut, 0);
    cut.playAt(0, 3, 1.25F, 133.3F);
    while (cut.now < 1'000'000)
        cut.run(static_cast<std::uint32_t>(
            std::min<std::int64_t>(1 + random() % 4096, 1'000'000 - cut.now)));
    EXPECT_EQ(cut.sent, whole.sent);
}

TEST_F(InLv2Host, SwitchedOffItPassesEverythingOn)
{
    Lv2Instance plugin(*world);
    choose(plugin, 0);
    plugin.playAt(0, 0, 0);
    plugin.run(1000);
    plugin.control("enabled") = 0;
    plugin.midi(5, {0xC0, 1});
    plugin.run(1000);
    EXPECT_EQ(plugin.take(), (SentList{on(0, 40), off(1000, 40), {1005, {0xC0, 1}}}));
    EXPECT_EQ(plugin.asked, 0);
}

TEST_F(InLv2Host, ControlsAreTheEffectsParameters)
{
    Lv2Instance plugin(*world);
    choose(plugin, 0);
    plugin.control("velocity_add") = -30;
    plugin.control("tempo_type") = 2;
    plugin.playAt(0, 0, 0);
    plugin.run(12001);
    EXPECT_EQ(plugin.take(), (SentList{on(0, 40, 70), off(12000, 40)}));
}

TEST_F(InLv2Host, APortThatIsNotConnectedChangesNothing)
{
    Lv2Instance plugin(*world);
    choose(plugin, 0);
    plugin.control("velocity_add") = -30;
    plugin.run(1);
    for (std::uint32_t port = 2; port < plugin.controls.size(); ++port)
        lilv_instance_connect_port(plugin.instance, port, nullptr);
    plugin.now = 0;
    plugin.playAt(0, 0, 0);
    plugin.run(100);
    EXPECT_EQ(plugin.take(), (SentList{on(0, 40, 70)}));
}

TEST_F(InLv2Host, MessagesThatAreNotUsedGoThrough)
{
    Lv2Instance plugin(*world);
    plugin.midi(1, {0x93, 60, 1});
    plugin.midi(2, {0xF0, 1, 2, 3, 4, 5, 6, 7, 8, 0xF7});
    plugin.run(10);
    EXPECT_EQ(plugin.take(),
              (SentList{{1, {0x93, 60, 1}}, {2, {0xF0, 1, 2, 3, 4, 5, 6, 7, 8, 0xF7}}}));
}

TEST_F(InLv2Host, AFullOutputPortLosesNoNoteOff)
{
    Lv2Instance plugin(*world);
    choose(plugin, 0);
    plugin.playAt(0, 0, 0);
    plugin.run(1000);
    plugin.room = sizeof(LV2_Atom_Sequence_Body);
    plugin.run(24000);
    plugin.room = Lv2Instance::kBytes - sizeof(LV2_Atom);
    plugin.run(1000);
    EXPECT_EQ(plugin.take(), (SentList{on(0, 40), off(25000, 40)}));
}

TEST_F(InLv2Host, ActivationForgetsTheTransportAndSilencesWhatSounded)
{
    Lv2Instance plugin(*world);
    choose(plugin, 0);
    plugin.playAt(0, 0, 0);
    plugin.run(1000);
    lilv_instance_deactivate(plugin.instance);
    lilv_instance_activate(plugin.instance);
    plugin.run(96000);
    EXPECT_EQ(plugin.take(), (SentList{on(0, 40), off(1000, 40)}));
}

TEST_F(InLv2Host, WithoutAWorkerOfTheHostsItHasItsOwn)
{
    Lv2Instance plugin(*world, 48000, false);
    plugin.midi(0, {0xC0, 1});
    const auto limit = std::chrono::steady_clock::now() + std::chrono::seconds(30);
    while (plugin.sent.empty() && std::chrono::steady_clock::now() < limit) {
        plugin.playAt(0, 0, 0);
        plugin.run(100);
        plugin.stop(0);
        plugin.run(100);
        std::this_thread::yield();
    }
    ASSERT_FALSE(plugin.sent.empty());
    EXPECT_EQ(plugin.sent[0].bytes, (std::vector<std::uint8_t>{0x90, 41, 100}));
}

TEST_F(InLv2Host, FreeWheelingItWaitsForNoWorker)
{
    Lv2Instance plugin(*world);
    choose(plugin, 0);
    plugin.control("free_wheeling") = 1;
    plugin.playAt(0, 0, 0);
    plugin.midi(500, {0xC0, 1});
    plugin.run(100000);
    EXPECT_EQ(plugin.take(), (SentList{on(0, 40), off(500, 40), on(96000, 41)}));
    EXPECT_EQ(plugin.asked, 0);
}

TEST_F(InLv2Host, WhatAWorkerDoesAtOnceIsHeardFromThatFrame)
{
    Lv2Instance plugin(*world);
    choose(plugin, 0);
    plugin.worksAtOnce = true;
    plugin.playAt(0, 0, 0);
    plugin.midi(500, {0xC0, 1});
    plugin.run(100000);
    EXPECT_EQ(plugin.take(), (SentList{on(0, 40), off(500, 40), on(96000, 41)}));
}

TEST_F(InLv2Host, ACycleAllocatesNothingTouchesNoFileAndTakesTheEffectsLockOnly)
{
    Lv2Instance plugin(*world);
    choose(plugin, 0);
    plugin.playAt(0, 0, 0);
    plugin.run(1000);
    plugin.playAt(0, 7, 2);
    plugin.midi(10, {0xE0, 1, 2});
    plugin.midi(20, {0xC0, 1});
    const AllocationGuard allocations;
    const LockCounter locks;
    const FileCounter files;
    plugin.runOnly(4096);
    EXPECT_EQ(allocations.count(), 0u);
    EXPECT_EQ(locks.count(), LockCounter::counts ? 3u : 0u); // one for each slice
    EXPECT_EQ(files.count(), 0u);
}

TEST_F(InLv2Host, SixtyFourInstancesPlayAtOnce)
{
    std::vector<std::unique_ptr<Lv2Instance>> all;
    for (int i = 0; i < 64; ++i) {
        all.push_back(std::make_unique<Lv2Instance>(*world));
        choose(*all.back(), static_cast<std::uint8_t>(i % 2));
        all.back()->playAt(0, 0, 0);
    }
    for (int cycle = 0; cycle < 50; ++cycle)
        for (const auto& one : all)
            one->run(1000);
    for (std::size_t i = 0; i < all.size(); ++i) {
        const auto key = static_cast<std::uint8_t>(40 + i % 2);
        EXPECT_EQ(all[i]->take(), (SentList{on(0, key), off(24000, key)}));
    }
}

TEST_F(InLv2Host, NothingIsLeftBehindWhenItGoes)
{
    const auto use = [this] {
        Lv2Instance plugin(*world, 48000, false);
        choose(plugin, 0);
    };
    use(); // a sanitizer starts a thread of its own with the first
    const ProcessTally before = ProcessTally::now();
    for (int i = 0; i < 3; ++i)
        use();
    EXPECT_EQ(ProcessTally::settled(before), before);
}

// Effect and editor share one binary, so that they share the library and the thread that watches
// it; the window system must come with the first window only, for servers that play have none.
TEST_F(InLv2Host, PlayingLoadsNoWindowSystem)
{
    Lv2Instance first(*world);
    Lv2Instance second(*world, 48000, false);
    choose(first, 0);
    first.playAt(0, 0, 0);
    first.run(30000);
    second.run(30000);
    ASSERT_EQ(first.take().size(), 2u);
    std::ifstream maps("/proc/self/maps");
    const std::string all(std::istreambuf_iterator<char>(maps), {});
    EXPECT_NE(all.find("Looper.so"), std::string::npos);
    EXPECT_EQ(all.find("libX11"), std::string::npos);
    EXPECT_EQ(all.find("libxcb"), std::string::npos);
}

TEST(Lv2Library, AnInstallationWithoutPatternsFillsTheUsersLibrary)
{
    const LibraryFolder home;
    Environment environment;
    environment.set("XDG_DATA_HOME", home / "data");
    home.makeFolder("lv2");
    std::filesystem::copy(KV_LV2_BUNDLE, home / "lv2/Looper.lv2",
                          std::filesystem::copy_options::recursive);
    Lv2World world(home / "lv2/Looper.lv2/");
    Lv2Instance plugin(world);
    EXPECT_TRUE(std::filesystem::exists(home / "data/Korvanel/Loops/Jazz/Waltz.mid"));
}
