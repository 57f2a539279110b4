#include "platform/toolkit/InterfaceDescription.h"

#include "platform/toolkit/native/JsonFields.h"

#include <algorithm>
#include <fstream>
#include <iterator>

namespace toolkit {

namespace {

using native::DescriptionError;
using native::JsonFields;

constexpr int formatVersion = 1;

const std::vector<std::string> kindNames = {"push button",   "check box", "pop-up menu",
                                            "little arrows", "edit text", "static text",
                                            "group box",     "user pane", "data browser"};

Rect readRect(JsonFields& fields, const char* key)
{
    fields.need(key);
    const auto numbers = fields.integers(key, 4);
    if (numbers[2] < 0 || numbers[3] < 0)
        fields.fail(key, "width and height cannot be below 0");
    return {numbers[0], numbers[1], numbers[2], numbers[3]};
}

Anchors readAnchors(JsonFields& fields)
{
    if (!fields.has("anchors"))
        return {};
    Anchors anchors{false, false, false, false};
    for (const auto& edge : fields.texts("anchors")) {
        if (edge == "left")
            anchors.left = true;
        else if (edge == "top")
            anchors.top = true;
        else if (edge == "right")
            anchors.right = true;
        else if (edge == "bottom")
            anchors.bottom = true;
        else
            fields.fail("anchors", "'" + edge + "' is not an edge");
    }
    return anchors;
}

ColumnDescription readColumn(const juce::var& value, const std::string& place)
{
    JsonFields fields(value, place);
    ColumnDescription column;
    fields.need("property");
    column.property = fourCharCode(fields.text("property", ""));
    if (column.property == 0)
        fields.fail("property", "four characters are expected");
    column.title = fields.text("title", "");
    column.width = fields.integer("width", 0);
    column.alignRight = fields.boolean("alignRight", false);
    fields.refuseUnknown();
    return column;
}

void readColumns(JsonFields& fields, ControlDescription& control)
{
    int index = 0;
    for (const auto& value : fields.list("columns"))
        control.columns.push_back(
            readColumn(value, fields.place() + ".columns[" + std::to_string(index++) + "]"));
}

FourCharCode readSignature(JsonFields& fields)
{
    if (!fields.has("signature"))
        return 0;
    const auto code = fourCharCode(fields.text("signature", ""));
    if (code == 0)
        fields.fail("signature", "four characters are expected");
    return code;
}

void readRange(JsonFields& fields, ControlDescription& control)
{
    const auto items = static_cast<int>(control.items.size());
    const bool isMenu = control.kind == ControlKind::popUpMenu;
    control.minimum = fields.integer("minimum", isMenu && items > 0 ? 1 : 0);
    control.maximum = fields.integer("maximum", isMenu ? items : 1);
    control.value = fields.integer("value", control.minimum);
    if (control.minimum > control.maximum)
        fields.fail("minimum", "it is above the maximum");
    if (control.value < control.minimum || control.value > control.maximum)
        fields.fail("value", "it is outside minimum and maximum");
}

void readLook(JsonFields& fields, ControlDescription& control)
{
    control.style = static_cast<TextStyle>(fields.choice("style", {"body", "small", "heading"}, 0));
    control.alignment =
        static_cast<TextAlignment>(fields.choice("alignment", {"left", "centre", "right"}, 0));
    control.enabled = fields.boolean("enabled", true);
    control.visible = fields.boolean("visible", true);
    control.tooltip = fields.text("tooltip", "");
    control.tabOrder = fields.integer("tabOrder", 0);
    if (control.tabOrder < 0)
        fields.fail("tabOrder", "it cannot be below 0");
}

ControlDescription readControl(const juce::var& value, const std::string& place)
{
    JsonFields fields(value, place);
    ControlDescription control;
    fields.need("kind");
    control.kind = static_cast<ControlKind>(fields.choice("kind", kindNames, 0));
    control.id = {readSignature(fields), fields.integer("id", 0)};
    control.bounds = readRect(fields, "bounds");
    control.anchors = readAnchors(fields);
    control.title = fields.text("title", "");
    control.items = fields.texts("items");
    readColumns(fields, control);
    readRange(fields, control);
    readLook(fields, control);
    if (!control.items.empty() && control.kind != ControlKind::popUpMenu)
        fields.fail("items", "only a pop-up menu has items");
    if (control.columns.empty() == (control.kind == ControlKind::dataBrowser))
        fields.fail("columns", "a data browser has columns, and nothing else does");
    fields.refuseUnknown();
    return control;
}

/// ID 0 is no name: labels and boxes that nobody looks for may share it.
void refuseSecond(const std::vector<ControlDescription>& controls, const ControlDescription& added,
                  const std::string& place)
{
    const bool taken = std::any_of(controls.begin(), controls.end(),
                                   [&](const auto& control) { return control.id == added.id; });
    if (added.id.id != 0 && taken)
        throw DescriptionError(place + ".id", std::to_string(added.id.id) + " is used twice");
}

WindowDescription readWindow(const juce::var& value, const std::string& name)
{
    const std::string place = "windows." + name;
    JsonFields fields(value, place);
    WindowDescription window;
    window.name = name;
    window.title = fields.text("title", name);
    fields.need("size");
    const auto size = fields.integers("size", 2);
    const auto minimum = fields.has("minimumSize") ? fields.integers("minimumSize", 2) : size;
    if (std::min(size[0], size[1]) < 1 || std::min(minimum[0], minimum[1]) < 1)
        fields.fail("size", "a window is at least 1 by 1");
    window.width = size[0];
    window.height = size[1];
    window.minimumWidth = minimum[0];
    window.minimumHeight = minimum[1];
    window.resizable = fields.boolean("resizable", false);
    int index = 0;
    for (const auto& each : fields.list("controls")) {
        const auto inner = place + ".controls[" + std::to_string(index++) + "]";
        auto control = readControl(each, inner);
        refuseSecond(window.controls, control, inner);
        window.controls.push_back(std::move(control));
    }
    fields.refuseUnknown();
    return window;
}

std::vector<WindowDescription> readAll(const juce::var& root)
{
    JsonFields fields(root, "description");
    fields.need("format");
    if (fields.integer("format", 0) != formatVersion)
        fields.fail("format", "only format 1 can be read");
    auto* windows = fields.need("windows").getDynamicObject();
    if (windows == nullptr)
        fields.fail("windows", "an object is expected");
    fields.refuseUnknown();
    std::vector<WindowDescription> result;
    for (const auto& property : windows->getProperties())
        result.push_back(readWindow(property.value, property.name.toString().toStdString()));
    return result;
}

} // namespace

Status InterfaceDescription::parse(const std::string& text, std::string& error)
{
    mWindows.clear();
    error.clear();
    juce::var root;
    const auto parsed =
        juce::JSON::parse(juce::String::fromUTF8(text.data(), static_cast<int>(text.size())), root);
    if (parsed.failed()) {
        error = parsed.getErrorMessage().replaceCharacters("\r\n", "  ").toStdString();
        return descriptionInvalidErr;
    }
    try {
        mWindows = readAll(root);
    } catch (const DescriptionError& failure) {
        error = failure.what();
        return descriptionInvalidErr;
    }
    return noErr;
}

Status InterfaceDescription::load(const std::string& folder, const std::string& name,
                                  std::string& error)
{
    mWindows.clear();
    const std::string path = folder + "/" + name + ".json";
    std::ifstream file(path, std::ios::binary);
    if (!file) {
        error = path + ": cannot be opened";
        return descriptionNotFoundErr;
    }
    const std::string text{std::istreambuf_iterator<char>(file), {}};
    const Status status = parse(text, error);
    if (status != noErr)
        error = path + ": " + error;
    return status;
}

const WindowDescription* InterfaceDescription::window(const std::string& name) const
{
    const auto found = std::find_if(mWindows.begin(), mWindows.end(),
                                    [&](const auto& window) { return window.name == name; });
    return found == mWindows.end() ? nullptr : &*found;
}

} // namespace toolkit
