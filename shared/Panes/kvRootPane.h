/// The top of a pane tree: routes a window's input to the right pane and knows who has the focus.
/// The platform's root derives from it and brings window, timers and menus.
#pragma once
#include "shared/Panes/kvPane.h"

namespace Korvanel {

/// Thread: user interface. The coordinates of its input are those that its bounds are in.
class RootPane : public Pane
{
public:
    ~RootPane() override;

    // Input and drawing, as the window reports them.
    virtual void OnMouse(MouseEvent& event);      ///< every kind but the wheel
    virtual void OnKey(KeyEvent& event);          ///< to the focus owner, or to nobody
    virtual void OnMouseWheel(MouseEvent& event); ///< to the pane under the mouse, or to nobody
    virtual void OnDraw(GraphicsContext& g);      ///< leaves the clip as it was
    virtual void HandleWindowEvent(WindowEvent& event);
    virtual void windowFocusGained();
    virtual void windowFocusLost();

    /// Tells the hover pane and each of its parents that the mouse left, `ancestor` being the last
    /// that is told and then the hover pane; null tells all of them, and none is left.
    virtual void leave_moused_upto(Pane* ancestor, Point p);

    /// Forgets the pane and those within it as hover pane, which their parent becomes, and as
    /// focus owner. Nobody is told.
    virtual void OnDisappearPane(Pane* pane);

    /// Whether sub-panes may take their place out of what is drawn beneath them.
    virtual bool AllowOpaqueDrawing() const { return true; }

    /// Whether one pane gets every mouse event, wherever the mouse is.
    virtual bool CaptureMouse() const { return false; }

    virtual void turn_mouse_tracking_on() {}

    /// @param area  to draw again, in this pane's own coordinates
    virtual void peerInvalidate(const Rect&) {}

    Pane* GetFocusOwner() const { return mFocusOwner; }

    Pane* GetHoverPane() const { return mHoverPane; }

    bool IsFocusRoot() const override { return true; }

    bool IsPaneInFocus(const Pane* pane) const override;
    void setFocusTo(Pane* pane) override; ///< null takes the focus away
    void invalidate(Rect& area) override;

    void turn_mouse_tracking_off() override {}

    void drawOpaqueSubpanes(GraphicsContext& g) override;

private:
    void routeCaptured(const MouseEvent& event);
    bool routeFree(const MouseEvent& event);
    void descend(const MouseEvent& event);
    void track(const MouseEvent& event);
    void tellHoverPane(const MouseEvent& event, int kind);

    Pane* mHoverPane = nullptr;
    bool mMouseInside = false; ///< of the hover pane
    Pane* mFocusOwner = nullptr;
    bool mWindowFocused = true; ///< a window that reports nothing has the focus
};

} // namespace Korvanel
