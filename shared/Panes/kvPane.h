/// The widget tree of the editor: a pane is a rectangle in its parent that draws itself and takes
/// mouse, key and focus events. What a pane cannot do alone goes up the tree to its RootPane.
#pragma once
#include "shared/Panes/kvDelegate.h"
#include "shared/Panes/kvEvents.h"
#include "shared/Panes/kvGraphics.h"
#include "shared/Panes/kvMenu.h"

#include <memory>
#include <vector>

namespace Korvanel {

class RootPane;

/// From the lowest to the topmost; drawn in this order, hit in the opposite one.
using PaneList = std::vector<Pane*>;

/// Thread: user interface. Panes stand on the heap: a parent's Destroy, or its destructor, deletes
/// the sub-panes that it still has. A pane that ends by itself leaves its parent first.
class Pane : public Base
{
public:
    enum Flag : std::uint32_t { VisibleFlag = 1, EnabledFlag = 2, OpaqueFlag = 8 };

    Pane();
    Pane(const Pane&) = delete;
    Pane& operator=(const Pane&) = delete;
    virtual ~Pane();

    /// Takes its place in `parent`, on top; null makes the top of a tree.
    virtual void Create(Pane* parent, const Rect& place);

    /// Once the tree has its window: tells every sub-pane, in order.
    virtual void AfterCreate();

    /// Before the tree loses its window: tells every sub-pane, in order.
    virtual void BeforeDestroy();

    /// BeforeDestroy, then deletes the sub-panes and leaves the parent. The pane itself stays.
    virtual void Destroy();

    virtual bool Contains(Point p) const; ///< in the parent's coordinates

    /// The topmost visible and enabled pane at a point, this one included.
    /// @param p  compared with this pane's bounds and with those of its sub-panes as it is; on the
    ///           way down it is made relative to each sub-pane in turn
    /// @return null when neither a sub-pane nor this pane answers
    virtual Pane* GetPaneAt(Point p);

    virtual bool IsFocusRoot() const { return false; }

    virtual bool IsPaneInFocus(const Pane* pane) const;
    virtual void SetVisible(bool visible); ///< redraws when it changes something
    virtual void SetEnabled(bool enabled); ///< redraws in any case

    /// Puts a pane without a parent on top; anything else is a broken contract.
    virtual void AddPane(Pane* subpane);

    /// Takes a sub-pane out and gives it to the caller; anything else is a broken contract.
    virtual void RemovePane(Pane* subpane);

    virtual void* systemWindow(); ///< the platform's window, null without one

    /// @param offset  in this pane's coordinates: where the context's origin is to be
    /// @return null without a window; the caller's
    virtual std::unique_ptr<GraphicsContext> create_graphics_with_offset(Point offset);

    virtual void process(PaneEvent& event) { HandleEvent(event); }

    virtual void process(MouseEvent& event); ///< listeners first, then the handler

    virtual void process(KeyEvent& event) { HandleKey(event); }

    virtual void process(FocusEvent& event) { HandleFocus(event); }

    /// Draws the opaque sub-panes, itself and the other sub-panes, in this order. Afterwards the
    /// clip lacks what the opaque ones cover.
    virtual void Draw(GraphicsContext& g);

    /// @param g  its origin is this pane's corner
    virtual void DrawSelf(GraphicsContext&) {}

    virtual void HandleEvent(PaneEvent&) {}

    virtual void HandleKey(KeyEvent&) {}

    virtual void HandleFocus(FocusEvent&) {}

    virtual void HandleMouse(MouseEvent&) {} ///< entered, left, down, up

    virtual void HandleMouseMotion(MouseEvent&) {} ///< moved, dragged

    virtual void HandleMouseWheel(MouseEvent&) {}

    /// @param periodMs  milliseconds; the delegate is held until StopPeriodic
    virtual void StartPeriodic(Delegate* delegate, unsigned int periodMs);
    virtual void StopPeriodic(Delegate* delegate);
    virtual void DeferTask(Delegate* delegate); ///< once, when the event loop turns next
    virtual void setFocusTo(Pane* pane);

    /// @param area  in the parent's coordinates; becomes the root's own on the way up
    virtual void invalidate(Rect& area);

    /// @param at  in this pane's coordinates; becomes the root's own on the way up
    virtual int peerShowMenu(const MenuItemList& items, Rect& at);
    virtual void turn_mouse_tracking_off();
    virtual void drawSubpanes(GraphicsContext& g);
    virtual void drawOpaqueSubpanes(GraphicsContext& g);
    virtual void destroySubpanes(); ///< deletes them; their BeforeDestroy is the caller's business

    Pane* GetParent() const { return mParent; }

    const Rect& GetBounds() const { return bounds; }

    void SetBounds(const Rect& place) { bounds = place; }

    bool IsVisible() const { return (flags & VisibleFlag) != 0; }

    bool IsEnabled() const { return (flags & EnabledFlag) != 0; }

    bool IsOpaque() const { return (flags & OpaqueFlag) != 0; }

    /// An opaque pane draws every pixel of its bounds, so nothing beneath it is drawn.
    void SetOpaque(bool opaque) { setFlag(OpaqueFlag, opaque); }

    Point PositionInWorld() const; ///< of its corner, in the coordinates that the root's are in
    Rect WorldBounds() const;
    bool IsWithin(const Pane* ancestor) const; ///< below it, or itself
    RootPane* Root();                          ///< null while the tree has none
    void Invalidate();                         ///< redraws it, later

    void SetFocus() { setFocusTo(this); }

    bool HasFocus() const { return IsPaneInFocus(this); }

    /// @param at  in this pane's coordinates
    /// @return the chosen item's index, -1 for none or without a window
    int ShowMenu(const MenuItemList& items, const Rect& at);

    /// A context whose origin is this pane's corner; null without a window.
    std::unique_ptr<GraphicsContext> create_graphics() { return create_graphics_with_offset({}); }

    /// @param listener  stays the caller's, and is removed before it ends
    void AddMouseListener(MouseListener* listener) { mMouseListeners.add(listener); }

    void RemoveMouseListener(MouseListener* listener) { mMouseListeners.remove(listener); }

    Event1<bool> changed; ///< for what a pane has to tell those outside the tree

protected:
    std::uint32_t flags = VisibleFlag | EnabledFlag;
    Pane* mParent = nullptr;
    std::unique_ptr<PaneList> mSubpanes; ///< null until the first AddPane
    Rect bounds;                         ///< in the parent's coordinates

private:
    friend class RootPane;

    void setFlag(Flag flag, bool on);

    MouseEventMulticaster mMouseListeners;
};

} // namespace Korvanel
