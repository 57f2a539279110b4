#include "shared/Panes/kvGraphics.h"
#include "tests/support/GoldenImage.h"

#include <gtest/gtest.h>

#include <array>
#include <utility>

using namespace Korvanel;
using toolkit::PenMode;
using toolkit::Surface;

namespace {

constexpr std::uint32_t white = 0xFFFFFFFF;
constexpr std::uint32_t red = 0xFFFF0000;
constexpr std::uint32_t black = 0xFF000000;

/// A picture of 8 by 4 pixels and a context on it.
class GraphicsContextTest : public testing::Test
{
protected:
    std::string art() const { return letterArt(*surface); }

    Region clip() const
    {
        Region region;
        g.GetClipping(region);
        return region;
    }

    std::unique_ptr<Surface> surface = Surface::create({0, 0, 8, 4});
    GraphicsContext g{surface.get()};
};

using GraphicsClipping = GraphicsContextTest;
using GraphicsOffscreen = GraphicsContextTest;

} // namespace

TEST_F(GraphicsContextTest, ChangingTheOriginReturnsTheOneBefore)
{
    g.SetOrigin(3, 4);
    EXPECT_EQ(g.ChangeOrigin({5, 6}), (Point{3, 4}));
    EXPECT_EQ(g.GetOrigin(), (Point{5, 6}));
}

TEST_F(GraphicsContextTest, RasterOperationsSelectPenModes)
{
    const std::pair<int, PenMode> modes[] = {
        {1, PenMode::join}, {0, PenMode::copy}, {3, PenMode::exclusive}, {2, PenMode::copy}};
    for (const auto& [rop, mode] : modes) {
        g.SetRop(static_cast<RasterOperation>(rop));
        EXPECT_EQ(surface->penMode(), mode) << rop;
    }
}

TEST_F(GraphicsContextTest, OtherRasterOperationsAreStoredAndChangeNothing)
{
    g.SetRop(RopXor);
    g.SetRop(static_cast<RasterOperation>(7));
    EXPECT_EQ(g.Rop(), 7);
    EXPECT_EQ(surface->penMode(), PenMode::exclusive);
}

TEST_F(GraphicsContextTest, SettingAToolReturnsTheOneBefore)
{
    const Ref<Pen> first = Pen::Create(Color::Red);
    const Ref<Pen> second = Pen::Create(Color::Blue);
    EXPECT_FALSE(g.SetPen(first.get()));
    EXPECT_TRUE(g.SetPen(second.get()) == first);
    g.SetTool(static_cast<Pen*>(nullptr));
    EXPECT_FALSE(g.SetPen(nullptr));
}

TEST_F(GraphicsContextTest, HoldsOneReferenceToEachTool)
{
    const std::int32_t before = Base::numAllocations;
    {
        GraphicsContext other(surface.get());
        other.SetBrush(Brush::Create(Color::Red).get());
        other.SetPen(Pen::Create(Color::Red).get());
        other.SetFont(Font::Create(Font::Type::Small).get());
        EXPECT_EQ(Base::numAllocations, before + 3);
        other.SetBrush(Brush::Create(Color::Green).get());
        EXPECT_EQ(Base::numAllocations, before + 3);
    }
    EXPECT_EQ(Base::numAllocations, before);
}

TEST_F(GraphicsContextTest, WithoutAFontGivesANewDefaultOne)
{
    EXPECT_EQ(g.GetFont()->GetSize(), 0);
    EXPECT_FALSE(g.GetFont() == g.GetFont());
    const Ref<Font> font = Font::Create(Font::Type::Fixed);
    g.SetTool(font.get());
    EXPECT_TRUE(g.GetFont() == font);
}

TEST_F(GraphicsContextTest, AnAutoToolRestoresTheToolBefore)
{
    const Ref<Font> outer = Font::Create(Font::Type::System);
    const Ref<Font> inner = Font::Create(Font::Type::Small);
    g.SetTool(outer.get());
    {
        const AutoTool<Font> scope(g, inner.get());
        EXPECT_TRUE(g.GetFont() == inner);
    }
    EXPECT_TRUE(g.GetFont() == outer);
}

TEST_F(GraphicsContextTest, TextIsBlackUntilToldOtherwise)
{
    EXPECT_EQ(g.TextColor(), Color::Black);
    g.SetTextColor(Color::Red);
    EXPECT_EQ(g.TextColor(), Color::Red);
}

TEST_F(GraphicsContextTest, DrawsEveryShapeFromItsOrigin)
{
    g.SetOrigin(2, 1);
    g.DrawLine({0, 0}, {2, 0}, Color::White);
    g.FillRect({4, 0, 2, 2}, Color::White);
    EXPECT_EQ(art(), "........\n"
                     "..###.##\n"
                     "......##\n"
                     "........\n");
}

TEST_F(GraphicsContextTest, ALineWithoutAPenHasThePortsLastColour)
{
    g.FillRect({0, 3, 1, 1}, Color::Red);
    g.DrawLine({0, 0}, {1, 0}, static_cast<Pen*>(nullptr));
    EXPECT_EQ(surface->pixel(0, 0), red);
    g.DrawLine({0, 1}, {1, 1});
    EXPECT_EQ(surface->pixel(1, 1), red);
    g.DrawLine({0, 2}, {1, 2}, Pen::Create(Color::White).get());
    EXPECT_EQ(surface->pixel(0, 2), white);
}

TEST_F(GraphicsContextTest, ALineTakesTheCurrentPen)
{
    const Ref<Pen> pen = Pen::Create(Color::Red);
    g.SetPen(pen.get());
    g.DrawLine({0, 0}, {1, 0});
    EXPECT_EQ(surface->pixel(0, 0), red);
}

TEST_F(GraphicsContextTest, AnOutlineIsClosed)
{
    const std::array<Point, 4> square{{{1, 0}, {5, 0}, {5, 3}, {1, 3}}};
    g.DrawPolygon(square.data(), 4, Pen::Create(Color::White).get());
    EXPECT_EQ(art(), ".#####..\n"
                     ".#...#..\n"
                     ".#...#..\n"
                     ".#####..\n");
}

TEST_F(GraphicsContextTest, OutlinesOfTwoPointsAreDrawnAndOfOneAreNot)
{
    const std::array<Point, 2> points{{{1, 1}, {4, 1}}};
    const Ref<Pen> pen = Pen::Create(Color::White);
    g.SetPen(pen.get());
    g.DrawPolygon(points.data(), 1);
    g.DrawPolygon(points.data(), 0);
    g.DrawPolygon(points.data(), -3);
    EXPECT_EQ(art().find('#'), std::string::npos);
    g.DrawPolygon(points.data(), 2);
    EXPECT_EQ(art(), "........\n"
                     ".####...\n"
                     "........\n"
                     "........\n");
}

TEST_F(GraphicsContextTest, FillsAPolygonInTheBrushsColour)
{
    const std::array<Point, 4> square{{{1, 0}, {5, 0}, {5, 3}, {1, 3}}};
    g.FillPolygon(square.data(), 1, Brush::Create(Color::White).get());
    EXPECT_EQ(art().find('#'), std::string::npos);
    const Ref<Brush> brush = Brush::Create(Color::Red);
    g.SetBrush(brush.get());
    g.SetOrigin(1, 1);
    g.FillPolygon(square.data(), 4);
    EXPECT_EQ(art(), "........\n"
                     "..####..\n"
                     "..####..\n"
                     "..####..\n");
    EXPECT_EQ(surface->pixel(2, 1), red);
}

TEST_F(GraphicsContextTest, RectanglesAreDrawnOnlyWithANamedTool)
{
    const Ref<Pen> pen = Pen::Create(Color::White);
    const Ref<Brush> brush = Brush::Create(Color::White);
    g.SetPen(pen.get());
    g.SetBrush(brush.get());
    g.DrawRect({0, 0, 4, 4});
    g.FillRect({0, 0, 4, 4});
    EXPECT_EQ(art().find('#'), std::string::npos);
    g.DrawRect({0, 0, 3, 3}, *pen);
    g.FillRect({4, 0, 3, 3}, *brush);
    EXPECT_EQ(art(), "###.###.\n"
                     "#.#.###.\n"
                     "###.###.\n"
                     "........\n");
}

TEST_F(GraphicsContextTest, RegionsAreDrawnFromTheOriginAndStayThemselves)
{
    const Region region(Rect{0, 0, 3, 3});
    const Ref<Brush> brush = Brush::Create(Color::White);
    const Ref<Pen> pen = Pen::Create(Color::White);
    g.SetOrigin(1, 1);
    g.DrawRegion(region, pen.get());
    g.SetOrigin(5, 0);
    g.SetBrush(brush.get());
    g.FillRegion(region);
    EXPECT_EQ(art(), ".....###\n"
                     ".###.###\n"
                     ".#.#.###\n"
                     ".###....\n");
    EXPECT_TRUE(region == Region(Rect{0, 0, 3, 3}));
}

TEST_F(GraphicsContextTest, ExclusiveDrawingTwiceRestoresThePixels)
{
    g.FillRect({0, 0, 8, 4}, Color{0xFF00, 0xFF00, 0x8000});
    const std::uint32_t before = surface->pixel(3, 2);
    g.SetRop(RopXor);
    g.DrawLine({3, 0}, {3, 3}, Color::White);
    EXPECT_EQ(surface->pixel(3, 2), 0xFF00007Fu);
    g.DrawLine({3, 0}, {3, 3}, Color::White);
    EXPECT_EQ(surface->pixel(3, 2), before);
}

TEST_F(GraphicsContextTest, WithoutAPortSwallowsEverything)
{
    GraphicsContext none(nullptr);
    const std::array<Point, 3> points{{{0, 0}, {1, 0}, {1, 1}}};
    const Region region(Rect{0, 0, 2, 2});
    none.SetRop(RopXor);
    none.DrawLine({0, 0}, {1, 1}, Color::Red);
    none.DrawPolygon(points.data(), 3);
    none.FillPolygon(points.data(), 3);
    none.DrawRect({0, 0, 1, 1}, Color::Red);
    none.FillRect({0, 0, 1, 1}, Color::Red);
    none.DrawRegion(region);
    none.FillRegion(region);
    none.DrawStringAt({0, 0}, "x", -1);
    none.IntersectClipping({0, 0, 1, 1});
    EXPECT_FALSE(none.Visible({0, 0, 1, 1}));
    EXPECT_EQ(none.DetachOffscreen(), nullptr);
}

TEST_F(GraphicsContextTest, DrawsABitmapWholeStretchedOrInPart)
{
    auto image = Surface::create({0, 0, 2, 1});
    image->setForeground(0xFFFFFF);
    image->paintRect({1, 0, 2, 1});
    SurfaceBitmap bitmap(std::move(image));
    EXPECT_EQ(bitmap.Width(), 2);
    g.SetOrigin(1, 0);
    g.DrawBitmap(Point{0, 0}, &bitmap);
    g.DrawBitmap(Rect{0, 1, 4, 2}, &bitmap);
    g.DrawBitmap(Point{6, 3}, &bitmap, Rect{1, 0, 1, 1});
    EXPECT_EQ(art(), "..#.....\n"
                     "...##...\n"
                     "...##...\n"
                     ".......#\n");
}

TEST_F(GraphicsContextTest, DrawsABitmapWithTheRasterOperation)
{
    auto image = Surface::create({0, 0, 1, 1});
    image->setForeground(0x00FFFF);
    image->paintRect({0, 0, 1, 1});
    SurfaceBitmap bitmap(std::move(image));
    g.FillRect({0, 0, 8, 4}, Color::White);
    g.SetRop(RopXor);
    g.DrawBitmap(Point{0, 0}, &bitmap);
    EXPECT_EQ(surface->pixel(0, 0), red);
    g.SetRop(RopOr);
    g.DrawBitmap(Point{0, 0}, &bitmap);
    EXPECT_EQ(surface->pixel(0, 0), white);
    g.DrawBitmap(Rect{1, 0, 1, 1}, &bitmap); // into a rectangle it is always copied
    EXPECT_EQ(surface->pixel(1, 0), 0xFF00FFFFu);
}

TEST_F(GraphicsContextTest, NoBitmapDrawsNothing)
{
    g.DrawBitmap(Point{0, 0}, nullptr);
    g.DrawBitmap(Rect{0, 0, 4, 4}, nullptr);
    g.DrawBitmap(Point{0, 0}, nullptr, Rect{0, 0, 1, 1});
    SurfaceBitmap none(nullptr);
    g.DrawBitmap(Point{0, 0}, &none);
    EXPECT_EQ(none.Width(), 0);
    EXPECT_EQ(art().find('#'), std::string::npos);
}

TEST_F(GraphicsClipping, SettingTheClipMovesItByTheOrigin)
{
    g.SetOrigin(2, 1);
    Region region(Rect{0, 0, 3, 2});
    g.SetClipping(region);
    EXPECT_TRUE(region == Region(Rect{0, 0, 3, 2}));
    EXPECT_TRUE(Region(surface->clip()) == Region(Rect{2, 1, 3, 2}));
}

TEST_F(GraphicsClipping, ReadingTheClipMovesItBackAcross)
{
    g.SetOrigin(2, 0);
    Region region(Rect{0, 0, 3, 2});
    g.SetClipping(region);
    EXPECT_TRUE(clip() == region);
}

TEST_F(GraphicsClipping, ReadingTheClipShiftsItDownByAVerticalOrigin)
{
    g.SetOrigin(2, 1);
    Region region(Rect{0, 0, 3, 2});
    g.SetClipping(region);
    EXPECT_TRUE(clip() == Region(Rect{0, 2, 3, 2})); // installed at 1, and down once more
}

TEST_F(GraphicsClipping, IntersectsAndExcludesAtTheOriginOfThePort)
{
    g.IntersectClipping({1, 0, 6, 3});
    EXPECT_TRUE(clip() == Region(Rect{1, 0, 6, 3}));
    g.ExcludeClipping({1, 0, 6, 1});
    EXPECT_TRUE(clip() == Region(Rect{1, 1, 6, 2}));
}

TEST_F(GraphicsClipping, IntersectsAwayFromTheOriginWithWhatItReads)
{
    g.SetOrigin(2, 1);
    g.IntersectClipping({0, 0, 3, 2});
    // reads (-2, 1, 8, 4), keeps its part in (2, 1, 3, 2), and installs that by the origin
    EXPECT_TRUE(Region(surface->clip()) == Region(Rect{4, 2, 3, 2}));
}

TEST_F(GraphicsClipping, ExcludesAwayFromTheOriginFromWhatItReads)
{
    g.SetOrigin(0, 1);
    g.ExcludeClipping({0, 0, 8, 1});
    // reads (0, 1, 8, 4), takes away (0, 1, 8, 1), and installs the rest one further down
    EXPECT_TRUE(Region(surface->clip()) == Region(Rect{0, 3, 8, 3}));
}

TEST_F(GraphicsClipping, VisibleIsWhatTouchesTheClipFromTheOrigin)
{
    g.IntersectClipping({0, 0, 4, 4});
    EXPECT_TRUE(g.Visible({3, 3, 1, 1}));
    EXPECT_FALSE(g.Visible({4, 0, 4, 4}));
    EXPECT_FALSE(g.Visible({0, 0, 0, 4}));
    g.SetOrigin(-2, 0);
    EXPECT_TRUE(g.Visible({4, 0, 4, 4}));
}

TEST_F(GraphicsOffscreen, ReachesThePortWhenTheContextEnds)
{
    {
        GraphicsContext buffered(surface.get(), {2, 1, 3, 2});
        buffered.FillRect({0, 0, 4, 4}, Color::White);
        EXPECT_EQ(art().find('#'), std::string::npos);
    }
    EXPECT_EQ(art(), "........\n"
                     "..##....\n"
                     "..##....\n"
                     "........\n");
    EXPECT_EQ(surface->pixel(4, 1), black); // the whole area is copied
    EXPECT_EQ(surface->pixel(5, 1), 0u);
}

TEST_F(GraphicsOffscreen, HasThePortsClipAndRasterOperationZero)
{
    g.IntersectClipping({0, 0, 3, 4});
    g.SetRop(RopXor);
    GraphicsContext buffered(surface.get(), {0, 0, 8, 4});
    EXPECT_TRUE(Region(buffered.Offscreen()->clip()) == Region(Rect{0, 0, 3, 4}));
    EXPECT_EQ(buffered.Offscreen()->penMode(), PenMode::copy);
    EXPECT_EQ(buffered.Rop(), RopCopy);
}

TEST_F(GraphicsOffscreen, IsMadeWithEmptyPixelsAndNotAttached)
{
    const GWorld world = g.CreateOffscreen({1, 1, 2, 2});
    EXPECT_EQ(world->pixels().size(), 4u);
    for (const std::uint32_t pixel : world->pixels())
        EXPECT_EQ(pixel, 0u);
    EXPECT_EQ(g.Offscreen(), nullptr);
    EXPECT_EQ(g.port(), surface.get());
}

TEST_F(GraphicsOffscreen, CannotBeMadeOfNothing)
{
    EXPECT_EQ(g.CreateOffscreen({0, 0, 0, 4}), nullptr);
    EXPECT_EQ(g.CreateOffscreen({0, 0, -1, 4}), nullptr);
    EXPECT_EQ(g.CreateOffscreen({0, 0, INT32_MAX, INT32_MAX}), nullptr);
    GraphicsContext direct(surface.get(), {0, 0, 0, 0});
    EXPECT_EQ(direct.Offscreen(), nullptr);
    EXPECT_EQ(direct.port(), surface.get());
}

TEST_F(GraphicsOffscreen, HasThePortsScale)
{
    const auto large = Surface::create({0, 0, 8, 4}, {150});
    GraphicsContext scaled(large.get());
    const GWorld world = scaled.CreateOffscreen({1, 0, 2, 2});
    EXPECT_EQ(world->deviceWidth(), 3);
    EXPECT_EQ(world->deviceHeight(), 3);
}

TEST_F(GraphicsOffscreen, DetachingReturnsTheWorldAndThePort)
{
    g.AttachOffscreen(g.CreateOffscreen({0, 0, 8, 4}));
    g.FillRect({0, 0, 2, 1}, Color::White);
    const GWorld world = g.DetachOffscreen();
    EXPECT_NE(world, nullptr);
    EXPECT_EQ(g.port(), surface.get());
    EXPECT_EQ(surface->pixel(1, 0), white);
    EXPECT_EQ(g.DetachOffscreen(), nullptr);
}

TEST_F(GraphicsOffscreen, AttachingAnotherDetachesTheFirst)
{
    g.AttachOffscreen(g.CreateOffscreen({0, 0, 8, 4}));
    g.FillRect({0, 0, 1, 1}, Color::White);
    g.AttachOffscreen(g.CreateOffscreen({4, 0, 4, 4}));
    EXPECT_EQ(surface->pixel(0, 0), white);
    g.AttachOffscreen(nullptr);
    EXPECT_EQ(g.port(), surface.get());
    EXPECT_EQ(surface->pixel(4, 0), black);
}

TEST_F(GraphicsOffscreen, AttachingSetsRasterOperationZero)
{
    g.SetRop(RopXor);
    g.AttachOffscreen(g.CreateOffscreen({0, 0, 8, 4}));
    EXPECT_EQ(g.Rop(), RopCopy);
    g.DetachOffscreen();
    EXPECT_EQ(surface->penMode(), PenMode::exclusive); // the port's own
}

TEST_F(GraphicsOffscreen, IsCopiedInCopyModeWithinTheClipWhateverThePortsState)
{
    g.FillRect({0, 0, 8, 4}, Color::Red);
    g.IntersectClipping({0, 0, 4, 4});
    g.SetRop(RopXor);
    surface->setForeground(0x123456);
    g.AttachOffscreen(g.CreateOffscreen({0, 0, 8, 4}));
    g.DetachOffscreen();
    EXPECT_EQ(surface->pixel(0, 0), black);
    EXPECT_EQ(surface->pixel(4, 0), red);
    EXPECT_EQ(surface->foreground(), 0x123456u);
}
