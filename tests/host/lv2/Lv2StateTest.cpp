// State through lilv, as a host's project keeps it.
#include "tests/host/lv2/Lv2Fixture.h"

namespace {

struct FreeState
{
    void operator()(LilvState* state) const { lilv_state_free(state); }
};

using State = std::unique_ptr<LilvState, FreeState>;

class Lv2State : public InLv2Host
{
protected:
    State save(Lv2Instance& plugin)
    {
        return State(lilv_state_new_from_instance(
            world->plugin, plugin.instance, &world->urids.mapFeature, nullptr, nullptr, nullptr,
            nullptr, nullptr, nullptr, LV2_STATE_IS_POD, nullptr));
    }

    std::string textOf(const LilvState& state)
    {
        char* text =
            lilv_state_to_string(world->world, &world->urids.mapFeature, &world->urids.unmapFeature,
                                 &state, "urn:test:state", nullptr);
        std::string result = text == nullptr ? "" : text;
        std::free(text);
        return result;
    }

    State fromText(const std::string& text)
    {
        return State(
            lilv_state_new_from_string(world->world, &world->urids.mapFeature, text.c_str()));
    }

    /// A project whose pattern plays with 20 more.
    State louder()
    {
        Lv2Instance plugin(*world);
        choose(plugin, 0);
        plugin.control("velocity_add") = 20;
        plugin.run(1);
        return save(plugin);
    }

    static std::uint8_t playedVelocity(Lv2Instance& plugin)
    {
        plugin.playAt(0, 0, 0);
        plugin.run(1);
        plugin.stop(0);
        plugin.run(1);
        return plugin.take().at(0).bytes.at(2);
    }

    static void restore(const State& state, Lv2Instance& plugin)
    {
        lilv_state_restore(state.get(), plugin.instance, nullptr, nullptr, 0, nullptr);
    }
};

} // namespace

TEST_F(Lv2State, AProjectBringsItsPatternBack)
{
    Lv2Instance first(*world);
    choose(first, 1);
    const std::string project = textOf(*save(first));
    ASSERT_NE(project.find("base64Binary"), std::string::npos) << project;
    library.remove("Loops");

    Lv2Instance second(*world);
    restore(fromText(project), second);
    second.playAt(0, 0, 0);
    second.run(100);
    EXPECT_EQ(second.take(), (SentList{on(0, 41)}));
    EXPECT_EQ(second.logged, "");
}

TEST_F(Lv2State, ADamagedProjectIsReportedAndTheInstancePlaysOn)
{
    Lv2Instance plugin(*world);
    choose(plugin, 0);
    std::string project = textOf(*save(plugin));
    const std::size_t version = project.find("\"BgAA"); // 6, in the first bytes
    ASSERT_NE(version, std::string::npos) << project;
    project.replace(version, 5, "\"AAAA");
    restore(fromText(project), plugin);
    EXPECT_NE(plugin.logged.find("damaged"), std::string::npos);
    plugin.playAt(0, 0, 0);
    plugin.run(100);
    EXPECT_EQ(plugin.take(), (SentList{on(0, 40)}));
}

// Hosts restore ports and state together, alike, mostly before the first cycle. Where the two
// differ, this is who wins.

TEST_F(Lv2State, AtFirstAPortThatSomeoneHasMovedWins)
{
    const State project = louder();
    Lv2Instance plugin(*world);
    plugin.control("velocity_add") = 5;
    restore(project, plugin);
    EXPECT_EQ(playedVelocity(plugin), 105);
}

TEST_F(Lv2State, AtFirstTheStateWinsOverAPortThatNobodyHasMoved)
{
    const State project = louder();
    Lv2Instance plugin(*world);
    plugin.control("velocity_add") = -10; // as its Turtle has it
    restore(project, plugin);
    EXPECT_EQ(playedVelocity(plugin), 120);
}

TEST_F(Lv2State, LaterTheStateHoldsUntilAPortMoves)
{
    const State project = louder();
    Lv2Instance plugin(*world);
    plugin.control("velocity_add") = 5;
    plugin.run(1);
    restore(project, plugin);
    EXPECT_EQ(playedVelocity(plugin), 120);
    EXPECT_EQ(playedVelocity(plugin), 120);
    plugin.control("velocity_add") = 6;
    EXPECT_EQ(playedVelocity(plugin), 106);
}

TEST_F(Lv2State, AProjectWithoutStateChangesNothing)
{
    Lv2Instance plugin(*world);
    choose(plugin, 0);
    const auto& interface = plugin.extension<LV2_State_Interface>(LV2_STATE__interface);
    const auto nothing = [](LV2_State_Handle, std::uint32_t, std::size_t*, std::uint32_t*,
                            std::uint32_t*) -> const void* { return nullptr; };
    EXPECT_EQ(
        interface.restore(lilv_instance_get_handle(plugin.instance), nothing, nullptr, 0, nullptr),
        LV2_STATE_ERR_NO_PROPERTY);
    plugin.playAt(0, 0, 0);
    plugin.run(100);
    EXPECT_EQ(plugin.take(), (SentList{on(0, 40)}));
}
