// What hosts read about the plug-in, against the table of parameters.
#include "host/bridge/Parameters.h"
#include "tests/host/lv2/Lv2Host.h"

#include <gtest/gtest.h>

#include <set>

namespace {

class Lv2Turtle : public testing::Test
{
protected:
    bool has(const LilvPort* port, const char* property)
    {
        LilvNode* node = lilv_new_uri(world.world, property);
        const bool result = lilv_port_has_property(world.plugin, port, node);
        lilv_node_free(node);
        return result;
    }

    bool plugInHas(const char* feature)
    {
        LilvNode* node = lilv_new_uri(world.world, feature);
        const bool result = lilv_plugin_has_feature(world.plugin, node);
        lilv_node_free(node);
        return result;
    }

    static std::string symbolOf(const LilvPlugin* plugin, const LilvPort* port)
    {
        return lilv_node_as_string(lilv_port_get_symbol(plugin, port));
    }

    std::set<std::string> valuesOf(const char* property)
    {
        std::set<std::string> all;
        LilvNode* node = lilv_new_uri(world.world, property);
        LilvNodes* values = lilv_plugin_get_value(world.plugin, node);
        LILV_FOREACH(nodes, at, values)
        all.insert(lilv_node_as_string(lilv_nodes_get(values, at)));
        lilv_nodes_free(values);
        lilv_node_free(node);
        return all;
    }

    std::string nameOf(const LilvPort* port)
    {
        return textAndFree(lilv_port_get_name(world.plugin, port));
    }

    std::string unitOf(const LilvPort* port)
    {
        LilvNode* unit = lilv_new_uri(world.world, "http://lv2plug.in/ns/extensions/units#unit");
        LilvNode* value = lilv_port_get(world.plugin, port, unit);
        lilv_node_free(unit);
        return value == nullptr ? "" : textAndFree(value);
    }

    std::vector<std::string> choicesOf(const LilvPort* port)
    {
        std::map<int, std::string> labels;
        LilvScalePoints* points = lilv_port_get_scale_points(world.plugin, port);
        LILV_FOREACH(scale_points, at, points)
        {
            const LilvScalePoint* point = lilv_scale_points_get(points, at);
            labels[lilv_node_as_int(lilv_scale_point_get_value(point))] =
                lilv_node_as_string(lilv_scale_point_get_label(point));
        }
        lilv_scale_points_free(points);
        std::vector<std::string> all;
        for (const auto& [value, label] : labels)
            all.push_back(label);
        return all;
    }

    static constexpr const char* kPercent = "http://lv2plug.in/ns/extensions/units#pc";

    Lv2World world;

private:
    static std::string textAndFree(LilvNode* node)
    {
        std::string text = lilv_node_as_string(node);
        lilv_node_free(node);
        return text;
    }
};

} // namespace

TEST_F(Lv2Turtle, TheMakerHasAName)
{
    LilvNode* maker = lilv_plugin_get_author_name(world.plugin);
    EXPECT_STREQ(lilv_node_as_string(maker), "Korvanel");
    lilv_node_free(maker);
}

TEST_F(Lv2Turtle, LilvTakesThePlugInForWhole)
{
    EXPECT_TRUE(lilv_plugin_verify(world.plugin));
    EXPECT_TRUE(plugInHas("http://lv2plug.in/ns/lv2core#hardRTCapable"));
}

TEST_F(Lv2Turtle, ItTellsWhichOptionsItTakes)
{
    EXPECT_TRUE(plugInHas("http://lv2plug.in/ns/ext/options#options"));
    EXPECT_TRUE(plugInHas("http://lv2plug.in/ns/ext/buf-size#boundedBlockLength"));
    EXPECT_EQ(valuesOf("http://lv2plug.in/ns/ext/options#supportedOption"),
              (std::set<std::string>{"http://lv2plug.in/ns/ext/buf-size#maxBlockLength",
                                     "http://lv2plug.in/ns/ext/buf-size#nominalBlockLength",
                                     "http://lv2plug.in/ns/ext/parameters#sampleRate"}));
    EXPECT_EQ(valuesOf("http://lv2plug.in/ns/lv2core#requiredFeature"),
              (std::set<std::string>{"http://lv2plug.in/ns/ext/urid#map"}));
}

TEST_F(Lv2Turtle, ThereIsOnePortForEachParameterBehindTheFirstFour)
{
    EXPECT_EQ(lilv_plugin_get_num_ports(world.plugin), 4 + Parameters::table().size());
    std::vector<float> min(20);
    std::vector<float> max(20);
    std::vector<float> normal(20);
    lilv_plugin_get_port_ranges_float(world.plugin, min.data(), max.data(), normal.data());
    std::uint32_t index = 4;
    for (const Parameter& parameter : Parameters::table()) {
        const LilvPort* port = lilv_plugin_get_port_by_index(world.plugin, index);
        EXPECT_EQ(symbolOf(world.plugin, port), parameter.id);
        EXPECT_EQ(nameOf(port), parameter.name);
        EXPECT_EQ(unitOf(port), std::string(parameter.unit) == "%" ? kPercent : "");
        EXPECT_EQ(min[index], static_cast<float>(parameter.min));
        EXPECT_EQ(max[index], static_cast<float>(parameter.max));
        EXPECT_EQ(normal[index], static_cast<float>(parameter.normal));
        EXPECT_TRUE(has(port, "http://lv2plug.in/ns/lv2core#integer"));
        EXPECT_EQ(has(port, "http://lv2plug.in/ns/lv2core#toggled"),
                  parameter.kind == ParameterKind::Toggle);
        EXPECT_EQ(has(port, "http://lv2plug.in/ns/lv2core#enumeration"),
                  parameter.kind == ParameterKind::Choice);
        ++index;
    }
}

TEST_F(Lv2Turtle, HostsFindTheFreeWheelingPort)
{
    LilvNode* role = lilv_new_uri(world.world, "http://lv2plug.in/ns/lv2core#freeWheeling");
    const LilvPort* port = lilv_plugin_get_port_by_designation(world.plugin, nullptr, role);
    lilv_node_free(role);
    ASSERT_NE(port, nullptr);
    EXPECT_EQ(symbolOf(world.plugin, port), "free_wheeling");
    EXPECT_TRUE(has(port, "http://lv2plug.in/ns/ext/port-props#notOnGUI"));
}

TEST_F(Lv2Turtle, TheTempoTypesHaveNames)
{
    LilvNode* name = lilv_new_string(world.world, "tempo_type");
    const LilvPort* port = lilv_plugin_get_port_by_symbol(world.plugin, name);
    lilv_node_free(name);
    EXPECT_EQ(choicesOf(port), (std::vector<std::string>{"Half", "Normal", "Double"}));
}
