/// A pane tree in a platform window: takes the window's input, keeps the area to be drawn again,
/// runs the tree's tasks and shows its menus.
#pragma once
#include "platform/toolkit/Events.h"
#include "platform/toolkit/Timer.h"
#include "shared/Panes/carbon/TimerActionList.h"
#include "shared/Panes/kvRootPane.h"
#include "shared/System/kvContracts.h"
#include "shared/System/kvCriticalSection.h"

#include <memory>

namespace toolkit {
class Window;
}

namespace korvanel::macosx::carbon {

/// Milliseconds between two looks at the tasks. Time is counted in these steps, not measured: what
/// a busy thread misses does not come all at once later.
constexpr unsigned kTaskTickMs = 10;

/// Thread: user interface, except where it says otherwise.
class CarbonRootPane : public Korvanel::RootPane
{
public:
    CarbonRootPane();
    ~CarbonRootPane() override;

    /// Takes the window's events, and its timer begins. The window is held until Destroy. A
    /// pane that is attached already leaves its window first, with its sub-panes.
    /// @param place  in the window's points; becomes the pane's bounds
    void AttachTo(toolkit::Window& window, const Korvanel::Rect& place);

    /// Also lets go of the window.
    void Destroy() override;

    void StartPeriodic(Korvanel::Delegate* delegate, unsigned int periodMs) override;
    void StopPeriodic(Korvanel::Delegate* delegate) override;
    void DeferTask(Korvanel::Delegate* delegate) override;

    /// The drawing happens later, on the message loop, whoever asks for it. Thread: any.
    void peerInvalidate(const Korvanel::Rect& area) override;
    /// @return -1 without a window as well
    int peerShowMenu(const Korvanel::MenuItemList& items, Korvanel::Rect& at) override;
    void* systemWindow() override;
    /// Afterwards nothing in the clip waits to be drawn.
    void OnDraw(Korvanel::GraphicsContext& g) override;

    bool CaptureMouse() const override { return mTracksMouse; }

    void turn_mouse_tracking_on() override { mTracksMouse = true; }

    void turn_mouse_tracking_off() override { mTracksMouse = false; }

    /// What waits to be drawn, in the pane's own coordinates. Thread: any.
    Korvanel::Region copyInvalidRegion() const KV_EXCLUDES(mRegionLock);
    void offsetInvalidRegionBy(int dx, int dy) KV_EXCLUDES(mRegionLock); ///< Thread: any.

    /// Lets one tick of counted time go by; the timer's work.
    void perform_periodic_actions();

protected:
    /// @return eventNotHandledErr for what is not the pane's business
    virtual toolkit::Status handle_event(const toolkit::Event& event);
    /// Adds to the area that waits. Thread: any.
    virtual void myInvalidateRectangle(const Korvanel::Rect& area) KV_EXCLUDES(mRegionLock);
    /// The pane's place in the window, in points.
    virtual Korvanel::Rect frame_in_window() const;
    /// Who gets the pane's own events; null before AttachTo. Thread: any, while attached.
    virtual toolkit::EventTarget* eventTarget() const;

    toolkit::Window* window() const { return mWindow.get(); }

    static constexpr toolkit::FourCharCode kOwnClass = toolkit::operator""_4cc("kvsw", 4);
    static constexpr std::uint32_t kRedraw = 1111112;

private:
    toolkit::Status handle_mouse(const toolkit::Event& event);
    toolkit::Status handle_key(const toolkit::Event& event);
    void detach();

    mutable Korvanel::CriticalSection mRegionLock;
    Korvanel::Region mInvalid KV_GUARDED_BY(mRegionLock);
    std::shared_ptr<toolkit::Window> mWindow;
    toolkit::HandlerId mHandler = 0;
    toolkit::Timer mTimer;
    std::unique_ptr<TimerActionList> mTimerActions;
    bool mTracksMouse = false; ///< events outside the window come here too
};

} // namespace korvanel::macosx::carbon
