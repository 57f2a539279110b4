/// One control of a window: button, check box, pop-up menu, arrows, text, user pane or browser.
/// Made by its window from the interface description, and owned by it: a pointer is good for as
/// long as the window object is. After the window was closed a control keeps its state, and what
/// would show it does nothing. Thread: user interface.
#pragma once
#include "platform/toolkit/Events.h"

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace toolkit {

class DataBrowser;
class PixelSource;
struct ControlDescription;

struct ControlID
{
    FourCharCode signature = 0;
    std::int32_t id = 0;

    bool operator==(const ControlID&) const = default;
};

enum class ControlKind {
    pushButton,
    checkBox,
    popUpMenu,
    littleArrows,
    editText,
    staticText,
    groupBox,
    userPane,
    dataBrowser
};

using ControlPart = std::int16_t;
constexpr ControlPart entireControl = 0;
constexpr ControlPart menuPart = 2;
constexpr ControlPart editTextPart = 5;
constexpr ControlPart buttonPart = 10;
constexpr ControlPart checkBoxPart = 11;
constexpr ControlPart upArrowPart = 20;
constexpr ControlPart downArrowPart = 21;

/// What a key filter is asked about. Arrow keys have the characters 28 (left) to 31 (down), forward
/// delete has 127, Return 13, backspace 8.
struct KeyStroke
{
    std::int32_t keyCode;    ///< the toolkit's number of the key; 0 for pasted text
    char32_t character;      ///< what it types
    std::uint32_t modifiers; ///< KeyModifier bits
};

class Control : public EventTarget
{
public:
    /// Called when the user works the control. A check box's value is still the old one and becomes
    /// the new one after; a pop-up's is the new one; arrows leave theirs to the action, and repeat
    /// while held. Edit text calls it with part 5 when its text was committed: by Return, by Tab
    /// or by a click elsewhere.
    using Action = std::function<void(Control&, ControlPart)>;
    /// Called before a committed text counts; may set another text.
    using Validation = std::function<void(Control&)>;
    /// @return whether the key may change the text. Tab, Escape and the clipboard keys are not
    /// asked about; each pasted character is.
    using KeyFilter = std::function<bool(Control&, const KeyStroke&)>;

    ~Control() override;

    ControlID id() const;
    ControlKind kind() const;
    /// The window; its reference stays good as long as the control.
    Window& window() const;

    /// Check box 0 or 1; pop-up 1 for the first item, 0 for none; arrows as set.
    std::int32_t value() const;
    /// Limits to minimum and maximum; calls neither action nor handlers.
    void setValue(std::int32_t value);
    std::int32_t minimum() const;
    /// A value now outside is moved to the nearer end.
    void setMinimum(std::int32_t minimum);
    std::int32_t maximum() const;
    void setMaximum(std::int32_t maximum);

    /// The owner's own word; never read by the toolkit.
    void* reference() const;
    void setReference(void* reference);

    void setAction(Action action);

    /// Sets data by tag. Known: 'text', the text of edit and static text, in UTF-8 (a byte that is
    /// none shows as the replacement character), with part 0 or 5.
    /// @return propertyNotSupportedErr for another tag or a control without text
    Status setData(ControlPart part, FourCharCode tag, const std::string& data);
    Status data(ControlPart part, FourCharCode tag, std::string& into) const;

    void setValidation(Validation validation);
    void setKeyFilter(KeyFilter filter);

    /// Label of a button, check box or group box, in UTF-8.
    std::string title() const;
    void setTitle(const std::string& title);
    void setTooltip(const std::string& tooltip);
    std::string tooltip() const;

    /// The items of a pop-up menu; the value is kept if it is still in range.
    Status setItems(const std::vector<std::string>& items);

    bool isEnabled() const;
    void setEnabled(bool enabled);
    bool isVisible() const;
    void setVisible(bool visible);

    /// In window points from the content's top-left corner.
    Rect bounds() const;
    /// What it covers of the window in device pixels, from the content's corner: every pixel that
    /// its bounds touch at the window's scale.
    Rect pixelBounds() const;
    /// Sends 'cntl' 154.
    void setBounds(const Rect& bounds);

    /// Asks for the control, or a part of it in its own coordinates, to be drawn again soon.
    void invalidate();
    void invalidate(const Rect& area);

    /// Gives the control the keyboard. False when it cannot take it.
    bool focus();
    bool hasFocus() const;

    /// A user pane shows these pixels; not owned, null for none.
    void setPixelSource(PixelSource* source);

    /// The browser in a control of that kind, else null. Lives as long as the control.
    DataBrowser* dataBrowser() const;

    struct Impl;

    /// Made by Window only.
    Control(Window& window, const ControlDescription& description);

    Impl& impl() const { return *mImpl; }

protected:
    EventTarget* nextTarget() override;
    std::shared_ptr<void> keepAlive() override;

private:
    std::unique_ptr<Impl> mImpl;
};

} // namespace toolkit
