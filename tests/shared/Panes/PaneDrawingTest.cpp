#include "tests/shared/Panes/PaneTrace.h"
#include "tests/support/GoldenImage.h"

#include <gtest/gtest.h>

using namespace Korvanel;
using namespace panetrace;
using toolkit::Surface;

namespace {

/// A root of 8 by 4 over a surface of the same size.
class PaneDrawing : public testing::Test
{
protected:
    PaneDrawing() { root.Create(nullptr, {0, 0, 8, 4}); }

    TracePane* add(const char* name, Pane* parent, const Rect& place, bool opaque = false)
    {
        auto* pane = new TracePane(name, trace);
        pane->Create(parent, place);
        pane->SetOpaque(opaque);
        pane->painted = true;
        return pane;
    }

    void draw()
    {
        trace.clear();
        GraphicsContext g(surface.get());
        root.OnDraw(g);
    }

    Trace trace;
    TraceRoot root{trace};
    std::unique_ptr<Surface> surface = Surface::create({0, 0, 8, 4});
};

} // namespace

TEST_F(PaneDrawing, GoesFromTheRootUpEachWithItsOwnOrigin)
{
    TracePane* a = add("A", &root, {1, 1, 4, 3});
    add("B", a, {1, 1, 2, 1});
    add("C", &root, {6, 0, 2, 2});
    draw();
    EXPECT_EQ(trace, (Trace{"R drawn", "A drawn (1,1)", "B drawn (2,2)", "C drawn (6,0)"}));
}

TEST_F(PaneDrawing, IsCutOffAtThePanesBounds)
{
    TracePane* a = add("A", &root, {1, 1, 3, 2});
    a->painted = false;
    add("B", a, {-5, 1, 50, 50});
    draw();
    EXPECT_EQ(letterArt(*surface), "........\n"
                                   "........\n"
                                   ".###....\n"
                                   "........\n");
}

TEST_F(PaneDrawing, PassesOverWhatIsHiddenOrOutside)
{
    add("A", &root, {0, 0, 2, 2})->SetVisible(false);
    add("B", &root, {8, 0, 2, 2});
    add("C", &root, {0, 0, 0, 2});
    draw();
    EXPECT_EQ(trace, (Trace{"R drawn"}));
}

TEST_F(PaneDrawing, LeavesClipAndOriginAsTheyWere)
{
    add("A", &root, {0, 0, 4, 4}, true);
    GraphicsContext g(surface.get());
    g.IntersectClipping({1, 0, 7, 4});
    root.OnDraw(g);
    Region clip;
    g.GetClipping(clip);
    EXPECT_TRUE(clip == Region(Rect{1, 0, 7, 4}));
    EXPECT_EQ(g.GetOrigin(), (Point{0, 0}));
}

TEST_F(PaneDrawing, OpaquePanesComeFirstFromTheTopDown)
{
    add("A", &root, {0, 0, 4, 4}, true);
    add("B", &root, {2, 0, 4, 4}, true);
    add("C", &root, {7, 0, 1, 4});
    draw();
    EXPECT_EQ(trace, (Trace{"B drawn (2,0)", "A drawn (0,0)", "R drawn", "C drawn (7,0)"}));
}

TEST_F(PaneDrawing, WhatAnOpaquePaneCoversIsDrawnOnce)
{
    add("A", &root, {0, 0, 5, 4}, true)->color = Color::Red;
    add("B", &root, {2, 1, 4, 2}, true)->color = Color::Blue;
    surface->setPenMode(toolkit::PenMode::copy);
    draw();
    EXPECT_EQ(surface->pixel(1, 1), 0xFFFF0000u);
    EXPECT_EQ(surface->pixel(2, 1), 0xFF0000FFu);
    EXPECT_EQ(surface->pixel(4, 0), 0xFFFF0000u);
    EXPECT_EQ(surface->pixel(5, 2), 0xFF0000FFu);
}

TEST_F(PaneDrawing, AFullyCoveredPaneIsNotDrawn)
{
    add("A", &root, {2, 1, 2, 2}, true);
    add("B", &root, {0, 0, 8, 4}, true);
    draw();
    EXPECT_EQ(trace, (Trace{"B drawn (0,0)", "R drawn"}));
}

TEST_F(PaneDrawing, AnOpaquePaneIsNotDrawnOverByItsSiblings)
{
    add("A", &root, {0, 0, 4, 4}, true)->color = Color::Red;
    add("B", &root, {2, 0, 4, 4})->color = Color::Blue; // above A, yet A has taken its place
    draw();
    EXPECT_EQ(surface->pixel(2, 0), 0xFFFF0000u);
    EXPECT_EQ(surface->pixel(4, 0), 0xFF0000FFu);
}

TEST_F(PaneDrawing, OpaquePanesWithinAnOpaquePaneAreDrawnBeforeIt)
{
    TracePane* a = add("A", &root, {1, 1, 6, 3}, true);
    add("B", a, {1, 1, 2, 1}, true);
    draw();
    EXPECT_EQ(trace, (Trace{"B drawn (2,2)", "A drawn (1,1)", "R drawn"}));
}

TEST_F(PaneDrawing, WithoutOpaqueDrawingTheRootsPanesComeInOrder)
{
    root.opaqueAllowed = false;
    add("A", &root, {0, 0, 4, 4}, true);
    add("B", &root, {2, 0, 4, 4}, true);
    draw();
    EXPECT_EQ(trace, (Trace{"R drawn", "A drawn (0,0)", "B drawn (2,0)"}));
}

TEST_F(PaneDrawing, AtEveryScaleFillsThePlacesEdgeToEdge)
{
    for (const int percent : {100, 150, 200}) {
        surface = Surface::create({0, 0, 8, 4}, {percent});
        root.destroySubpanes();
        add("A", &root, {0, 0, 3, 4}, true);
        add("B", &root, {3, 0, 5, 4}, true);
        draw();
        EXPECT_EQ(letterArt(*surface).find('.'), std::string::npos) << percent;
    }
}
