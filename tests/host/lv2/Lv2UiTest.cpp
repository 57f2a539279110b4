// The window of the built bundle in a host that gives it one of its own.
#include "tests/host/lv2/Lv2UiHost.h"
#include "tests/support/ProcessTally.h"

#include <atomic>

namespace {

constexpr std::uint32_t kVelocityAdd = 4;        ///< the port
constexpr toolkit::Point kMoreVelocity{682, 46}; ///< the upper arrow beside it
constexpr toolkit::Point kThru{512, 270};
constexpr std::uint32_t kThruPort = 11;

toolkit::Point in(toolkit::Point corner, toolkit::Point place)
{
    return {corner.x + place.x, corner.y + place.y};
}

/// Plays cycles on a thread of its own.
class Playing
{
public:
    explicit Playing(Lv2Instance& plugin)
        : mThread([this, &plugin] {
            plugin.playAt(0, 0, 0);
            while (!mStop) {
                plugin.run(256);
                ++cycles;
            }
        })
    {
    }

    Playing(const Playing&) = delete;
    Playing& operator=(const Playing&) = delete;

    ~Playing()
    {
        mStop = true;
        mThread.join();
    }

    std::atomic<int> cycles{0};

private:
    std::atomic<bool> mStop{false};
    std::thread mThread;
};

} // namespace

TEST_F(InLv2Window, TheWindowStandsInTheHostsAndSaysItsSize)
{
    const Lv2Instance plugin(*world);
    const unsigned long parent = makeParent();
    const auto window = open(plugin, {parent});
    ASSERT_NE(window->handle, nullptr) << window->logged;
    EXPECT_NE(window->widget, nullptr);
    EXPECT_EQ(display.childrenOf(parent), 1u);
    EXPECT_EQ(window->sizes, (std::vector<std::pair<int, int>>{{720, 540}}));
    EXPECT_TRUE(untilPainted(*window));
    EXPECT_EQ(window->idle(), 0);
    EXPECT_EQ(window->logged, "");
}

TEST_F(InLv2Window, AnArrowReachesTheSoundAndTheHost)
{
    Lv2Instance plugin(*world);
    choose(plugin, 0);
    const auto window = open(plugin, {makeParent()});
    ASSERT_NE(window->handle, nullptr) << window->logged;
    ASSERT_TRUE(untilPainted(*window));
    display.click(kMoreVelocity);
    ASSERT_TRUE(until({window.get()}, [&] { return !window->writes.empty(); }));
    EXPECT_EQ(window->writes, (WriteList{{kVelocityAdd, 1.0F}}));
    plugin.control("velocity_add") = 1;
    plugin.playAt(0, 0, 0);
    plugin.run(1000);
    EXPECT_EQ(plugin.take(), (SentList{on(0, 40, 101)}));
}

TEST_F(InLv2Window, AChangeHoldsWhileTheHostLeavesThePortWhereItWas)
{
    Lv2Instance plugin(*world);
    choose(plugin, 0);
    const auto window = open(plugin, {makeParent()});
    ASSERT_NE(window->handle, nullptr) << window->logged;
    ASSERT_TRUE(untilPainted(*window));
    display.click(kMoreVelocity);
    ASSERT_TRUE(until({window.get()}, [&] { return !window->writes.empty(); }));
    plugin.run(100);
    plugin.playAt(0, 0, 0);
    plugin.run(100);
    EXPECT_EQ(plugin.take(), (SentList{on(100, 40, 101)}));
    window->idle();
    EXPECT_EQ(window->writes.size(), 1u);
}

TEST_F(InLv2Window, AfterAChangeThePortIsFollowedAsSoonAsItMoves)
{
    Lv2Instance plugin(*world);
    choose(plugin, 0);
    const auto window = open(plugin, {makeParent()});
    ASSERT_NE(window->handle, nullptr) << window->logged;
    ASSERT_TRUE(untilPainted(*window));
    display.click(kMoreVelocity);
    ASSERT_TRUE(until({window.get()}, [&] { return !window->writes.empty(); }));
    plugin.run(100);
    plugin.control("velocity_add") = -7;
    plugin.playAt(0, 0, 0);
    plugin.run(100);
    EXPECT_EQ(plugin.take(), (SentList{on(100, 40, 93)}));
}

TEST_F(InLv2Window, WhatTheHostSetsItIsNotToldAgain)
{
    Lv2Instance plugin(*world);
    const auto window = open(plugin, {makeParent()});
    ASSERT_NE(window->handle, nullptr) << window->logged;
    ASSERT_TRUE(untilPainted(*window));
    plugin.control("velocity_add") = 5;
    plugin.run(100);
    display.click(kThru);
    ASSERT_TRUE(until({window.get()}, [&] { return !window->writes.empty(); }));
    EXPECT_EQ(window->writes, (WriteList{{kThruPort, 1.0F}}));
}

TEST_F(InLv2Window, OfTwoWindowsOfOneInstanceOneTellsTheHost)
{
    const Lv2Instance plugin(*world);
    const auto first = open(plugin, {makeParent()});
    const auto second = open(plugin, {makeParent(740, 0)});
    ASSERT_NE(first->handle, nullptr) << first->logged;
    ASSERT_NE(second->handle, nullptr) << second->logged;
    ASSERT_TRUE(untilPainted(*first));
    display.click(kThru);
    ASSERT_TRUE(until({second.get(), first.get()},
                      [&] { return !first->writes.empty() || !second->writes.empty(); }));
    first->idle();
    second->idle();
    EXPECT_EQ(first->writes.size() + second->writes.size(), 1u);
}

TEST_F(InLv2Window, TwoInstancesHaveTheirOwnWindows)
{
    Lv2Instance quiet(*world);
    Lv2Instance loud(*world);
    choose(quiet, 0);
    choose(loud, 1);
    auto left = open(quiet, {makeParent()});
    const auto right = open(loud, {makeParent(740, 0)});
    ASSERT_NE(right->handle, nullptr) << right->logged;
    ASSERT_TRUE(untilPainted(*right, {740, 0}));
    display.click(in({740, 0}, kMoreVelocity));
    ASSERT_TRUE(until({left.get(), right.get()}, [&] { return !right->writes.empty(); }));
    EXPECT_EQ(left->writes, WriteList());
    left.reset();
    EXPECT_EQ(display.childrenOf(parents[0]), 0u);
    display.click(in({740, 0}, kThru));
    EXPECT_TRUE(until({right.get()}, [&] { return right->writes.size() == 2; }));
    EXPECT_EQ(right->writes, (WriteList{{kVelocityAdd, 1.0F}, {kThruPort, 1.0F}}));
}

TEST_F(InLv2Window, TheHostsScaleEnlargesTheWindow)
{
    const Lv2Instance plugin(*world);
    const auto window = open(plugin, {makeParent(0, 0, 1440, 1080), true, true, 2});
    ASSERT_NE(window->handle, nullptr) << window->logged;
    EXPECT_EQ(window->sizes, (std::vector<std::pair<int, int>>{{1440, 1080}}));
    ASSERT_TRUE(untilPainted(*window));
    display.click({2 * kThru.x, 2 * kThru.y});
    EXPECT_TRUE(until({window.get()}, [&] { return !window->writes.empty(); }));
}

TEST_F(InLv2Window, AScaleThatIsNoneIsIgnored)
{
    const Lv2Instance plugin(*world);
    const auto window =
        open(plugin, {makeParent(), true, true, std::numeric_limits<float>::infinity()});
    EXPECT_EQ(window->sizes, (std::vector<std::pair<int, int>>{{720, 540}}));
}

TEST_F(InLv2Window, TheHostMayResizeIt)
{
    const Lv2Instance plugin(*world);
    const auto window = open(plugin, {makeParent(0, 0, 1000, 700)});
    ASSERT_NE(window->handle, nullptr) << window->logged;
    EXPECT_EQ(window->resize(820, 640), 0);
    ASSERT_TRUE(until({window.get()}, [&] { return display.pixel({815, 635}) != 0; }));
    display.click({kThru.x + 100, kThru.y}); // it keeps to the right edge
    EXPECT_TRUE(until({window.get()}, [&] { return !window->writes.empty(); }));
}

TEST_F(InLv2Window, OpensAndClosesFiftyTimesWhileTheInstancePlaysAndLeavesNothing)
{
    Lv2Instance plugin(*world);
    choose(plugin, 0);
    const unsigned long parent = makeParent();
    const ProcessTally before = ProcessTally::now();
    {
        Playing playing(plugin);
        for (int i = 0; i < 50; ++i) {
            const int cycles = playing.cycles;
            const auto window = open(plugin, {parent});
            ASSERT_NE(window->handle, nullptr) << window->logged;
            ASSERT_TRUE(until({window.get()}, [&] { return playing.cycles > cycles + 1; }));
        }
    }
    EXPECT_EQ(display.childrenOf(parent), 0u);
    EXPECT_EQ(ProcessTally::settled(before), before);
    ASSERT_FALSE(plugin.sent.empty());
    for (std::size_t i = 0; i < plugin.sent.size(); ++i) {
        const auto frame = static_cast<std::int64_t>(i / 2) * 96000;
        EXPECT_EQ(plugin.sent[i], i % 2 == 0 ? on(frame, 40) : off(frame + 24000, 40));
    }
}

TEST_F(InLv2Window, WhatItNeedsAndDoesNotGetIsLoggedInOneLine)
{
    const Lv2Instance plugin(*world);
    const auto orphan = open(plugin, {});
    EXPECT_EQ(orphan->handle, nullptr);
    EXPECT_EQ(orphan->logged,
              "Korvanel Looper: no editor: the host gives no window to put the editor into\n");
    const auto stranger = open(plugin, {makeParent(), false});
    EXPECT_EQ(stranger->handle, nullptr);
    EXPECT_EQ(stranger->logged, "Korvanel Looper: no editor: the host gives no access to the "
                                "instance that the editor is for\n");
    const auto lost = open(plugin, {0x7ffffff});
    EXPECT_EQ(lost->handle, nullptr);
    EXPECT_EQ(lost->logged, "Korvanel Looper: no editor: the host's window is not there\n");
}

TEST_F(InLv2Window, AHostWithoutALogHasItInItsErrorStream)
{
    const Lv2Instance plugin(*world);
    testing::internal::CaptureStderr();
    const auto orphan = open(plugin, {0, true, false});
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              "Korvanel Looper: no editor: the host gives no window to put the editor into\n");
}

TEST_F(InLv2Window, WithoutADisplayThereIsNoWindowUntilThereIsOne)
{
    const Lv2Instance plugin(*world);
    const unsigned long parent = makeParent();
    {
        Environment environment;
        environment.set("DISPLAY", std::nullopt);
        const auto window = open(plugin, {parent});
        EXPECT_EQ(window->handle, nullptr);
        EXPECT_EQ(window->logged, "Korvanel Looper: no editor: there is no display\n");
    }
    const auto window = open(plugin, {parent});
    EXPECT_NE(window->handle, nullptr) << window->logged;
}

TEST_F(InLv2Window, AllWindowsAreOnOneThread)
{
    const Lv2Instance plugin(*world);
    const auto window = open(plugin, {makeParent()});
    const unsigned long parent = makeParent(740, 0);
    std::string logged;
    std::thread([&] { logged = open(plugin, {parent})->logged; }).join();
    EXPECT_EQ(logged,
              "Korvanel Looper: no editor: another thread of the host has an editor open\n");
    EXPECT_EQ(window->idle(), 0);
}

TEST_F(InLv2Window, TheBinaryOffersOneWindow)
{
    EXPECT_STREQ(binary->descriptor->URI, "https://korvanel.org/lv2/looper#ui");
    EXPECT_EQ(binary->descriptor->extension_data("http://lv2plug.in/ns/extensions/ui#touch"),
              nullptr);
    LilvUIs* uis = lilv_plugin_get_uis(world->plugin);
    EXPECT_EQ(lilv_uis_size(uis), 1u);
    LilvNode* x11 = lilv_new_uri(world->world, LV2_UI__X11UI);
    const LilvUI* ui = lilv_uis_get(uis, lilv_uis_begin(uis));
    EXPECT_TRUE(lilv_ui_is_a(ui, x11));
    EXPECT_STREQ(lilv_node_as_uri(lilv_ui_get_uri(ui)), binary->descriptor->URI);
    lilv_node_free(x11);
    lilv_uis_free(uis);
}
