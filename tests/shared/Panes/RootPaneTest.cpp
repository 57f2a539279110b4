#include "tests/shared/Panes/PaneTrace.h"

#include <gtest/gtest.h>

using namespace Korvanel;
using namespace panetrace;

namespace {

constexpr int left = PaneEvent::MouseLeft;
constexpr int moved = PaneEvent::MouseMoved;
constexpr int down = PaneEvent::MouseDown;
constexpr int up = PaneEvent::MouseUp;
constexpr int dragged = PaneEvent::MouseDragged;

/// A root of 200 by 100 with A at (10, 20), 100 by 60, B in A at (5, 6), 30 by 20, and C at
/// (100, 0), 50 by 50, over a part of A.
class RootPaneMouse : public testing::Test
{
protected:
    RootPaneMouse()
    {
        root.Create(nullptr, {0, 0, 200, 100});
        a->Create(&root, {10, 20, 100, 60});
        b->Create(a, {5, 6, 30, 20});
        c->Create(&root, {100, 0, 50, 50});
    }

    Trace traced()
    {
        Trace result;
        result.swap(trace);
        return result;
    }

    Trace trace;
    TraceRoot root{trace};
    TracePane* a = new TracePane("A", trace);
    TracePane* b = new TracePane("B", trace);
    TracePane* c = new TracePane("C", trace);
};

using RootPaneFocus = RootPaneMouse;

} // namespace

TEST_F(RootPaneMouse, TheRootBecomesTheHoverPaneWithoutBeingTold)
{
    root.mouse(moved, 1, 1);
    EXPECT_EQ(traced(), (Trace{"R 11 (1,1)"}));
    EXPECT_EQ(root.GetHoverPane(), &root);
}

TEST_F(RootPaneMouse, DescendsTellingEachPaneOnTheWay)
{
    root.mouse(moved, 20, 30);
    EXPECT_EQ(traced(), (Trace{"A 4 (10,10)", "B 4 (5,4)", "B 11 (5,4)"}));
    root.mouse(moved, 21, 30);
    EXPECT_EQ(traced(), (Trace{"B 11 (6,4)"}));
}

TEST_F(RootPaneMouse, TheTopmostSubpaneTakesThePoint)
{
    root.mouse(moved, 105, 30);
    EXPECT_EQ(traced(), (Trace{"C 4 (5,30)", "C 11 (5,30)"}));
}

TEST_F(RootPaneMouse, HiddenAndDisabledSubpanesArePassedOver)
{
    c->SetVisible(false);
    root.mouse(moved, 105, 30);
    EXPECT_EQ(traced(), (Trace{"A 4 (95,10)", "A 11 (95,10)"}));
    b->SetEnabled(false);
    root.mouse(moved, 20, 30);
    EXPECT_EQ(traced(), (Trace{"A 11 (10,10)"}));
}

TEST_F(RootPaneMouse, LeavingASubpaneTellsTheAncestorToo)
{
    root.mouse(moved, 20, 30);
    traced();
    root.mouse(moved, 60, 60);
    EXPECT_EQ(traced(), (Trace{"B 7 (45,34)", "A 7 (50,40)", "A 11 (50,40)"}));
    EXPECT_EQ(root.GetHoverPane(), a);
}

TEST_F(RootPaneMouse, GoingOverToASiblingLeavesUpToTheRoot)
{
    root.mouse(moved, 20, 30);
    traced();
    root.mouse(moved, 120, 10);
    EXPECT_EQ(traced(), (Trace{"B 7 (105,-16)", "A 7 (110,-10)", "R 7 (120,10)", "C 4 (20,10)",
                               "C 11 (20,10)"}));
}

TEST_F(RootPaneMouse, ComingBackToASubpaneEntersItAgain)
{
    root.mouse(moved, 20, 30);
    root.mouse(moved, 60, 60);
    traced();
    root.mouse(moved, 20, 30);
    EXPECT_EQ(traced(), (Trace{"B 4 (5,4)", "B 11 (5,4)"}));
}

TEST_F(RootPaneMouse, LeavingTheWindowTellsEveryPaneAndNothingMore)
{
    root.mouse(moved, 20, 30);
    traced();
    root.mouse(left, -5, 30);
    EXPECT_EQ(traced(), (Trace{"B 7 (-20,4)", "A 7 (-15,10)", "R 7 (-5,30)"}));
    EXPECT_EQ(root.GetHoverPane(), nullptr);
    root.mouse(left, -5, 30);
    EXPECT_TRUE(traced().empty());
}

TEST_F(RootPaneMouse, AMoveOutsideTheWindowGoesToTheRoot)
{
    root.mouse(moved, -5, 30);
    EXPECT_EQ(traced(), (Trace{"R 11 (-5,30)"}));
}

TEST_F(RootPaneMouse, ARootAwayFromTheCornerCountsFromItsOwn)
{
    root.SetBounds({50, 40, 200, 100});
    root.mouse(moved, 51, 42);
    EXPECT_EQ(traced(), (Trace{"R 11 (1,2)"}));
    root.mouse(moved, 70, 70);
    EXPECT_EQ(traced(), (Trace{"A 4 (10,10)", "B 4 (5,4)", "B 11 (5,4)"}));
}

TEST_F(RootPaneMouse, AHeldButtonTurnsTrackingOnAndTheLastReleaseOff)
{
    root.mouse(down, 1, 1, 2);
    root.mouse(up, 1, 1, 4);
    root.mouse(up, 1, 1, 0);
    EXPECT_EQ(traced(),
              (Trace{"tracking on", "R 9 (1,1)", "R 10 (1,1)", "tracking off", "R 10 (1,1)"}));
}

TEST_F(RootPaneMouse, OtherBitsOfTheButtonsTurnNothingOn)
{
    root.mouse(down, 1, 1, 1 | 16);
    root.mouse(up, 1, 1, 1 | 16);
    EXPECT_EQ(traced(), (Trace{"R 9 (1,1)", "tracking off", "R 10 (1,1)"}));
    for (const std::uint32_t bit : {2u, 4u, 8u}) {
        root.mouse(down, 1, 1, bit);
        EXPECT_EQ(traced().front(), "tracking on") << bit;
    }
}

TEST_F(RootPaneMouse, ACapturedMouseStaysWithItsPane)
{
    root.mouse(down, 20, 30, 2);
    root.captured = true;
    traced();
    root.mouse(dragged, 120, 10, 2);
    EXPECT_EQ(traced(), (Trace{"B 7 (105,-16)", "B 8 (105,-16)"}));
    root.mouse(dragged, 121, 10, 2);
    EXPECT_EQ(traced(), (Trace{"B 8 (106,-16)"}));
    root.mouse(dragged, 20, 30, 2);
    EXPECT_EQ(traced(), (Trace{"B 4 (5,4)", "B 8 (5,4)"}));
    EXPECT_EQ(root.GetHoverPane(), b);
}

TEST_F(RootPaneMouse, ACapturingPaneThatIsHiddenCountsAsLeft)
{
    root.mouse(down, 20, 30, 2);
    root.captured = true;
    b->SetVisible(false);
    traced();
    root.mouse(dragged, 20, 30, 2);
    EXPECT_EQ(traced(), (Trace{"B 7 (5,4)", "B 8 (5,4)"}));
    b->SetVisible(true);
    root.mouse(dragged, 20, 30, 2);
    EXPECT_EQ(traced(), (Trace{"B 4 (5,4)", "B 8 (5,4)"}));
    b->SetEnabled(false);
    root.mouse(dragged, 20, 30, 2);
    EXPECT_EQ(traced(), (Trace{"B 7 (5,4)", "B 8 (5,4)"}));
}

TEST_F(RootPaneMouse, AHiddenPaneGivesTheFreeMouseToItsParent)
{
    root.mouse(moved, 20, 30);
    b->SetVisible(false);
    traced();
    root.mouse(moved, 20, 30);
    EXPECT_EQ(traced(), (Trace{"A 11 (10,10)"}));
}

TEST_F(RootPaneMouse, ARemovedSubtreeIsForgotten)
{
    root.mouse(moved, 20, 30);
    root.captured = true;
    root.RemovePane(a);
    delete a;
    traced();
    EXPECT_EQ(root.GetHoverPane(), &root);
    root.mouse(dragged, 20, 30, 2);
    EXPECT_EQ(traced(), (Trace{"R 8 (20,30)"}));
}

TEST_F(RootPaneMouse, APaneMayEndWhileItIsTold)
{
    root.mouse(moved, 20, 30);
    b->onMouse = [this](MouseEvent& event) {
        if (event.kind == left)
            delete b;
    };
    traced();
    root.mouse(moved, 60, 60);
    EXPECT_EQ(traced(), (Trace{"B 7 (45,34)", "B gone", "A 7 (50,40)", "A 11 (50,40)"}));
}

TEST_F(RootPaneMouse, APaneMayEndWhenTheMouseEnters)
{
    a->onMouse = [this](MouseEvent& event) {
        if (event.kind == PaneEvent::MouseEntered)
            delete a;
    };
    root.mouse(moved, 20, 30);
    EXPECT_EQ(traced(), (Trace{"A 4 (10,10)", "A gone", "B gone", "R 11 (20,30)"}));
}

TEST_F(RootPaneMouse, TheWheelGoesToTheHoverPane)
{
    MouseEvent wheel(PaneEvent::MouseWheel, {20, 30}, 0, 0, {}, 0, -3);
    root.OnMouseWheel(wheel);
    EXPECT_TRUE(traced().empty());
    root.mouse(moved, 20, 30);
    traced();
    root.OnMouseWheel(wheel);
    EXPECT_EQ(traced(), (Trace{"B wheel -3 (5,4)"}));
}

namespace {

struct CountingListener : MouseListener
{
    explicit CountingListener(Trace& to)
        : trace(to)
    {
    }

    void mouseEvent(MouseEvent& event) override
    {
        trace.push_back("heard " + std::to_string(event.kind));
    }

    Trace& trace;
};

} // namespace

TEST_F(RootPaneMouse, ListenersHearAMouseEventBeforeItsPane)
{
    CountingListener listener(trace);
    c->AddMouseListener(&listener);
    root.mouse(down, 110, 10, 2);
    EXPECT_EQ(traced(), (Trace{"heard 4", "C 4 (10,10)", "tracking on", "heard 9", "C 9 (10,10)"}));
    c->RemoveMouseListener(&listener);
    root.mouse(up, 110, 10, 2);
    EXPECT_EQ(traced(), (Trace{"C 10 (10,10)"}));
}

TEST_F(RootPaneFocus, GoesToTheOwnerAndNobodyElse)
{
    EXPECT_EQ(root.GetFocusOwner(), nullptr);
    a->SetFocus();
    EXPECT_TRUE(a->HasFocus());
    EXPECT_FALSE(b->HasFocus());
    EXPECT_TRUE(b->IsPaneInFocus(a));
    EXPECT_EQ(root.GetFocusOwner(), a);
    EXPECT_TRUE(root.IsFocusRoot());
    EXPECT_FALSE(a->IsFocusRoot());
}

TEST_F(RootPaneFocus, MovingItTellsTheLoserFirst)
{
    a->SetFocus();
    a->SetFocus();
    b->SetFocus();
    root.setFocusTo(nullptr);
    EXPECT_EQ(traced(), (Trace{"A focus 5", "A focus 6", "B focus 5", "B focus 6"}));
}

TEST_F(RootPaneFocus, KeysGoToTheOwner)
{
    KeyEvent key(PaneEvent::KeyDown, 65, 'a', KeyEvent::Shift);
    root.OnKey(key);
    EXPECT_TRUE(traced().empty());
    b->SetFocus();
    traced();
    root.OnKey(key);
    EXPECT_EQ(traced(), (Trace{"B key 65"}));
}

TEST_F(RootPaneFocus, AWindowWithoutFocusTakesItFromTheOwnerForAWhile)
{
    a->SetFocus();
    traced();
    root.windowFocusLost();
    EXPECT_FALSE(a->HasFocus());
    root.windowFocusGained();
    EXPECT_TRUE(a->HasFocus());
    EXPECT_EQ(traced(), (Trace{"R event 15", "R event 14"}));
}

TEST_F(RootPaneFocus, WindowEventsAreHandledByTheirKind)
{
    WindowEvent lost(PaneEvent::WindowFocusLost);
    WindowEvent other(77);
    a->SetFocus();
    traced();
    root.HandleWindowEvent(lost);
    root.HandleWindowEvent(other);
    EXPECT_EQ(traced(), (Trace{"R event 15", "R event 77"}));
    EXPECT_FALSE(a->HasFocus());
}

TEST_F(RootPaneFocus, AVanishedOwnerIsForgotten)
{
    b->SetFocus();
    delete a;
    EXPECT_EQ(root.GetFocusOwner(), nullptr);
}

TEST_F(RootPaneFocus, AHiddenOwnerLosesIt)
{
    b->SetFocus();
    a->SetVisible(false);
    EXPECT_EQ(root.GetFocusOwner(), nullptr);
}
