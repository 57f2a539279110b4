#include "shared/Panes/kvPane.h"
#include "tests/shared/Panes/PaneTrace.h"

#include <gtest/gtest.h>

#include <cstring>
#include <gmock/gmock.h>

using namespace Korvanel;
using namespace panetrace;

namespace {

/// A root of 200 by 100 with A at (10, 20), 100 by 60, and B in A at (5, 6), 30 by 20.
class PaneTest : public testing::Test
{
protected:
    PaneTest()
    {
        root.Create(nullptr, {0, 0, 200, 100});
        a->Create(&root, {10, 20, 100, 60});
        b->Create(a, {5, 6, 30, 20});
    }

    Trace trace;
    TraceRoot root{trace};
    TracePane* a = new TracePane("A", trace);
    TracePane* b = new TracePane("B", trace);
};

using PaneHitTest = PaneTest;
using PaneDeathTest = PaneTest;
using PaneUpwards = PaneTest;

/// A pane whose corner is its parent's, of 50 by 50, unless told otherwise.
Pane* placed(Pane* parent, const Rect& place = {0, 0, 50, 50})
{
    auto* pane = new Pane;
    pane->Create(parent, place);
    return pane;
}

} // namespace

TEST_F(PaneTest, ANewPaneIsVisibleAndEnabledAndHasNothing)
{
    const Pane pane;
    EXPECT_TRUE(pane.IsVisible());
    EXPECT_TRUE(pane.IsEnabled());
    EXPECT_FALSE(pane.IsOpaque());
    EXPECT_EQ(pane.GetParent(), nullptr);
    EXPECT_EQ(pane.GetBounds(), (Rect{0, 0, 0, 0}));
}

TEST_F(PaneTest, TakesItsPlaceInItsParent)
{
    EXPECT_EQ(b->GetParent(), a);
    EXPECT_EQ(b->GetBounds(), (Rect{5, 6, 30, 20}));
    EXPECT_EQ(b->PositionInWorld(), (Point{15, 26}));
    EXPECT_EQ(b->WorldBounds(), (Rect{15, 26, 30, 20}));
}

TEST_F(PaneTest, KnowsWhereItIsInTheTree)
{
    EXPECT_TRUE(b->IsWithin(&root));
    EXPECT_TRUE(b->IsWithin(b));
    EXPECT_FALSE(a->IsWithin(b));
    EXPECT_EQ(b->Root(), &root);
    Pane alone;
    EXPECT_EQ(alone.Root(), nullptr);
}

TEST_F(PaneTest, ARemovedPaneIsItsCallersAgain)
{
    a->RemovePane(b);
    EXPECT_EQ(b->GetParent(), nullptr);
    EXPECT_TRUE(trace.empty());
    delete b;
    EXPECT_EQ(trace, (Trace{"B gone"}));
}

TEST_F(PaneDeathTest, AddingNothingIsABrokenContract)
{
    const char* text = "shared/Panes/kvPane:151: failed assertion `subpane && "
                       "subpane->mParent == 0'";
    EXPECT_DEATH(a->AddPane(nullptr), testing::HasSubstr(text));
    EXPECT_DEATH(root.AddPane(b), testing::HasSubstr(text));
}

TEST_F(PaneDeathTest, RemovingAStrangerIsABrokenContract)
{
    const char* text = "shared/Panes/kvPane:161: failed assertion `subpane && "
                       "subpane->mParent == this && mSubpanes != 0'";
    EXPECT_DEATH(a->RemovePane(nullptr), testing::HasSubstr(text));
    EXPECT_DEATH(root.RemovePane(b), testing::HasSubstr(text));
    EXPECT_DEATH(b->RemovePane(a), testing::HasSubstr(text));
}

TEST_F(PaneTest, TellsItsSubpanesThatTheTreeLives)
{
    (new TracePane("C", trace))->Create(&root, {0, 0, 5, 5});
    root.AfterCreate();
    EXPECT_EQ(trace, (Trace{"A created", "B created", "C created"}));
}

TEST_F(PaneTest, DestroyingTellsEachSubpaneOnceAndDeletesThem)
{
    root.Destroy();
    EXPECT_EQ(trace, (Trace{"A ending", "B ending", "B gone", "A gone"}));
    root.Destroy();
    EXPECT_EQ(trace.size(), 4u);
}

TEST_F(PaneTest, DestroyingASubpaneTakesItOutAndKeepsIt)
{
    a->Destroy();
    EXPECT_EQ(trace, (Trace{"A ending", "B ending", "B gone"}));
    EXPECT_EQ(a->GetParent(), nullptr);
    delete a;
}

TEST_F(PaneTest, ADeletedPaneLeavesItsParent)
{
    delete a;
    EXPECT_EQ(trace, (Trace{"A gone", "B gone"}));
    root.mouse(PaneEvent::MouseMoved, 15, 26);
    EXPECT_EQ(trace.back(), "R 11 (15,26)");
}

TEST_F(PaneTest, HidingInvalidatesOnlyWhenItChangesSomething)
{
    a->SetVisible(true);
    EXPECT_TRUE(root.invalidated.empty());
    a->SetVisible(false);
    a->SetVisible(false);
    EXPECT_EQ(root.invalidated, (std::vector<Rect>{{10, 20, 100, 60}}));
    EXPECT_FALSE(a->IsVisible());
}

TEST_F(PaneTest, EnablingInvalidatesInAnyCase)
{
    a->SetEnabled(true);
    a->SetEnabled(false);
    EXPECT_EQ(root.invalidated.size(), 2u);
    EXPECT_FALSE(a->IsEnabled());
}

TEST_F(PaneHitTest, ContainsItsLeftTopButNotItsRightBottomEdge)
{
    EXPECT_TRUE(a->Contains({10, 20}));
    EXPECT_TRUE(a->Contains({109, 79}));
    EXPECT_FALSE(a->Contains({110, 79}));
    EXPECT_FALSE(a->Contains({109, 80}));
    EXPECT_FALSE(a->Contains({9, 20}));
}

TEST_F(PaneHitTest, APaneAtTheEndOfThePlaneStillContainsItsPoints)
{
    a->SetBounds({INT32_MAX - 5, 0, 100, 10});
    EXPECT_TRUE(a->Contains({INT32_MAX, 5}));
    EXPECT_FALSE(a->Contains({INT32_MIN, 5}));
}

TEST_F(PaneHitTest, TheTopmostPaneAnswersFirst)
{
    Pane top;
    top.Create(nullptr, {0, 0, 200, 100});
    Pane* lower = placed(&top);
    Pane* upper = placed(&top, {0, 0, 20, 20});
    EXPECT_EQ(top.GetPaneAt({10, 10}), upper);
    EXPECT_EQ(top.GetPaneAt({30, 10}), lower);
    EXPECT_EQ(top.GetPaneAt({60, 10}), &top);
    EXPECT_EQ(top.GetPaneAt({200, 10}), nullptr);
}

TEST_F(PaneHitTest, HiddenAndDisabledPanesDoNotAnswer)
{
    Pane top;
    top.Create(nullptr, {0, 0, 200, 100});
    Pane* lower = placed(&top);
    Pane* middle = placed(&top);
    Pane* upper = placed(&top);
    upper->SetVisible(false);
    EXPECT_EQ(top.GetPaneAt({10, 10}), middle);
    middle->SetEnabled(false);
    EXPECT_EQ(top.GetPaneAt({10, 10}), lower);
}

TEST_F(PaneHitTest, APointIsRelativeButTheBoundsAreNot)
{
    Pane top;
    top.Create(nullptr, {0, 0, 200, 100});
    Pane* moved = placed(&top, {10, 10, 20, 20});
    EXPECT_EQ(top.GetPaneAt({15, 15}), &top);  // (5, 5) to the pane, which begins at (10, 10)
    EXPECT_EQ(top.GetPaneAt({25, 25}), moved); // (15, 15)
    EXPECT_EQ(top.GetPaneAt({30, 30}), &top);
}

TEST_F(PaneHitTest, ASubpaneThatDoesNotAnswerLeavesThePointToTheNext)
{
    Pane top;
    top.Create(nullptr, {0, 0, 200, 100});
    Pane* lower = placed(&top);
    placed(&top, {10, 10, 20, 20});
    EXPECT_EQ(top.GetPaneAt({15, 15}), lower);
}

TEST_F(PaneUpwards, InvalidatingReachesTheRootInItsOwnCoordinates)
{
    root.SetBounds({7, 8, 200, 100});
    b->Invalidate();
    root.Invalidate();
    EXPECT_EQ(root.invalidated, (std::vector<Rect>{{15, 26, 30, 20}, {0, 0, 200, 100}}));
}

TEST_F(PaneUpwards, WithoutARootNothingIsInvalidated)
{
    Pane alone;
    alone.SetVisible(false);
    alone.SetEnabled(false);
    EXPECT_EQ(alone.systemWindow(), nullptr);
    EXPECT_EQ(alone.create_graphics(), nullptr);
    EXPECT_FALSE(alone.HasFocus());
    EXPECT_EQ(alone.ShowMenu(MenuItemListImpl(), {0, 0, 1, 1}), -1);
    alone.SetFocus();
    alone.StartPeriodic(nullptr, 10);
    alone.StopPeriodic(nullptr);
    alone.DeferTask(nullptr);
    alone.turn_mouse_tracking_off();
}

namespace {

/// Answers what only the platform's root can.
class PlatformRoot : public RootPane
{
public:
    void* systemWindow() override { return this; }

    std::unique_ptr<GraphicsContext> create_graphics_with_offset(Point offset) override
    {
        auto g = std::make_unique<GraphicsContext>(nullptr);
        g->SetOrigin(offset.x, offset.y);
        return g;
    }

    int peerShowMenu(const MenuItemList& items, Rect& at) override
    {
        menuAt = at;
        return static_cast<int>(items.size()) - 1;
    }

    void StartPeriodic(Delegate* delegate, unsigned int periodMs) override
    {
        calls.push_back("start " + std::to_string(periodMs));
        delegate->invoke();
    }

    void StopPeriodic(Delegate*) override { calls.push_back("stop"); }

    void DeferTask(Delegate*) override { calls.push_back("defer"); }

    void tick() { calls.push_back("tick"); }

    Rect menuAt;
    Trace calls;
};

} // namespace

TEST(PanePlatform, IsReachedThroughTheTree)
{
    PlatformRoot root;
    Pane* outer = placed(&root, {10, 20, 50, 50});
    Pane* inner = placed(outer, {1, 2, 5, 5});
    EXPECT_EQ(inner->systemWindow(), &root);
    EXPECT_EQ(inner->create_graphics()->GetOrigin(), (Point{11, 22}));
    EXPECT_EQ(inner->create_graphics_with_offset({100, 100})->GetOrigin(), (Point{111, 122}));
    const auto task =
        Ref<Delegate>::adopt(new MemberDelegateT<PlatformRoot>(&root, &PlatformRoot::tick));
    inner->StartPeriodic(task.get(), 40);
    inner->StopPeriodic(task.get());
    inner->DeferTask(task.get());
    EXPECT_EQ(root.calls, (Trace{"start 40", "tick", "stop", "defer"}));
}

TEST(PanePlatform, ShowsAMenuAtAPlaceInThePane)
{
    PlatformRoot root;
    Pane* inner = placed(placed(&root, {10, 20, 50, 50}), {1, 2, 5, 5});
    MenuItemListImpl items;
    items.add("Export To Desktop");
    items.add("Snap", 1);
    EXPECT_EQ(inner->ShowMenu(items, {3, 3, 1, 1}), 1);
    EXPECT_EQ(root.menuAt, (Rect{14, 25, 1, 1}));
    EXPECT_STREQ(items.item(0).text.c_str(), "Export To Desktop");
    EXPECT_EQ(items.item(0).flag, 0);
    EXPECT_EQ(items.item(1).flag, 1);
}

namespace {

/// The place of a virtual operation in the table, from the form that the platform's C++ interface
/// gives pointers to members.
template <typename Member>
std::size_t slotOf(Member member)
{
    static_assert(sizeof member == 2 * sizeof(std::size_t));
    std::size_t word = 0;
    std::memcpy(&word, &member, sizeof word);
    return (word - 1) / sizeof(void*);
}

} // namespace

TEST(PaneSlots, StandInTheirPublishedOrder)
{
    const std::size_t slots[] = {
        slotOf(&Pane::Create),
        slotOf(&Pane::AfterCreate),
        slotOf(&Pane::BeforeDestroy),
        slotOf(&Pane::Destroy),
        slotOf(&Pane::Contains),
        slotOf(&Pane::GetPaneAt),
        slotOf(&Pane::IsFocusRoot),
        slotOf(&Pane::IsPaneInFocus),
        slotOf(&Pane::SetVisible),
        slotOf(&Pane::SetEnabled),
        slotOf(&Pane::AddPane),
        slotOf(&Pane::RemovePane),
        slotOf(&Pane::systemWindow),
        slotOf(&Pane::create_graphics_with_offset),
        slotOf(static_cast<void (Pane::*)(PaneEvent&)>(&Pane::process)),
        slotOf(static_cast<void (Pane::*)(MouseEvent&)>(&Pane::process)),
        slotOf(static_cast<void (Pane::*)(KeyEvent&)>(&Pane::process)),
        slotOf(static_cast<void (Pane::*)(FocusEvent&)>(&Pane::process)),
        slotOf(&Pane::Draw),
        slotOf(&Pane::DrawSelf),
        slotOf(&Pane::HandleEvent),
        slotOf(&Pane::HandleKey),
        slotOf(&Pane::HandleFocus),
        slotOf(&Pane::HandleMouse),
        slotOf(&Pane::HandleMouseMotion),
        slotOf(&Pane::HandleMouseWheel),
        slotOf(&Pane::StartPeriodic),
        slotOf(&Pane::StopPeriodic),
        slotOf(&Pane::DeferTask),
        slotOf(&Pane::setFocusTo),
        slotOf(&Pane::invalidate),
        slotOf(&Pane::peerShowMenu),
        slotOf(&Pane::turn_mouse_tracking_off),
        slotOf(&Pane::drawSubpanes),
        slotOf(&Pane::drawOpaqueSubpanes),
        slotOf(&Pane::destroySubpanes),
    };
    std::size_t expected = 2; // the destructor has the first two
    for (const std::size_t slot : slots)
        EXPECT_EQ(slot, expected++);
}
