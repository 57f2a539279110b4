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
