/// What happens to panes. An event finds the operation that is meant for it: it dispatches itself
/// to a pane, which hands it to the matching handler.
#pragma once
#include "shared/Panes/kvDelegate.h"
#include "shared/Panes/kvGeometry.h"

#include <cstdint>

namespace Korvanel {

class Pane;

/// Thread: user interface, as everything about panes.
class PaneEvent
{
public:
    enum Kind : int {
        KeyDown = 1,
        KeyUp = 2,
        MouseEntered = 4,
        FocusGained = 5,
        FocusLost = 6,
        MouseLeft = 7,
        MouseDragged = 8,
        MouseDown = 9,
        MouseUp = 10,
        MouseMoved = 11,
        MouseWheel = 12,
        WindowFocusGained = 14,
        WindowFocusLost = 15
    };

    explicit PaneEvent(int eventKind)
        : kind(eventKind)
    {
    }

    virtual ~PaneEvent() = default;

    /// Calls the pane's `process` for this sort of event.
    virtual void dispatch_to(Pane& pane);

    const int kind; ///< a Kind, or a number of the platform's
};

/// The buttons that are held: bit n for button n. Button 1 is the main one, 2 the one for menus,
/// 3 the middle one.
struct MouseButtons
{
    std::uint32_t mask = 0;

    bool anyHeld() const { return (mask & (2 | 4 | 8)) != 0; }
};

class MouseEvent : public PaneEvent
{
public:
    /// @param where       in the coordinates of the pane that receives it
    /// @param which       the button that went down or up, 0 for none
    /// @param modifiers   bits of KeyEvent::Modifiers
    /// @param held        after the change
    /// @param wheelX,Y    steps; to the right and down is positive
    MouseEvent(int eventKind, Point where, unsigned which, unsigned modifierKeys, MouseButtons held,
               int wheelX, int wheelY)
        : PaneEvent(eventKind)
        , point(where)
        , button(which)
        , modifiers(modifierKeys)
        , buttons(held)
        , deltaX(wheelX)
        , deltaY(wheelY)
    {
    }

    /// The same event for another pane: of another kind, at another point.
    MouseEvent as(int otherKind, Point where) const
    {
        return {otherKind, where, button, modifiers, buttons, deltaX, deltaY};
    }

    void dispatch_to(Pane& pane) override;

    const Point point;
    const unsigned button;
    const unsigned modifiers;
    const MouseButtons buttons;
    const int deltaX;
    const int deltaY;
};

class KeyEvent : public PaneEvent
{
public:
    enum Modifiers : unsigned { Shift = 1, Control = 2, Alt = 4, Command = 8 };

    /// @param keyCode    the platform's number of the key
    /// @param typed      the character as a code point, 0 when the key types none
    KeyEvent(int eventKind, int keyCode, std::uint32_t typed, unsigned modifierKeys)
        : PaneEvent(eventKind)
        , key(keyCode)
        , character(typed)
        , modifiers(modifierKeys)
    {
    }

    void dispatch_to(Pane& pane) override;

    const int key;
    const std::uint32_t character;
    const unsigned modifiers;
};

/// Tells a pane that keys go to it from now on, or no longer.
class FocusEvent : public PaneEvent
{
public:
    /// @param otherPane  who had the focus or gets it; null when nobody or another window does
    FocusEvent(int eventKind, Pane* otherPane)
        : PaneEvent(eventKind)
        , other(otherPane)
    {
    }

    void dispatch_to(Pane& pane) override;

    Pane* const other;
};

class WindowEvent : public PaneEvent
{
public:
    using PaneEvent::PaneEvent;
};

class MouseListener
{
public:
    virtual void mouseEvent(MouseEvent& event) = 0;

protected:
    ~MouseListener() = default;
};

/// Forwards a mouse event to each listener, in the order in which they came. Owns none of them.
class MouseEventMulticaster
{
public:
    void add(MouseListener* listener); ///< null is ignored
    void remove(MouseListener* listener);
    void mouseEvent(MouseEvent& event);

private:
    CallList<MouseListener*> mListeners;
};

} // namespace Korvanel
