#include "shared/Panes/kvRootPane.h"

#include <utility>

namespace Korvanel {

namespace {

/// Whether a pane has a point of the world.
bool hasWorldPoint(const Pane& pane, Point p)
{
    // Contains wants the coordinates of the parent, whose corner is where the pane's bounds begin
    return pane.Contains(p - pane.PositionInWorld() + pane.GetBounds().origin());
}

bool takesMouseAt(const Pane& pane, Point p)
{
    return pane.IsVisible() && pane.IsEnabled() && hasWorldPoint(pane, p);
}

Pane* nearestAncestorAt(const Pane& pane, Point p)
{
    Pane* ancestor = pane.GetParent();
    while (ancestor != nullptr && !hasWorldPoint(*ancestor, p))
        ancestor = ancestor->GetParent();
    return ancestor;
}

} // namespace

RootPane::~RootPane()
{
    Pane::destroySubpanes();
}

// A handler may take panes out of the tree; OnDisappearPane then moves the hover pane, so each
// step looks at it anew.
void RootPane::OnMouse(MouseEvent& event)
{
    if (CaptureMouse() && mHoverPane != nullptr)
        routeCaptured(event);
    else if (!routeFree(event))
        return;
    track(event);
    tellHoverPane(event, event.kind);
}

void RootPane::tellHoverPane(const MouseEvent& event, int kind)
{
    if (mHoverPane == nullptr)
        return;
    MouseEvent told = event.as(kind, event.point - mHoverPane->PositionInWorld());
    told.dispatch_to(*mHoverPane);
}

void RootPane::routeCaptured(const MouseEvent& event)
{
    const bool inside = takesMouseAt(*mHoverPane, event.point);
    if (inside == std::exchange(mMouseInside, inside))
        return;
    tellHoverPane(event, inside ? PaneEvent::MouseEntered : PaneEvent::MouseLeft);
}

/// @return false when the mouse is nowhere any more
bool RootPane::routeFree(const MouseEvent& event)
{
    if (mHoverPane != nullptr && !hasWorldPoint(*mHoverPane, event.point))
        leave_moused_upto(nearestAncestorAt(*mHoverPane, event.point), event.point);
    if (mHoverPane == nullptr) {
        mMouseInside = false;
        if (event.kind == PaneEvent::MouseLeft)
            return false;
        mHoverPane = this;
    }
    descend(event);
    if (mHoverPane != nullptr)
        mMouseInside = hasWorldPoint(*mHoverPane, event.point);
    return true;
}

void RootPane::descend(const MouseEvent& event)
{
    for (bool deeper = true; deeper && mHoverPane != nullptr && mHoverPane->mSubpanes != nullptr;) {
        deeper = false;
        const PaneList& subpanes = *mHoverPane->mSubpanes;
        for (auto it = subpanes.rbegin(); it != subpanes.rend(); ++it)
            if (takesMouseAt(**it, event.point)) {
                mHoverPane = *it;
                tellHoverPane(event, PaneEvent::MouseEntered);
                deeper = true;
                break; // a handler may have changed the list
            }
    }
}

// The ancestor is told as well, on purpose, although the mouse is still inside it: so it hears of
// every way out of its parts (RootPaneMouse.LeavingASubpaneTellsTheAncestorToo).
void RootPane::leave_moused_upto(Pane* ancestor, Point p)
{
    while (mHoverPane != nullptr) {
        Pane* left = mHoverPane;
        MouseEvent event(PaneEvent::MouseLeft, p - left->PositionInWorld(), 0, 0, {}, 0, 0);
        event.dispatch_to(*left);
        if (left == ancestor)
            return;
        if (mHoverPane == left) // else it disappeared at the news, and its parent is next
            mHoverPane = left->GetParent();
    }
}

void RootPane::track(const MouseEvent& event)
{
    if (event.kind == PaneEvent::MouseDown && event.buttons.anyHeld())
        turn_mouse_tracking_on();
    else if (event.kind == PaneEvent::MouseUp && !event.buttons.anyHeld())
        turn_mouse_tracking_off();
}

void RootPane::OnMouseWheel(MouseEvent& event)
{
    tellHoverPane(event, PaneEvent::MouseWheel);
}

void RootPane::OnKey(KeyEvent& event)
{
    if (mFocusOwner != nullptr)
        event.dispatch_to(*mFocusOwner);
}

void RootPane::OnDraw(GraphicsContext& g)
{
    Region before;
    g.GetClipping(before);
    Draw(g);
    g.SetClipping(before);
}

void RootPane::drawOpaqueSubpanes(GraphicsContext& g)
{
    if (AllowOpaqueDrawing())
        Pane::drawOpaqueSubpanes(g);
}

void RootPane::HandleWindowEvent(WindowEvent& event)
{
    switch (event.kind) {
    case PaneEvent::WindowFocusGained:
        windowFocusGained();
        break;
    case PaneEvent::WindowFocusLost:
        windowFocusLost();
        break;
    default:
        HandleEvent(event);
        break;
    }
}

void RootPane::windowFocusGained()
{
    mWindowFocused = true;
    WindowEvent event(PaneEvent::WindowFocusGained);
    HandleEvent(event);
}

// The owner stays who it is: it has the focus again when the window has.
void RootPane::windowFocusLost()
{
    mWindowFocused = false;
    WindowEvent event(PaneEvent::WindowFocusLost);
    HandleEvent(event);
}

bool RootPane::IsPaneInFocus(const Pane* pane) const
{
    return mWindowFocused && pane != nullptr && pane == mFocusOwner;
}

void RootPane::setFocusTo(Pane* pane)
{
    if (pane == mFocusOwner)
        return;
    Pane* before = std::exchange(mFocusOwner, pane);
    if (before != nullptr) {
        FocusEvent lost(PaneEvent::FocusLost, pane);
        lost.dispatch_to(*before);
    }
    if (pane != nullptr && mFocusOwner == pane) { // the loser may have chosen another, or ended it
        FocusEvent gained(PaneEvent::FocusGained, before);
        gained.dispatch_to(*pane);
    }
}

void RootPane::OnDisappearPane(Pane* pane)
{
    if (mHoverPane != nullptr && mHoverPane->IsWithin(pane))
        mHoverPane = pane->mParent;
    if (mFocusOwner != nullptr && mFocusOwner->IsWithin(pane))
        mFocusOwner = nullptr;
}

void RootPane::invalidate(Rect& area)
{
    area = area.shiftedBy(Point{} - bounds.origin());
    peerInvalidate(area);
}

} // namespace Korvanel
