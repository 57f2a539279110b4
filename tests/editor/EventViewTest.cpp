#include "editor/EventView.h"

#include "tests/editor/EventViewFixture.h"

#include <cstdint>
#include <set>
#include <vector>

using Korvanel::GraphicsContext;
using Korvanel::MenuItemListImpl;
using Korvanel::MouseEvent;
using Korvanel::PaneEvent;
using Korvanel::Point;
using Korvanel::Rect;
using Korvanel::Region;
using toolkit::Surface;

namespace {

constexpr unsigned kPlaying = 0xFFFF80;
constexpr unsigned kSilent = 0xC0C080;
constexpr unsigned kFrame = 0xC0C0C0;
constexpr unsigned kCursor = 0x00007F; ///< over the background
constexpr int kFreeRow = 40;           ///< above the notes and below the header

/// A view that tells how often it was drawn, whole or directly.
class CountedView : public EventView
{
public:
    using EventView::EventView;

    void DrawSelf(GraphicsContext& g) override
    {
        ++drawn;
        EventView::DrawSelf(g);
    }

    std::unique_ptr<GraphicsContext> create_graphics_with_offset(Point offset) override
    {
        ++direct;
        return EventView::create_graphics_with_offset(offset);
    }

    int drawn = 0;
    int direct = 0;
};

class EventViewTest : public EventViewFixture
{
protected:
    /// A view that is drawn into a picture of the test's own, without a window.
    std::unique_ptr<Surface> drawnAlone(EventView& alone)
    {
        alone.SetBounds({0, 0, 200, 100});
        auto surface = Surface::create({0, 0, 200, 100});
        GraphicsContext g(surface.get());
        alone.DrawSelf(g);
        return surface;
    }

    static unsigned at(const Surface& surface, int x, int y)
    {
        return surface.pixel(x, y) & 0xFFFFFF;
    }

    std::vector<std::uint32_t> picture() const
    {
        const auto pixels = view->picture()->pixels();
        return {pixels.begin(), pixels.end()};
    }

    /// Waits until the cursor stands there.
    bool cursorIsAt(int x)
    {
        return until([this, x] { return view->cursorX() == x; });
    }

    // The mouse as the framework tells it, without a window.
    void down(Point at, unsigned button = 1)
    {
        MouseEvent event(PaneEvent::MouseDown, at, button, 0, {1U << button}, 0, 0);
        view->HandleMouse(event);
    }

    void dragTo(Point at)
    {
        MouseEvent event(PaneEvent::MouseDragged, at, 0, 0, {2}, 0, 0);
        view->HandleMouseMotion(event);
    }
};

} // namespace

// Drawing -----------------------------------------------------------------------------------------

TEST_F(EventViewTest, IsBrightWhileThePatternPlays)
{
    EXPECT_EQ(at(*drawnAlone(*view), 100, kFreeRow), kPlaying);
    effect->setThru(true);
    EXPECT_EQ(at(*drawnAlone(*view), 100, kFreeRow), kSilent);
    effect->setThru(false);
    effect->Disable();
    EXPECT_EQ(at(*drawnAlone(*view), 100, kFreeRow), kSilent);
}

TEST_F(EventViewTest, HasAFrameOfOnePixel)
{
    const auto surface = drawnAlone(*view);
    for (int x = 0; x < 200; ++x) {
        EXPECT_EQ(at(*surface, x, 0), kFrame);
        EXPECT_EQ(at(*surface, x, 99), kFrame);
    }
    for (int y = 0; y < 100; ++y) {
        EXPECT_EQ(at(*surface, 0, y), kFrame);
        EXPECT_EQ(at(*surface, 199, y), kFrame);
    }
    EXPECT_NE(at(*surface, 1, 1), kFrame);
    EXPECT_NE(at(*surface, 198, 98), kFrame);
}

TEST_F(EventViewTest, ShowsThePatternWithinTheFrame)
{
    const auto surface = drawnAlone(*view);
    EXPECT_EQ(at(*surface, 20, 90), 0x008000u); // the note of the first beat
    EXPECT_EQ(at(*surface, 60, 90), kPlaying);
}

TEST_F(EventViewTest, WithoutAnEffectNothingIsDrawn)
{
    EventView none(nullptr);
    const auto surface = drawnAlone(none);
    none.DrawTick();
    for (const std::uint32_t pixel : surface->pixels())
        ASSERT_EQ(pixel, 0u);
    EXPECT_EQ(none.cursorX(), 0);
}

TEST_F(EventViewTest, LeavesOriginAndRasterOperationAsTheyWere)
{
    view->SetBounds({0, 0, 200, 100});
    const auto surface = Surface::create({0, 0, 200, 100});
    GraphicsContext g(surface.get());
    g.SetOrigin(7, 3);
    view->DrawSelf(g);
    EXPECT_EQ(g.GetOrigin(), (Point{7, 3}));
    EXPECT_EQ(g.Rop(), Korvanel::RopCopy);
    EXPECT_EQ(at(*surface, 0, 0), kFrame);
}

TEST_F(EventViewTest, APaneWithoutRoomIsNoHarm)
{
    for (const Rect& place : {Rect{0, 0, 0, 0}, Rect{0, 0, 1, 1}, Rect{0, 0, 2, 2}}) {
        view->SetBounds(place);
        const auto surface = Surface::create({0, 0, 4, 4});
        GraphicsContext g(surface.get());
        view->DrawSelf(g);
        EXPECT_EQ(at(*surface, 3, 3), 0u);
    }
}

// The cursor --------------------------------------------------------------------------------------

TEST_F(EventViewTest, TheCursorIsALineOverTheWholeInnerHeight)
{
    attach();
    playTo(480); // half of 198
    ASSERT_TRUE(shows(100, kFreeRow, kCursor));
    EXPECT_EQ(pixel(99, kFreeRow), kPlaying);
    EXPECT_EQ(pixel(101, kFreeRow), kPlaying);
    EXPECT_EQ(pixel(100, 98), kCursor);
    EXPECT_EQ(pixel(100, 99), kFrame);
    EXPECT_EQ(pixel(100, 0), kFrame);
    EXPECT_EQ(pixel(100, 1), 0x7F7F7Fu); // over the third beat's line
}

TEST_F(EventViewTest, TheCursorLeavesNothingWhereItWas)
{
    attach();
    const auto before = picture();
    ASSERT_EQ(view->cursorX(), 0);
    for (const std::int32_t tick : {100, 333, 480, 700, 959, 960}) {
        playTo(tick);
        ASSERT_TRUE(cursorIsAt(198 * (tick % 960) / 960)) << tick;
    }
    EXPECT_EQ(picture(), before);
    EXPECT_TRUE(shows(1, kFreeRow, kCursor));
}

TEST_F(EventViewTest, RedrawsInBetweenMakeNoDifference)
{
    attach();
    const auto before = picture();
    playTo(480);
    ASSERT_TRUE(cursorIsAt(99));
    view->Invalidate();
    settle();
    playTo(720);
    ASSERT_TRUE(cursorIsAt(148));
    Rect half{0, 0, 149, 100}; // ends in the cursor's column, whose lower part is drawn again
    half.y = 50;
    view->invalidate(half);
    settle();
    playTo(960);
    ASSERT_TRUE(cursorIsAt(0));
    EXPECT_EQ(picture(), before);
}

TEST_F(EventViewTest, AMoveTouchesTheTwoColumnsOnly)
{
    attach();
    playTo(480);
    ASSERT_TRUE(cursorIsAt(99));
    const auto before = picture();
    playTo(720);
    ASSERT_TRUE(cursorIsAt(148));
    const auto after = picture();
    std::set<std::size_t> touched;
    for (std::size_t i = 0; i < before.size(); ++i)
        if (before[i] != after[i])
            touched.insert(i % 200);
    EXPECT_EQ(touched, (std::set<std::size_t>{100, 149}));
}

TEST_F(EventViewTest, AtOtherScalesTheCursorErasesItselfToo)
{
    attach();
    for (const double scale : {1.5, 2.0}) {
        window->setScale(scale);
        ASSERT_TRUE(
            until([&] { return view->picture()->deviceWidth() == static_cast<int>(scale * 200); }));
        settle();
        const auto before = picture();
        const int start = view->cursorX();
        playTo(333);
        ASSERT_TRUE(cursorIsAt(68));
        EXPECT_NE(picture(), before);
        playTo(960);
        ASSERT_TRUE(cursorIsAt(start));
        EXPECT_EQ(picture(), before) << scale;
        playTo(1);
        playTo(960);
    }
}

TEST_F(EventViewTest, NothingIsDrawnUnlessTheCursorMovesByAPixel)
{
    auto counted = std::make_unique<CountedView>(effect.get());
    CountedView& seen = *counted;
    view = std::move(counted);
    attach();
    playTo(480);
    ASSERT_TRUE(cursorIsAt(99));
    settle();
    const int drawn = seen.drawn;
    const int direct = seen.direct;

    playTo(482); // still in the column
    seen.DrawTick();
    settle();
    EXPECT_EQ(seen.direct, direct);

    playTo(490);
    ASSERT_TRUE(cursorIsAt(101));
    EXPECT_EQ(seen.direct, direct + 1);
    EXPECT_EQ(seen.drawn, drawn); // the lines, not the pane
}

TEST_F(EventViewTest, AHiddenPanesCursorStands)
{
    attach();
    view->SetVisible(false);
    playTo(480);
    view->DrawTick();
    EXPECT_EQ(view->cursorX(), 0);
    view->SetVisible(true);
    EXPECT_TRUE(cursorIsAt(99));
}

TEST_F(EventViewTest, AnEmptyPatternPutsTheCursorToTheLeft)
{
    attach();
    playTo(480);
    ASSERT_TRUE(cursorIsAt(99));
    effect->Clear();
    drawnAlone(*view);
    EXPECT_EQ(view->cursorX(), 0);

    playTo(700);
    view->DrawTick();
    EXPECT_EQ(view->cursorX(), 0);
}

TEST_F(EventViewTest, TheCursorMovesFromBeginningToEnd)
{
    playTo(480);
    settle();
    EXPECT_EQ(view->cursorX(), 0);
    attach();
    EXPECT_TRUE(cursorIsAt(99));
    view->Destroy();
    playTo(720);
    settle();
    EXPECT_EQ(view->cursorX(), 99);
}

// The drag ----------------------------------------------------------------------------------------

TEST_F(EventViewTest, FourPixelsAreNoDrag)
{
    down({50, 50});
    for (const Point& at : {Point{54, 50}, Point{46, 50}, Point{50, 54}, Point{54, 46}})
        dragTo(at);
    EXPECT_FALSE(wasDragged());
}

TEST_F(EventViewTest, FivePixelsInAnyDirectionAreADrag)
{
    for (const Point& at : {Point{55, 50}, Point{45, 50}, Point{50, 55}, Point{50, 45}}) {
        down({50, 50});
        dragTo(at);
        EXPECT_TRUE(std::filesystem::remove(dragged("Straight Eight.mid"))) << at.x << " " << at.y;
    }
}

TEST_F(EventViewTest, ADragStartsOnceForAPress)
{
    down({50, 50});
    dragTo({60, 50});
    EXPECT_TRUE(std::filesystem::remove(dragged("Straight Eight.mid")));
    dragTo({70, 50});
    EXPECT_FALSE(wasDragged());
}

TEST_F(EventViewTest, OnlyTheFirstButtonArmsADrag)
{
    dragTo({60, 50});
    down({50, 50}, 2);
    dragTo({60, 50});
    down({50, 50}, 3);
    dragTo({60, 50});
    EXPECT_FALSE(wasDragged());
}

TEST_F(EventViewTest, ADraggedEventCountsWhicheverHandlerGetsIt)
{
    down({50, 50});
    MouseEvent event(PaneEvent::MouseDragged, {60, 50}, 0, 0, {2}, 0, 0);
    view->HandleMouse(event);
    EXPECT_TRUE(wasDragged());
}

TEST_F(EventViewTest, AMoveWithoutAButtonIsNoDrag)
{
    down({50, 50});
    MouseEvent event(PaneEvent::MouseMoved, {60, 50}, 0, 0, {}, 0, 0);
    view->HandleMouseMotion(event);
    EXPECT_FALSE(wasDragged());
}

TEST_F(EventViewTest, WithoutAnEffectADragIsNoHarm)
{
    view = std::make_unique<EventView>(nullptr);
    down({50, 50});
    dragTo({60, 50});
    EXPECT_FALSE(wasDragged());
}

// The menu ----------------------------------------------------------------------------------------

TEST_F(EventViewTest, TheMenuOpensWhereTheMouseIs)
{
    attach();
    display->click(window->toScreen({390, 290}));
    display->moveTo(screen(50, 20));
    const toolkit::Point expected{90, 50};
    ASSERT_TRUE(until([&] { return window->mousePosition() == expected; }));
    MenuItemListImpl items;
    items.add("Export To Desktop");
    const auto user = inMenu([this] {
        const auto corner = screen(50, 20);
        display->click({corner.x + 40, corner.y + 16});
    });
    EXPECT_EQ(view->ShowContextualMenu(items), 0);
}

TEST_F(EventViewTest, AMenuThatIsLeftGivesNoItem)
{
    MenuItemListImpl items;
    items.add("Export To Desktop");
    EXPECT_EQ(view->ShowContextualMenu(items), -1); // there is no window yet
    attach();
    display->click(window->toScreen({390, 290}));
    settle();
    const auto user = inMenu([this] { display->key("Escape"); });
    EXPECT_EQ(view->ShowContextualMenu(items), -1);
}
