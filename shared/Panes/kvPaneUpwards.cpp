// What a pane passes up the tree, for the root to do.
#include "shared/Panes/kvPane.h"

namespace Korvanel {

void Pane::Invalidate()
{
    Rect area = bounds;
    invalidate(area);
}

void Pane::invalidate(Rect& area)
{
    if (mParent == nullptr)
        return;
    area = area.shiftedBy(mParent->bounds.origin());
    mParent->invalidate(area);
}

int Pane::ShowMenu(const MenuItemList& items, const Rect& at)
{
    Rect place = at;
    return peerShowMenu(items, place);
}

int Pane::peerShowMenu(const MenuItemList& items, Rect& at)
{
    if (mParent == nullptr)
        return -1;
    at = at.shiftedBy(bounds.origin());
    return mParent->peerShowMenu(items, at);
}

void* Pane::systemWindow()
{
    return mParent == nullptr ? nullptr : mParent->systemWindow();
}

std::unique_ptr<GraphicsContext> Pane::create_graphics_with_offset(Point offset)
{
    if (mParent == nullptr)
        return nullptr;
    return mParent->create_graphics_with_offset(offset + bounds.origin());
}

bool Pane::IsPaneInFocus(const Pane* pane) const
{
    return mParent != nullptr && mParent->IsPaneInFocus(pane);
}

void Pane::setFocusTo(Pane* pane)
{
    if (mParent != nullptr)
        mParent->setFocusTo(pane);
}

void Pane::StartPeriodic(Delegate* delegate, unsigned int periodMs)
{
    if (mParent != nullptr)
        mParent->StartPeriodic(delegate, periodMs);
}

void Pane::StopPeriodic(Delegate* delegate)
{
    if (mParent != nullptr)
        mParent->StopPeriodic(delegate);
}

void Pane::DeferTask(Delegate* delegate)
{
    if (mParent != nullptr)
        mParent->DeferTask(delegate);
}

void Pane::turn_mouse_tracking_off()
{
    if (mParent != nullptr)
        mParent->turn_mouse_tracking_off();
}

} // namespace Korvanel
