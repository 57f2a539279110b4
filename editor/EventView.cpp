#include "editor/EventView.h"

#include "editor/CursorColumn.h"
#include "effect/CLooper.h"
#include "platform/toolkit/Window.h"

#include <algorithm>
#include <cstdlib>
#include <utility>

using Korvanel::Color;
using Korvanel::GraphicsContext;
using Korvanel::MouseEvent;
using Korvanel::PaneEvent;
using Korvanel::Point;
using Korvanel::Rect;
using Korvanel::Region;

namespace {

constexpr unsigned kTickPeriodMs = 40;
constexpr int kDragDistance = 4; ///< pixels that a hand may tremble
constexpr unsigned kDragButton = 1;

constexpr Color kPlaying{0xFF00, 0xFF00, 0x8000};
constexpr Color kSilent{0xC000, 0xC000, 0x8000};
constexpr Color kFrame{0xC000, 0xC000, 0xC000};

using TickDelegate = Korvanel::MemberDelegateT<EventView>;

} // namespace

EventView::EventView(CLooper* looper)
    : mLooper(looper)
    , mTickTask(
          Korvanel::Ref<Korvanel::Delegate>::adopt(new TickDelegate(this, &EventView::DrawTick)))
{
}

void EventView::AfterCreate()
{
    ControlPane::AfterCreate();
    StartPeriodic(mTickTask.get(), kTickPeriodMs);
}

void EventView::BeforeDestroy()
{
    StopPeriodic(mTickTask.get());
    ControlPane::BeforeDestroy();
}

// Drawing -----------------------------------------------------------------------------------------

bool EventView::isPlaying() const
{
    return mLooper->isEnabled() && !mLooper->isThru();
}

void EventView::FollowState()
{
    if (mLooper == nullptr)
        return;
    const bool was = std::exchange(mWasPlaying, isPlaying());
    if (was != mWasPlaying)
        Invalidate();
}

Rect EventView::inner() const
{
    return {1, 1, GetBounds().width - 2, GetBounds().height - 2};
}

void EventView::DrawSelf(GraphicsContext& g)
{
    if (mLooper == nullptr)
        return;
    const Point before = g.ChangeOrigin(PositionInWorld());
    const Rect all{0, 0, GetBounds().width, GetBounds().height};
    g.FillRect(all, isPlaying() ? kPlaying : kSilent);
    g.DrawRect(all, kFrame);
    mLooper->DrawEvents(g, inner());
    if (mLooper->GetLastTick(nullptr) <= kLastTickOfNothing)
        mCursorX = 0;
    drawCursor(g, mCursorX);
    g.ChangeOrigin(before);
}

void EventView::DrawTick()
{
    if (mLooper == nullptr || !IsVisible())
        return;
    const std::int32_t x =
        cursorColumn(inner().width, mLooper->getCurrentLoopTick(), mLooper->GetLastTick(nullptr));
    if (x == mCursorX)
        return;
    const auto g = create_graphics();
    if (g == nullptr)
        return;
    Region columns(cursorAt(mCursorX));
    columns.Union(Region(cursorAt(x)));
    g->SetClipping(columns); // no more than this is shown again
    drawCursor(*g, mCursorX);
    mCursorX = x;
    drawCursor(*g, mCursorX);
}

Rect EventView::cursorAt(std::int32_t x) const
{
    const Rect area = inner();
    return {area.x + x, area.y, 1, area.height};
}

// Drawn twice in a place it is gone, whatever lies beneath. A cursor that is not in the pattern, as
// before the song's beginning, is nowhere.
void EventView::drawCursor(GraphicsContext& g, std::int32_t x) const
{
    const Rect column = cursorAt(x);
    if (x < 0 || x >= inner().width || column.height < 1)
        return;
    g.SetRop(Korvanel::RopXor);
    g.DrawLine({column.x, column.y + column.height - 1}, column.origin(), Color::White);
    g.SetRop(Korvanel::RopCopy);
}

// Input -------------------------------------------------------------------------------------------

void EventView::HandleMouse(MouseEvent& event)
{
    if (event.kind == PaneEvent::MouseDown && event.button == kDragButton) {
        mDownPoint = event.point;
        mDragArmed = true;
    }
    dragWhenMoved(event);
    ControlPane::HandleMouse(event);
}

void EventView::HandleMouseMotion(MouseEvent& event)
{
    dragWhenMoved(event);
    ControlPane::HandleMouseMotion(event);
}

void EventView::dragWhenMoved(const MouseEvent& event)
{
    if (event.kind != PaneEvent::MouseDragged || !mDragArmed)
        return;
    const Point moved = event.point - mDownPoint;
    if (std::abs(moved.x) <= kDragDistance && std::abs(moved.y) <= kDragDistance)
        return;
    mDragArmed = false; // first: the drag may come back here
    if (mLooper != nullptr)
        mLooper->DragEvents();
    turn_mouse_tracking_off(); // the drag has the mouse now, and its end is not told
}

int EventView::ShowContextualMenu(Korvanel::MenuItemList& items)
{
    if (window() == nullptr)
        return -1;
    const toolkit::Point mouse = window()->mousePosition();
    const Point at = Point{mouse.x, mouse.y} - frame_in_window().origin();
    return ShowMenu(items, {at.x, at.y, 1, 1});
}
