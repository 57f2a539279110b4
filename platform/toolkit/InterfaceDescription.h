/// The file in a bundle's resources that says which windows there are, which controls stand in them
/// and where. Read once, into plain values; the windows are made from these. See
/// docs/formats/interface-description.md for the file.
#pragma once
#include "platform/toolkit/Control.h"

#include <string>
#include <vector>

namespace toolkit {

struct ColumnDescription
{
    FourCharCode property = 0;
    std::string title;
    int width = 0; ///< points; 0 takes what the others leave
    bool alignRight = false;
};

/// Which edges of the window an edge of the control follows when the window grows.
struct Anchors
{
    bool left = true;
    bool top = true;
    bool right = false;
    bool bottom = false;
};

enum class TextStyle { body, small, heading };
enum class TextAlignment { left, centre, right };

struct ControlDescription
{
    ControlID id;
    ControlKind kind = ControlKind::staticText;
    Rect bounds;
    Anchors anchors;
    std::string title; ///< or text, for edit and static text
    std::string tooltip;
    std::int32_t minimum = 0;
    std::int32_t maximum = 1;
    std::int32_t value = 0;
    std::vector<std::string> items;         ///< of a pop-up menu
    std::vector<ColumnDescription> columns; ///< of a data browser
    TextStyle style = TextStyle::body;
    TextAlignment alignment = TextAlignment::left;
    int tabOrder = 0; ///< 1 is first; 0 comes after the numbered ones, in the file's order
    bool enabled = true;
    bool visible = true;
};

struct WindowDescription
{
    std::string name;
    std::string title;
    int width = 0;
    int height = 0;
    int minimumWidth = 0;
    int minimumHeight = 0;
    bool resizable = false;
    std::vector<ControlDescription> controls;
};

class InterfaceDescription
{
public:
    /// Reads `name`.json in `folder`.
    /// @return noErr; descriptionNotFoundErr; descriptionInvalidErr. On failure `error` says what
    /// and where in one line, and the description is empty. Thread: any.
    Status load(const std::string& folder, const std::string& name, std::string& error);

    /// The same from text. Unknown keys, kinds and values, missing ones, and IDs used twice in a
    /// window are refused.
    Status parse(const std::string& text, std::string& error);

    /// Null when there is no window of that name.
    const WindowDescription* window(const std::string& name) const;

private:
    std::vector<WindowDescription> mWindows;
};

} // namespace toolkit
