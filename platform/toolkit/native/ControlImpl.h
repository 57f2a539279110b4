/// The inside of a control: its state, and the view that shows it.
#pragma once
#include "platform/toolkit/Control.h"
#include "platform/toolkit/InterfaceDescription.h"

#include <juce_gui_basics/juce_gui_basics.h>

#include <memory>

namespace toolkit {

/// One component on the screen. Reads the control's state and reports what the user does to it.
class ControlView
{
public:
    virtual ~ControlView() = default;

    virtual juce::Component& component() = 0;

    virtual void showValue() {}

    virtual void showText() {}

    virtual void showItems() {}

    /// The text as it stands, also while it is being edited.
    virtual std::string text() const { return {}; }

    /// Ends editing and keeps the text.
    virtual void commit() {}
};

struct Control::Impl
{
    Impl(Control& owner, Window& itsWindow, const ControlDescription& itsDescription);
    ~Impl();

    bool isOpen() const { return view != nullptr && !closed; }

    /// What follows a click: the action, then `change` if the window is still open, then 'cntl' 1.
    void hit(ControlPart part, const std::function<void()>& change = {});
    /// Calls the action alone.
    void act(ControlPart part);
    /// Validates, keeps the text and calls the action.
    void commitText(const std::string& text);
    /// Asks the key filter; without one every key may pass.
    bool acceptsKey(const KeyStroke& key);
    /// Sends an event with this control as its direct object; eventNotHandledErr once closed.
    Status send(Event event);
    /// Sends 'cntl' 12. The position is in the view's own coordinates.
    Status contextualClick(juce::Point<int> position);
    /// From the view's own coordinates to window points.
    Point toWindow(juce::Point<int> position) const;

    Control& control;
    Window& window;
    ControlDescription description; // bounds, title, tooltip, value... as they are now
    Rect baseBounds;                // where the description put it, for the anchors
    void* reference = nullptr;
    PixelSource* pixels = nullptr;
    Action action;
    Validation validation;
    KeyFilter keyFilter;
    std::unique_ptr<ControlView> view;
    std::unique_ptr<DataBrowser> browser;
    bool closed = false; // late calls of a view that waits for its release reach nobody
};

namespace native {

/// Makes the view for the control's kind. The control outlives it.
std::unique_ptr<ControlView> makeView(Control::Impl& control);

std::unique_ptr<ControlView> makePushButton(Control::Impl& control);
std::unique_ptr<ControlView> makeCheckBox(Control::Impl& control);
std::unique_ptr<ControlView> makePopUpMenu(Control::Impl& control);
std::unique_ptr<ControlView> makeLittleArrows(Control::Impl& control);
std::unique_ptr<ControlView> makeEditText(Control::Impl& control);
std::unique_ptr<ControlView> makeStaticText(Control::Impl& control);
std::unique_ptr<ControlView> makeGroupBox(Control::Impl& control);
std::unique_ptr<ControlView> makeUserPane(Control::Impl& control);
std::unique_ptr<ControlView> makeDataBrowser(Control::Impl& control);

/// The user pane in which a mouse button is held; null for none.
Control* pressedUserPane();

// Between the toolkit's types and the library's.
inline juce::Rectangle<int> toJuce(const Rect& r)
{
    return {r.x, r.y, r.width, r.height};
}

inline Rect fromJuce(const juce::Rectangle<int>& r)
{
    return {r.getX(), r.getY(), r.getWidth(), r.getHeight()};
}

/// The device pixels that a component at this place covers: every one that it touches, as the
/// library clips. Where an edge misses a pixel's by no more than an error of rounding, it is there.
Rect pixelsOf(const Rect& points, double scale);

/// Bytes that are no UTF-8 become replacement characters, so that any file's name can be shown.
juce::String toJuce(const std::string& text);
std::uint32_t buttonBits(const juce::ModifierKeys& keys);
std::uint32_t keyBits(const juce::ModifierKeys& keys);
/// What the key types, with the numbers of KeyStroke for keys that type nothing.
char32_t characterOf(const juce::KeyPress& key);

} // namespace native

} // namespace toolkit
