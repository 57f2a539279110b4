#include "shared/Panes/kvPane.h"

#include "shared/Panes/kvRootPane.h"
#include "shared/System/kvAssert.h"

#include <algorithm>
#include <utility>

namespace Korvanel {

namespace {

constexpr const char* sourceName = "shared/Panes/kvPane";

} // namespace

Pane::Pane() = default;

Pane::~Pane()
{
    Pane::destroySubpanes();
    if (mParent != nullptr)
        mParent->RemovePane(this);
}

void Pane::Create(Pane* parent, const Rect& place)
{
    bounds = place;
    if (parent != nullptr)
        parent->AddPane(this);
}

void Pane::AfterCreate()
{
    if (mSubpanes != nullptr)
        for (Pane* subpane : PaneList(*mSubpanes)) // who is told may add panes
            subpane->AfterCreate();
}

void Pane::BeforeDestroy()
{
    if (mSubpanes != nullptr)
        for (Pane* subpane : PaneList(*mSubpanes))
            subpane->BeforeDestroy();
}

void Pane::Destroy()
{
    BeforeDestroy();
    destroySubpanes();
    if (mParent != nullptr)
        mParent->RemovePane(this);
}

void Pane::destroySubpanes()
{
    while (mSubpanes != nullptr && !mSubpanes->empty()) {
        Pane* subpane = mSubpanes->front();
        subpane->destroySubpanes(); // the innermost go first, while those around them are whole
        delete subpane;             // it takes itself out of the list
    }
}

// The lines are fixed numbers: reports of a broken contract read alike however the code moves.
void Pane::AddPane(Pane* subpane)
{
    if (subpane == nullptr || subpane->mParent != nullptr)
        assertionFailed(sourceName, 151, "subpane && subpane->mParent == 0");
    subpane->mParent = this;
    if (mSubpanes == nullptr)
        mSubpanes = std::make_unique<PaneList>();
    mSubpanes->push_back(subpane);
}

void Pane::RemovePane(Pane* subpane)
{
    if (subpane == nullptr || subpane->mParent != this || mSubpanes == nullptr)
        assertionFailed(sourceName, 161, "subpane && subpane->mParent == this && mSubpanes != 0");
    const auto found = std::find(mSubpanes->begin(), mSubpanes->end(), subpane);
    if (found == mSubpanes->end())
        return;
    if (RootPane* root = Root())
        root->OnDisappearPane(subpane); // while it can still be found in the tree
    subpane->mParent = nullptr;
    mSubpanes->erase(found);
}

void Pane::setFlag(Flag flag, bool on)
{
    flags = on ? flags | flag : flags & ~std::uint32_t{flag};
}

void Pane::SetVisible(bool visible)
{
    if (visible == IsVisible())
        return;
    setFlag(VisibleFlag, visible);
    RootPane* root = visible ? nullptr : Root();
    if (root != nullptr &&
        !root->CaptureMouse()) // a captured mouse stays, and is told that it left
        root->OnDisappearPane(this);
    Invalidate();
}

void Pane::SetEnabled(bool enabled)
{
    setFlag(EnabledFlag, enabled);
    Invalidate();
}

bool Pane::Contains(Point p) const
{
    return bounds.contains(p);
}

// A point that has been made relative to a pane is still compared with the pane's bounds, which
// are relative to its parent. So a pane without sub-panes answers only where both agree; panes
// whose corner is (0, 0) are found everywhere. Mouse events do not come this way: the root looks
// for their pane by its position in the world. (PaneHitTest.APointIsRelativeButTheBoundsAreNot)
Pane* Pane::GetPaneAt(Point p)
{
    if (mSubpanes != nullptr)
        for (auto it = mSubpanes->rbegin(); it != mSubpanes->rend(); ++it) {
            Pane* subpane = *it;
            if (!subpane->IsVisible() || !subpane->IsEnabled() || !subpane->bounds.contains(p))
                continue;
            if (Pane* found = subpane->GetPaneAt(p - subpane->bounds.origin()))
                return found;
        }
    return Contains(p) ? this : nullptr;
}

Point Pane::PositionInWorld() const
{
    Point position = bounds.origin();
    for (const Pane* pane = mParent; pane != nullptr; pane = pane->mParent)
        position = position + pane->bounds.origin();
    return position;
}

Rect Pane::WorldBounds() const
{
    const Point position = PositionInWorld();
    return {position.x, position.y, bounds.width, bounds.height};
}

bool Pane::IsWithin(const Pane* ancestor) const
{
    const Pane* pane = this;
    while (pane != nullptr && pane != ancestor)
        pane = pane->mParent;
    return pane != nullptr;
}

RootPane* Pane::Root()
{
    Pane* top = this;
    while (top->mParent != nullptr)
        top = top->mParent;
    return top->IsFocusRoot() ? dynamic_cast<RootPane*>(top) : nullptr;
}

void Pane::process(MouseEvent& event)
{
    mMouseListeners.mouseEvent(event);
    switch (event.kind) {
    case PaneEvent::MouseMoved:
    case PaneEvent::MouseDragged:
        HandleMouseMotion(event);
        break;
    case PaneEvent::MouseWheel:
        HandleMouseWheel(event);
        break;
    default:
        HandleMouse(event);
        break;
    }
}

} // namespace Korvanel
