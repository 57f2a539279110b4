#include "platform/toolkit/InterfaceDescription.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <set>

using namespace toolkit;

namespace {

std::string windowWith(const std::string& controls)
{
    return R"({"format": 1, "windows": {"W": {"size": [100, 80], "controls": [)" + controls +
           "]}}}";
}

/// What `parse` says about a text that it must refuse.
std::string errorOf(const std::string& text)
{
    InterfaceDescription description;
    std::string error;
    EXPECT_EQ(description.parse(text, error), descriptionInvalidErr) << text;
    EXPECT_EQ(description.window("W"), nullptr);
    return error;
}

} // namespace

TEST(InterfaceDescription, ReadsAControlWithAllItsParts)
{
    InterfaceDescription description;
    std::string error;
    const auto text = windowWith(R"({"kind": "little arrows", "id": 107, "signature": "Loop",
        "bounds": [1, 2, 3, 4], "minimum": -5, "maximum": 9, "value": 2, "tooltip": "Tip",
        "anchors": ["right", "bottom"], "tabOrder": 3, "enabled": false, "visible": false})");
    ASSERT_EQ(description.parse(text, error), noErr) << error;

    const auto& control = description.window("W")->controls.at(0);
    EXPECT_EQ(control.kind, ControlKind::littleArrows);
    EXPECT_EQ(control.id, (ControlID{"Loop"_4cc, 107}));
    EXPECT_EQ(control.bounds, (Rect{1, 2, 3, 4}));
    EXPECT_EQ(control.minimum, -5);
    EXPECT_EQ(control.maximum, 9);
    EXPECT_EQ(control.value, 2);
    EXPECT_EQ(control.tooltip, "Tip");
    EXPECT_FALSE(control.anchors.left);
    EXPECT_TRUE(control.anchors.bottom);
    EXPECT_EQ(control.tabOrder, 3);
    EXPECT_FALSE(control.enabled);
    EXPECT_FALSE(control.visible);
}

TEST(InterfaceDescription, ColumnsAreNamedByFourCharacters)
{
    InterfaceDescription description;
    std::string error;
    const auto text = windowWith(R"({"kind": "data browser", "bounds": [0, 0, 9, 9], "columns":
        [{"property": "name", "title": "Name"}, {"property": "leng", "width": 40}]})");
    ASSERT_EQ(description.parse(text, error), noErr) << error;

    const auto& columns = description.window("W")->controls.at(0).columns;
    ASSERT_EQ(columns.size(), 2u);
    EXPECT_EQ(columns[0].property, "name"_4cc);
    EXPECT_EQ(columns[0].width, 0);
    EXPECT_EQ(columns[1].width, 40);
}

TEST(InterfaceDescription, APopUpMenuCountsItsItemsFromOne)
{
    InterfaceDescription description;
    std::string error;
    const auto text =
        windowWith(R"({"kind": "pop-up menu", "bounds": [0, 0, 9, 9], "items": ["A", "B"]})");
    ASSERT_EQ(description.parse(text, error), noErr) << error;

    const auto& menu = description.window("W")->controls.at(0);
    EXPECT_EQ(menu.minimum, 1);
    EXPECT_EQ(menu.maximum, 2);
    EXPECT_EQ(menu.value, 1);
}

TEST(InterfaceDescription, AnErrorNamesItsPlace)
{
    EXPECT_EQ(errorOf(windowWith(R"({"kind": "slider", "bounds": [0, 0, 1, 1]})")),
              "windows.W.controls[0].kind: 'slider' is not known");
    EXPECT_EQ(errorOf(windowWith(R"({"kind": "check box"})")),
              "windows.W.controls[0]: 'bounds' is missing");
    EXPECT_EQ(errorOf(windowWith(R"({"kind": "check box", "bounds": [0, 0, 1]})")),
              "windows.W.controls[0].bounds: 4 whole numbers are expected");
    EXPECT_EQ(
        errorOf(windowWith(R"({"kind": "check box", "bounds": [0, 0, 1, 1], "colour": "red"})")),
        "windows.W.controls[0].colour: this key is not known");
    EXPECT_EQ(errorOf(windowWith(R"({"kind": "check box", "bounds": [0, 0, 1, 1], "id": "1"})")),
              "windows.W.controls[0].id: a whole number is expected");
}

TEST(InterfaceDescription, RefusesWhatCannotBeMeant)
{
    EXPECT_NE(errorOf(""), "");
    EXPECT_NE(errorOf("[]"), "");
    EXPECT_NE(errorOf("{\"format\": 1,"), "");
    EXPECT_EQ(errorOf(R"({"format": 2, "windows": {}})"),
              "description.format: only format 1 can be read");
    EXPECT_NE(errorOf(R"({"format": 1, "windows": {"W": {"size": [0, 5]}}})"), "");
    EXPECT_NE(errorOf(windowWith(R"({"kind": "check box", "bounds": [0, 0, -1, 1]})")), "");
    EXPECT_NE(errorOf(windowWith(R"({"kind": "check box", "bounds": [0, 0, 1, 1], "value": 2})")),
              "");
    EXPECT_NE(errorOf(windowWith(R"({"kind": "data browser", "bounds": [0, 0, 1, 1]})")), "");
    EXPECT_NE(
        errorOf(windowWith(R"({"kind": "check box", "bounds": [0, 0, 1, 1], "items": ["A"]})")),
        "");
    EXPECT_NE(errorOf(windowWith(
                  R"({"kind": "check box", "bounds": [0, 0, 1, 1], "anchors": ["middle"]})")),
              "");
}

TEST(InterfaceDescription, AnIdMayStandOnceInAWindow)
{
    const std::string one = R"({"kind": "check box", "id": 5, "bounds": [0, 0, 1, 1]})";
    EXPECT_EQ(errorOf(windowWith(one + "," + one)), "windows.W.controls[1].id: 5 is used twice");

    const std::string unnamed = R"({"kind": "static text", "bounds": [0, 0, 1, 1]})";
    InterfaceDescription description;
    std::string error;
    EXPECT_EQ(description.parse(windowWith(unnamed + "," + unnamed), error), noErr) << error;
}

TEST(InterfaceDescription, AMissingFileIsToldFromABrokenOne)
{
    const auto folder = std::filesystem::path(testing::TempDir()) / "interface-description";
    std::filesystem::create_directories(folder);
    std::ofstream(folder / "Broken.json") << "{";
    InterfaceDescription description;
    std::string error;

    EXPECT_EQ(description.load(folder, "Missing", error), descriptionNotFoundErr);
    EXPECT_NE(error.find("Missing.json"), std::string::npos);
    EXPECT_EQ(description.load(folder, "Broken", error), descriptionInvalidErr);
    EXPECT_NE(error.find("Broken.json"), std::string::npos);
    std::filesystem::remove_all(folder);
}

TEST(InterfaceDescription, TheEditorsFileHasEveryControlThatTheEditorBinds)
{
    InterfaceDescription description;
    std::string error;
    ASSERT_EQ(description.load(KV_SOURCE_FOLDER "/editor/resources", "Looper", error), noErr)
        << error;
    const auto* window = description.window("LooperView");
    ASSERT_NE(window, nullptr);

    std::set<std::int32_t> ids;
    for (const auto& control : window->controls)
        ids.insert(control.id.id);
    for (const std::int32_t id : {99,  100, 101, 102, 103, 104, 105, 106, 107, 108, 109,
                                  110, 111, 112, 113, 114, 115, 116, 117, 118, 119})
        EXPECT_TRUE(ids.count(id) == 1) << id;
}

TEST(InterfaceDescription, TheEditorsControlsStandInsideTheirWindowAndApart)
{
    InterfaceDescription description;
    std::string error;
    description.load(KV_SOURCE_FOLDER "/editor/resources", "Looper", error);
    const auto& window = *description.window("LooperView");

    for (const auto& a : window.controls) {
        EXPECT_LE(a.bounds.x + a.bounds.width, window.width);
        EXPECT_LE(a.bounds.y + a.bounds.height, window.height);
        for (const auto& b : window.controls) {
            const bool apart = &a == &b || a.kind == ControlKind::groupBox ||
                               b.kind == ControlKind::groupBox ||
                               a.bounds.x + a.bounds.width <= b.bounds.x ||
                               b.bounds.x + b.bounds.width <= a.bounds.x ||
                               a.bounds.y + a.bounds.height <= b.bounds.y ||
                               b.bounds.y + b.bounds.height <= a.bounds.y;
            EXPECT_TRUE(apart) << a.id.id << " covers " << b.id.id;
        }
    }
}
