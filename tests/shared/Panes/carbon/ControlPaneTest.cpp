// A pane tree in a user pane of a real window: what is drawn is read from the screen, and pointer
// and keys are a user's.
#include "shared/Panes/carbon/ControlPane.h"

#include "tests/platform/toolkit/ToolkitFixture.h"

#include <algorithm>
#include <string>
#include <thread>
#include <vector>

using Korvanel::Color;
using Korvanel::Delegate;
using Korvanel::GraphicsContext;
using Korvanel::KeyEvent;
using Korvanel::MemberDelegateT;
using Korvanel::MenuItemListImpl;
using Korvanel::MouseEvent;
using Korvanel::Pane;
using Korvanel::PaneEvent;
using Korvanel::Rect;
using Korvanel::Ref;
using Korvanel::Region;
using korvanel::macosx::carbon::ControlPane;

namespace {

constexpr unsigned kBlue = 0x0000FF;
constexpr unsigned kRed = 0xFF0000;
constexpr unsigned kGreen = 0x00FF00;

/// Fills itself with a colour, and notes what it is told.
template <typename Base>
class Noting : public Base
{
public:
    void AfterCreate() override
    {
        Base::AfterCreate();
        told += "created ";
    }

    void BeforeDestroy() override
    {
        Base::BeforeDestroy();
        told += "destroyed ";
    }

    void DrawSelf(GraphicsContext& g) override
    {
        Region clip;
        g.GetClipping(clip);
        drawn.push_back(clip);
        g.FillRect({0, 0, this->GetBounds().width, this->GetBounds().height}, color);
    }

    void HandleMouse(MouseEvent& event) override
    {
        mouse.push_back(event.as(event.kind, event.point));
    }

    void HandleMouseMotion(MouseEvent& event) override { HandleMouse(event); }

    void HandleMouseWheel(MouseEvent& event) override { HandleMouse(event); }

    void HandleKey(KeyEvent& event) override
    {
        keys += event.kind == PaneEvent::KeyDown ? '+' : '-';
        keys += static_cast<char>(event.character);
    }

    bool has(int kind) const { return find(kind) != nullptr; }

    const MouseEvent* find(int kind) const
    {
        const auto found = std::find_if(mouse.begin(), mouse.end(), [kind](const MouseEvent& each) {
            return each.kind == kind;
        });
        return found == mouse.end() ? nullptr : &*found;
    }

    Color color = Color::Blue;
    std::string told;
    std::vector<Region> drawn; ///< the clip of each drawing
    std::vector<MouseEvent> mouse;
    std::string keys;
};

/// A pane tree in the control at (40, 30), 200 x 100, of a window of 400 x 300: a blue root and in
/// it, once `addPart` was called, a red pane at (20, 10), 50 x 40.
class ControlPaneTest : public ToolkitFixture
{
protected:
    void SetUp() override
    {
        ToolkitFixture::SetUp();
        open(R"({"kind": "user pane", "id": 108, "bounds": [40, 30, 200, 100],
                 "anchors": ["left", "top", "right", "bottom"]})");
    }

    void TearDown() override
    {
        root.Destroy();
        ToolkitFixture::TearDown();
    }

    void attach()
    {
        root.AttachTo(control(108), *window, {40, 30, 200, 100});
        ASSERT_TRUE(shows(100, 90, kBlue));
    }

    void addPart()
    {
        part = new Noting<Pane>;
        part->color = Color::Red;
        part->Create(&root, {20, 10, 50, 40});
    }

    /// Waits for a colour at a place in the pane, in its points.
    bool shows(int x, int y, unsigned color)
    {
        return until([=, this] { return display->pixel(screen(x, y)) == color; });
    }

    toolkit::Point screen(int x, int y) { return window->toScreen({40 + x, 30 + y}); }

    /// Everything that was asked for is drawn, and the list of drawings begins anew.
    void forgetDrawings()
    {
        settle();
        root.drawn.clear();
    }

    Noting<ControlPane> root;
    Noting<Pane>* part = nullptr; ///< its parent's
};

struct Counter
{
    void count() { ++counted; }

    Ref<Delegate> task()
    {
        return Ref<Delegate>::adopt(new MemberDelegateT<Counter>(this, &Counter::count));
    }

    int counted = 0;
};

} // namespace

// Drawing -----------------------------------------------------------------------------------------

TEST_F(ControlPaneTest, WhatIsDrawnReachesTheScreen)
{
    addPart();
    attach();
    EXPECT_TRUE(shows(0, 0, kBlue));
    EXPECT_TRUE(shows(199, 99, kBlue));
    EXPECT_TRUE(shows(20, 10, kRed));
    EXPECT_TRUE(shows(69, 49, kRed));
    EXPECT_TRUE(shows(70, 49, kBlue));
}

TEST_F(ControlPaneTest, TheControlTakesThePanesPlace)
{
    root.AttachTo(control(108), *window, {60, 50, 100, 80});
    EXPECT_EQ(control(108).bounds(), (toolkit::Rect{60, 50, 100, 80}));
    EXPECT_EQ(root.GetBounds(), (Rect{0, 0, 100, 80}));
    EXPECT_TRUE(shows(20, 20, kBlue));
    EXPECT_TRUE(shows(119, 99, kBlue));
}

TEST_F(ControlPaneTest, TwoInvalidationsAreOneRedrawOfBothAreas)
{
    attach();
    forgetDrawings();
    Rect first{5, 5, 10, 10};
    Rect second{100, 60, 20, 20};

    root.invalidate(first);
    root.invalidate(second);
    EXPECT_TRUE(root.drawn.empty()); // never inside the caller

    ASSERT_TRUE(until([this] { return !root.drawn.empty(); }));
    settle();
    ASSERT_EQ(root.drawn.size(), 1u);
    EXPECT_EQ(root.drawn[0],
              Region::Union(Region(Rect{5, 5, 10, 10}), Region(Rect{100, 60, 20, 20})));
}

TEST_F(ControlPaneTest, OnlyWhatIsInvalidIsDrawn)
{
    attach();
    forgetDrawings();
    root.color = Color::Green;
    Rect area{50, 20, 30, 30};

    root.invalidate(area);

    EXPECT_TRUE(shows(50, 20, kGreen));
    EXPECT_TRUE(shows(79, 49, kGreen));
    EXPECT_TRUE(shows(80, 49, kBlue));
    EXPECT_TRUE(shows(49, 20, kBlue));
}

TEST_F(ControlPaneTest, AnAreaIsShownThoughTheWindowAsksForAnotherFirst)
{
    attach();
    forgetDrawings();
    root.color = Color::Green;
    Rect area{150, 60, 40, 30};
    root.invalidate(area);
    // as when the window shows another part of the control before it hears of this one
    control(108).send(toolkit::Event({toolkit::fourCharCode("cntl"), 4}));

    EXPECT_TRUE(shows(150, 60, kGreen));
    EXPECT_TRUE(shows(189, 89, kGreen));
}

TEST_F(ControlPaneTest, AnyThreadInvalidates)
{
    attach();
    forgetDrawings();
    root.color = Color::Green;
    std::thread other([this] {
        for (int x = 0; x < 200; ++x)
            root.peerInvalidate({x, 0, 1, 100});
    });
    settle(); // some are drawn while others come
    other.join();

    for (const int x : {0, 57, 120, 199})
        EXPECT_TRUE(shows(x, 50, kGreen)) << x;
}

TEST_F(ControlPaneTest, OnlyWhatWasDrawnNoLongerWaits)
{
    attach();
    forgetDrawings();
    const Region clipped(Rect{0, 0, 10, 10});
    root.peerInvalidate({0, 0, 20, 20});
    const auto surface = toolkit::Surface::create({0, 0, 200, 100});
    GraphicsContext partial(surface.get());
    Region clip = clipped;
    partial.SetClipping(clip);

    root.OnDraw(partial);

    EXPECT_EQ(root.copyInvalidRegion(), Region::Difference(Region(Rect{0, 0, 20, 20}), clipped));
}

TEST_F(ControlPaneTest, ADirectDrawingIsShownAtOnceAndNotDrawnAgain)
{
    attach();
    forgetDrawings();
    {
        const auto g = root.create_graphics();
        ASSERT_NE(g, nullptr);
        Region columns(Rect{30, 0, 2, 100});
        g->SetClipping(columns);
        g->FillRect({0, 0, 200, 100}, Color::Red);
    }
    EXPECT_TRUE(shows(30, 50, kRed));
    EXPECT_TRUE(shows(31, 50, kRed));
    EXPECT_TRUE(shows(32, 50, kBlue));
    settle();
    EXPECT_TRUE(root.drawn.empty());
}

TEST_F(ControlPaneTest, ADirectDrawingOfAPartBeginsAtItsCorner)
{
    addPart();
    attach();
    part->create_graphics()->FillRect({0, 0, 3, 3}, Color::Green);
    EXPECT_TRUE(shows(20, 10, kGreen));
    EXPECT_TRUE(shows(22, 12, kGreen));
    EXPECT_TRUE(shows(23, 12, kRed));
}

TEST_F(ControlPaneTest, AtOtherScalesAPointIsSoManyPixels)
{
    addPart();
    attach();
    for (const double scale : {1.5, 2.0}) {
        window->setScale(scale);
        settle();
        const auto corner = window->toScreen({40, 30});
        const auto pixel = [&](int x, int y) {
            return display->pixel({corner.x + x, corner.y + y});
        };
        const int left = static_cast<int>(20 * scale);
        const int right = static_cast<int>(70 * scale);
        const int top = static_cast<int>(10 * scale);
        EXPECT_TRUE(until([&] { return pixel(left, top) == kRed; })) << scale;
        EXPECT_TRUE(until([&] { return pixel(left - 1, top) == kBlue; })) << scale;
        EXPECT_TRUE(until([&] { return pixel(right - 1, top) == kRed; })) << scale;
        EXPECT_TRUE(until([&] { return pixel(right, top) == kBlue; })) << scale;
        ASSERT_NE(root.picture(), nullptr);
        EXPECT_EQ(root.picture()->deviceWidth(), static_cast<int>(200 * scale));
    }
}

TEST_F(ControlPaneTest, FillsItsControlAtScalesThatAreNoWholePixels)
{
    part = new Noting<Pane>;
    part->color = Color::Red;
    part->Create(&root, {180, 90, 20, 10}); // the lower right corner
    attach();
    for (const double scale : {1.3333, 13.0 / 12, 0.75}) {
        window->setScale(scale);
        const toolkit::Rect covered = control(108).pixelBounds();
        const toolkit::Point corner = window->toScreen({0, 0});
        // Shrunk, an edge is mixed with what lies beside it.
        const auto shows = [&](int x, int y, unsigned color) {
            return until([&] {
                const unsigned pixel =
                    display->pixel({corner.x + covered.x + x, corner.y + covered.y + y});
                return (pixel & 0xC0C0C0) == (color & 0xC0C0C0);
            });
        };
        const int right = covered.width - 1;
        const int bottom = covered.height - 1;
        EXPECT_TRUE(shows(right, bottom, kRed)) << scale;
        EXPECT_TRUE(shows(0, 0, kBlue)) << scale;
        EXPECT_TRUE(shows(right, 0, kBlue)) << scale;
        EXPECT_TRUE(shows(0, bottom, kBlue)) << scale;
        EXPECT_TRUE(shows(right - static_cast<int>(18 * scale), bottom - 1, kRed)) << scale;
        EXPECT_TRUE(shows(right - static_cast<int>(23 * scale), bottom - 1, kBlue)) << scale;
    }
}

TEST_F(ControlPaneTest, ADirectDrawingLeavesNothingAtAnyScale)
{
    attach();
    for (const double scale : {1.3333, 13.0 / 12}) {
        window->setScale(scale);
        settle();
        const toolkit::Rect covered = control(108).pixelBounds();
        const toolkit::Point corner = window->toScreen({0, 0});
        const auto isBlue = [&] {
            for (int x = 0; x < covered.width; ++x)
                if (display->pixel({corner.x + covered.x + x, corner.y + covered.y + 5}) != kBlue)
                    return false;
            return true;
        };
        ASSERT_TRUE(until(isBlue)) << scale;
        for (const Color color : {Color::Red, Color::Blue})
            for (int x = 0; x < 200; ++x) { // as a cursor passes
                const auto g = root.create_graphics();
                Region column(Rect{x, 0, 1, 100});
                g->SetClipping(column);
                g->FillRect({0, 0, 200, 100}, color);
                toolkit::EventLoop::turn();
            }
        EXPECT_TRUE(until(isBlue)) << scale;
    }
}

TEST_F(ControlPaneTest, AScaleTooSmallForThePictureDrawsOnce)
{
    attach();
    window->setScale(0.5);
    forgetDrawings();
    root.Invalidate();
    ASSERT_TRUE(until([this] { return !root.drawn.empty(); }));
    settle();
    EXPECT_EQ(root.drawn.size(), 1u);
}

TEST_F(ControlPaneTest, GrowsWithItsControl)
{
    attach();
    window->setSize(500, 350);
    ASSERT_TRUE(until([this] { return root.GetBounds() == Rect{0, 0, 300, 150}; }));
    EXPECT_TRUE(shows(299, 149, kBlue));
    EXPECT_EQ(control(108).bounds(), (toolkit::Rect{40, 30, 300, 150}));
}

TEST_F(ControlPaneTest, AMovedControlIsDrawnWholeThoughAPartWaited)
{
    attach();
    root.color = Color::Green;
    Rect area{0, 0, 10, 10};
    root.invalidate(area);
    control(108).setBounds({60, 40, 200, 100});
    EXPECT_TRUE(until([this] { return display->pixel(window->toScreen({60, 40})) == kGreen; }));
    EXPECT_TRUE(until([this] { return display->pixel(window->toScreen({259, 139})) == kGreen; }));
}

// Input -------------------------------------------------------------------------------------------

TEST_F(ControlPaneTest, TheMouseGoesToThePartBeneathIt)
{
    addPart();
    attach();
    display->moveTo(screen(30, 25));
    ASSERT_TRUE(until([this] { return part->has(PaneEvent::MouseMoved); }));
    EXPECT_TRUE(part->has(PaneEvent::MouseEntered));
    EXPECT_EQ(part->find(PaneEvent::MouseMoved)->point, (Korvanel::Point{10, 15}));

    display->moveTo(screen(120, 80));
    ASSERT_TRUE(until([this] { return part->has(PaneEvent::MouseLeft); }));
    EXPECT_TRUE(until([this] { return root.has(PaneEvent::MouseMoved); }));
}

TEST_F(ControlPaneTest, ButtonsHaveTheFrameworksNumbers)
{
    attach();
    display->moveTo(screen(30, 25));
    display->press(1);
    ASSERT_TRUE(until([this] { return root.has(PaneEvent::MouseDown); }));
    EXPECT_EQ(root.find(PaneEvent::MouseDown)->button, 1u);
    EXPECT_EQ(root.find(PaneEvent::MouseDown)->buttons.mask, 2u);
    display->release(1);
    ASSERT_TRUE(until([this] { return root.has(PaneEvent::MouseUp); }));
    EXPECT_EQ(root.find(PaneEvent::MouseUp)->button, 1u);
    EXPECT_EQ(root.find(PaneEvent::MouseUp)->buttons.mask, 0u);

    root.mouse.clear();
    display->click(screen(30, 25), 2);
    ASSERT_TRUE(until([this] { return root.has(PaneEvent::MouseUp); }));
    EXPECT_EQ(root.find(PaneEvent::MouseDown)->button, 3u);
    EXPECT_EQ(root.find(PaneEvent::MouseDown)->buttons.mask, 8u);
}

TEST_F(ControlPaneTest, AHeldButtonKeepsTheMouseWithItsPart)
{
    addPart();
    attach();
    display->moveTo(screen(30, 25));
    display->press();
    ASSERT_TRUE(until([this] { return part->has(PaneEvent::MouseDown); }));
    EXPECT_TRUE(root.CaptureMouse());

    display->moveTo(screen(-20, -10)); // outside of the control, too
    ASSERT_TRUE(until([this] { return part->has(PaneEvent::MouseDragged); }));
    EXPECT_TRUE(part->has(PaneEvent::MouseLeft));
    EXPECT_FALSE(root.has(PaneEvent::MouseDragged));

    display->release();
    ASSERT_TRUE(until([this] { return part->has(PaneEvent::MouseUp); }));
    EXPECT_FALSE(root.CaptureMouse());
}

TEST_F(ControlPaneTest, AWheelNotchDownIsOneStepDown)
{
    attach();
    display->moveTo(screen(30, 25));
    settle();
    display->press(5);
    display->release(5);
    ASSERT_TRUE(until([this] { return root.has(PaneEvent::MouseWheel); }));
    EXPECT_EQ(root.find(PaneEvent::MouseWheel)->deltaY, 1);
}

TEST_F(ControlPaneTest, KeysGoToThePaneWithTheFocus)
{
    addPart();
    attach();
    ASSERT_TRUE(until([this] { return control(108).focus(); }));
    display->key("a");
    settle();
    EXPECT_EQ(root.keys + part->keys, "");

    part->SetFocus();
    display->key("b");
    EXPECT_TRUE(until([this] { return part->keys.starts_with("+b-"); }));
    EXPECT_EQ(root.keys, "");
}

// Tasks -------------------------------------------------------------------------------------------

TEST_F(ControlPaneTest, ATaskOfPeriod40RunsOnEveryFourthTick)
{
    Counter counter; // not attached: the ticks are the test's own
    root.StartPeriodic(counter.task().get(), 40);
    std::string ticks;
    for (int tick = 0; tick < 9; ++tick) {
        const int before = counter.counted;
        root.perform_periodic_actions();
        ticks += counter.counted > before ? 'x' : '.';
    }
    EXPECT_EQ(ticks, "...x...x.");
    root.StopPeriodic(counter.task().get());
    for (int tick = 0; tick < 8; ++tick)
        root.perform_periodic_actions();
    EXPECT_EQ(counter.counted, 2);
}

TEST_F(ControlPaneTest, ADeferredTaskRunsOnceAtTheNextTick)
{
    Counter counter;
    root.DeferTask(counter.task().get());
    EXPECT_EQ(counter.counted, 0);
    root.perform_periodic_actions();
    root.perform_periodic_actions();
    EXPECT_EQ(counter.counted, 1);
}

TEST_F(ControlPaneTest, TasksRunWhileAttached)
{
    Counter counter;
    addPart();
    attach();
    part->StartPeriodic(counter.task().get(), 40); // up the tree
    EXPECT_TRUE(until([&counter] { return counter.counted >= 3; }));

    root.Destroy();
    const int before = counter.counted;
    settle();
    EXPECT_EQ(counter.counted, before);
}

// Menus -------------------------------------------------------------------------------------------

TEST_F(ControlPaneTest, AMenuGivesTheChosenItemsIndex)
{
    attach();
    display->click(window->toScreen({390, 290}));
    settle();
    MenuItemListImpl items;
    items.add("First");
    items.add("Second", 1);
    const auto user = inMenu([this] {
        display->key("Down");
        display->key("Down");
        display->key("Return");
    });
    EXPECT_EQ(root.ShowMenu(items, {10, 10, 1, 1}), 1);
    EXPECT_FALSE(root.CaptureMouse());
}

TEST_F(ControlPaneTest, AMenuOpensAtTheRectanglesCorner)
{
    addPart();
    attach();
    display->click(window->toScreen({390, 290}));
    settle();
    MenuItemListImpl items;
    items.add("Only");
    const auto corner = screen(25, 15); // (5, 5) in the part
    const auto user = inMenu([&] { display->click({corner.x + 40, corner.y + 16}); });
    EXPECT_EQ(part->ShowMenu(items, {5, 5, 1, 1}), 0);
}

TEST_F(ControlPaneTest, NothingIsChosenByEscapeOrWithoutAWindow)
{
    MenuItemListImpl items;
    items.add("Only");
    EXPECT_EQ(root.ShowMenu(items, {0, 0, 1, 1}), -1);
    attach();
    display->click(window->toScreen({390, 290}));
    settle();
    const auto user = inMenu([this] { display->key("Escape"); });
    EXPECT_EQ(root.ShowMenu(items, {0, 0, 1, 1}), -1);
}

// Life --------------------------------------------------------------------------------------------

TEST_F(ControlPaneTest, TellsItsPartsOfBeginningAndEnd)
{
    addPart();
    attach();
    EXPECT_EQ(root.told, "created ");
    EXPECT_EQ(part->told, "created ");
    EXPECT_EQ(root.systemWindow(), window.get());
    root.Destroy();
    EXPECT_EQ(root.told, "created destroyed ");
    EXPECT_EQ(root.systemWindow(), nullptr);
    EXPECT_EQ(root.control(), nullptr);
    EXPECT_EQ(root.create_graphics(), nullptr);
}

TEST_F(ControlPaneTest, AClosedWindowIsLetGo)
{
    attach();
    const std::weak_ptr<toolkit::Window> seen = window;
    window->dispose();
    settle();
    EXPECT_EQ(root.told, "created destroyed ");
    EXPECT_EQ(root.control(), nullptr);
    window.reset();
    settle();
    EXPECT_TRUE(seen.expired());
}

TEST_F(ControlPaneTest, AttachedAgainItMovesToTheNewWindow)
{
    attach();
    const auto first = window;
    open(R"({"kind": "user pane", "id": 108, "bounds": [40, 30, 200, 100]})");
    root.AttachTo(control(108), *window, {40, 30, 200, 100});
    EXPECT_EQ(root.told, "created destroyed created ");
    EXPECT_TRUE(shows(10, 10, kBlue));
    first->dispose();
    settle();
    EXPECT_EQ(root.control(), &control(108));
}
