#include "shared/Panes/kvPane.h"

namespace Korvanel {

void Pane::Draw(GraphicsContext& g)
{
    const bool parent = mSubpanes != nullptr && !mSubpanes->empty();
    if (parent)
        drawOpaqueSubpanes(g);
    const Point before = g.ChangeOrigin(PositionInWorld());
    DrawSelf(g);
    g.ChangeOrigin(before);
    if (parent)
        drawSubpanes(g);
}

void Pane::drawSubpanes(GraphicsContext& g)
{
    if (mSubpanes == nullptr)
        return;
    Region whole;
    g.GetClipping(whole);
    for (Pane* subpane : *mSubpanes) {
        const Rect place = subpane->WorldBounds();
        if (!subpane->IsVisible() || !g.Visible(place))
            continue;
        g.IntersectClipping(place);
        subpane->Draw(g);
        g.SetClipping(whole);
    }
}

// From the top down, each taking its place away from what comes later: no pixel is drawn twice.
// drawSubpanes then finds the opaque panes outside the clip and passes over them. A pane that is
// not opaque loses the part that an opaque sibling beneath it covers: siblings that overlap are
// all opaque, or none is (PaneDrawing.AnOpaquePaneIsNotDrawnOverByItsSiblings).
void Pane::drawOpaqueSubpanes(GraphicsContext& g)
{
    if (mSubpanes == nullptr)
        return;
    Region left;
    g.GetClipping(left);
    for (auto it = mSubpanes->rbegin(); it != mSubpanes->rend(); ++it) {
        Pane* subpane = *it;
        const Rect place = subpane->WorldBounds();
        if (!subpane->IsOpaque() || !subpane->IsVisible() || !g.Visible(place))
            continue;
        g.IntersectClipping(place);
        subpane->Draw(g);
        left.Subtract(Region(place)); // what is left grows ragged: it is changed here, not copied
        g.SetClipping(left);
    }
}

} // namespace Korvanel
