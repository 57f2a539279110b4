#include "shared/Panes/carbon/CarbonRootPane.h"

#include "platform/toolkit/Menu.h"
#include "platform/toolkit/Window.h"
#include "shared/System/kvLog.h"

#include <utility>

namespace korvanel::macosx::carbon {

using Korvanel::KeyEvent;
using Korvanel::MouseButtons;
using Korvanel::MouseEvent;
using Korvanel::PaneEvent;
using Korvanel::Point;
using Korvanel::Rect;
using Korvanel::Region;
using Korvanel::ScopedLock;
using toolkit::Event;
using toolkit::operator""_4cc;
using toolkit::Status;

namespace {

constexpr auto kMouseClass = "mous"_4cc;
constexpr auto kKeyClass = "keyb"_4cc;
constexpr auto kWindowClass = "wind"_4cc;

enum ToolkitMouse : std::uint32_t {
    kDown = 1,
    kUp = 2,
    kMoved = 5,
    kDragged = 6,
    kCame = 8,
    kWent = 9,
    kWheel = 10
};

constexpr std::uint32_t kActivated = 5;
constexpr std::uint32_t kDeactivated = 6;
constexpr std::uint32_t kShown = 22;
constexpr std::uint32_t kKeyDown = 1;

int paneKind(std::uint32_t toolkitKind)
{
    switch (toolkitKind) {
    case kDown:
        return PaneEvent::MouseDown;
    case kUp:
        return PaneEvent::MouseUp;
    case kDragged:
        return PaneEvent::MouseDragged;
    case kWent:
        return PaneEvent::MouseLeft;
    case kWheel:
        return PaneEvent::MouseWheel;
    default: // the root finds out itself which panes the mouse enters
        return PaneEvent::MouseMoved;
    }
}

/// The toolkit's button bits, each one place higher: button 1 is bit 1.
MouseButtons toButtons(std::uint32_t bits)
{
    return {bits << 1};
}

unsigned toButton(std::uint32_t bit)
{
    switch (bit) {
    case toolkit::leftButton:
        return 1;
    case toolkit::rightButton:
        return 2;
    case toolkit::middleButton:
        return 3;
    default:
        return 0;
    }
}

} // namespace

CarbonRootPane::CarbonRootPane()
    : mTimerActions(std::make_unique<TimerActionList>())
{
}

CarbonRootPane::~CarbonRootPane()
{
    detach();
}

void CarbonRootPane::AttachTo(toolkit::Window& window, const Rect& place)
{
    if (mWindow != nullptr)
        BeforeDestroy(); // ends what AfterCreate began in the window before
    detach();
    mWindow = window.shared_from_this();
    SetBounds(place);
    mHandler = window.installHandler(
        {{kWindowClass, kActivated}, {kWindowClass, kDeactivated}, {kWindowClass, kShown}},
        [this](const Event& event) { return handle_event(event); });
    mTimer.start(kTaskTickMs, [this] { perform_periodic_actions(); });
    AfterCreate();
}

void CarbonRootPane::Destroy()
{
    RootPane::Destroy();
    detach();
}

void CarbonRootPane::detach()
{
    mTimer.cancel();
    if (mWindow != nullptr)
        mWindow->removeHandler(mHandler);
    mWindow = nullptr;
    mTracksMouse = false;
}

// Tasks -------------------------------------------------------------------------------------------

void CarbonRootPane::StartPeriodic(Korvanel::Delegate* delegate, unsigned int periodMs)
{
    mTimerActions->add(delegate, periodMs);
}

void CarbonRootPane::StopPeriodic(Korvanel::Delegate* delegate)
{
    mTimerActions->remove(delegate);
}

void CarbonRootPane::DeferTask(Korvanel::Delegate* delegate)
{
    mTimerActions->add(delegate, 0);
}

void CarbonRootPane::perform_periodic_actions()
{
    mTimerActions->elapsed(kTaskTickMs);
}

// Drawing -----------------------------------------------------------------------------------------

void CarbonRootPane::peerInvalidate(const Rect& area)
{
    myInvalidateRectangle(area);
    toolkit::EventTarget* target = eventTarget();
    if (target == nullptr)
        return;
    Event redraw({kOwnClass, kRedraw});
    redraw.set("ptrg"_4cc, target);
    target->post(std::move(redraw));
}

toolkit::EventTarget* CarbonRootPane::eventTarget() const
{
    return mWindow.get();
}

void CarbonRootPane::myInvalidateRectangle(const Rect& area)
{
    const ScopedLock hold(mRegionLock);
    const bool was = !mInvalid.IsEmpty();
    mInvalid.Union(Region(area));
    PRINTLOG("Invalidate (%d,%d)-(%d,%d) [%d,%d]\n", area.x, area.y, area.x + area.width,
             area.y + area.height, was, !mInvalid.IsEmpty());
}

Region CarbonRootPane::copyInvalidRegion() const
{
    const ScopedLock hold(mRegionLock);
    return mInvalid;
}

void CarbonRootPane::offsetInvalidRegionBy(int dx, int dy)
{
    if (dx == 0 && dy == 0)
        return;
    const ScopedLock hold(mRegionLock);
    mInvalid.Offset(dx, dy);
    PRINTLOG("Offset InvalRgn by (%d,%d)\n", dx, dy);
}

void CarbonRootPane::OnDraw(Korvanel::GraphicsContext& g)
{
    Region drawn;
    g.GetClipping(drawn);
    drawn.Offset(-GetBounds().x, -GetBounds().y);
    {
        // Before the drawing: what is invalidated during it is drawn again. And only what the clip
        // lets through: another thread may have added to the region since the clip was made of it.
        const ScopedLock hold(mRegionLock);
        mInvalid.Subtract(drawn);
    }
    RootPane::OnDraw(g);
    PRINTLOG("Validate InvalRgn: %d\n", drawn.IsEmpty());
}

Rect CarbonRootPane::frame_in_window() const
{
    return GetBounds();
}

void* CarbonRootPane::systemWindow()
{
    return mWindow.get();
}

// Menus -------------------------------------------------------------------------------------------

int CarbonRootPane::peerShowMenu(const Korvanel::MenuItemList& items, Rect& at)
{
    if (mWindow == nullptr)
        return -1;
    toolkit::Menu menu;
    for (std::size_t i = 0; i < items.size(); ++i)
        menu.addItem(items.item(i).text.c_str(), static_cast<std::uint32_t>(i + 1), 0,
                     items.item(i).flag != 0);
    const Point corner = frame_in_window().origin() + at.origin();
    const std::shared_ptr<toolkit::Window> held = mWindow; // it may close under the open menu
    const int chosen = menu.popUp(*held, {corner.x, corner.y});
    turn_mouse_tracking_off();
    return chosen;
}

// Events ------------------------------------------------------------------------------------------

Status CarbonRootPane::handle_event(const Event& event)
{
    if (event.type().eventClass == kMouseClass)
        return handle_mouse(event);
    if (event.type().eventClass == kKeyClass)
        return handle_key(event);
    if (event.is(kWindowClass, kShown))
        peerInvalidate({0, 0, GetBounds().width, GetBounds().height});
    else if (event.is(kWindowClass, kActivated))
        windowFocusGained();
    else if (event.is(kWindowClass, kDeactivated))
        windowFocusLost();
    return toolkit::eventNotHandledErr; // the window is others' too
}

Status CarbonRootPane::handle_mouse(const Event& event)
{
    const auto at = event.get<toolkit::Point>("mloc"_4cc);
    if (!at)
        return toolkit::eventNotHandledErr;
    const Point inRoot = Point{at->x, at->y} - frame_in_window().origin() + GetBounds().origin();
    const auto number = [&](toolkit::FourCharCode name) {
        return event.get<std::uint32_t>(name).value_or(0);
    };
    const auto steps = [&](toolkit::FourCharCode name) {
        return event.get<std::int32_t>(name).value_or(0);
    };
    MouseEvent mouse(paneKind(event.type().kind), inRoot, toButton(number("mbtn"_4cc)),
                     number("kmod"_4cc), toButtons(number("chor"_4cc)), steps("mwdx"_4cc),
                     -steps("mwdy"_4cc));
    if (mouse.kind == PaneEvent::MouseWheel)
        OnMouseWheel(mouse);
    else
        OnMouse(mouse);
    return toolkit::noErr;
}

Status CarbonRootPane::handle_key(const Event& event)
{
    if (GetFocusOwner() == nullptr)
        return toolkit::eventNotHandledErr;
    const auto number = [&](toolkit::FourCharCode name) {
        return event.get<std::uint32_t>(name).value_or(0);
    };
    KeyEvent key(event.type().kind == kKeyDown ? PaneEvent::KeyDown : PaneEvent::KeyUp,
                 static_cast<int>(number("kcod"_4cc)), number("kchr"_4cc), number("kmod"_4cc));
    OnKey(key);
    return toolkit::noErr;
}

} // namespace korvanel::macosx::carbon
