// Each kind of drawing beside its approved picture: at two origins, under a clip with a hole, and
// at the three scales that screens have.
#include "shared/Panes/kvGraphics.h"
#include "tests/support/GoldenImage.h"

#include <gtest/gtest.h>

#include <array>
#include <functional>
#include <string>

using namespace Korvanel;
using toolkit::Surface;

namespace {

constexpr int side = 48; // of each of the four fields of a picture

using Drawing = std::function<void(GraphicsContext&)>;

void drawField(Surface& surface, const Drawing& drawing, Point corner, Region clip)
{
    GraphicsContext g(&surface);
    g.SetClipping(clip);
    g.SetOrigin(corner.x, corner.y);
    drawing(g);
}

/// Upper left as it is, upper right from an odd origin, lower left through a clip with a hole,
/// lower right in exclusive mode.
void compare(const std::string& name, const Drawing& drawing, int tolerance = 0)
{
    for (const int percent : {100, 150, 200}) {
        const auto surface = Surface::create({0, 0, 2 * side, 2 * side}, {percent});
        const Region all(Rect{0, 0, 2 * side, 2 * side});
        GraphicsContext(surface.get()).FillRect({0, 0, 2 * side, 2 * side}, Color::Yellow);
        drawField(*surface, drawing, {0, 0}, all);
        drawField(*surface, drawing, {side + 3, 1}, all);
        drawField(*surface, drawing, {0, side},
                  Region::Difference(Region(Rect{4, side + 4, 40, 40}),
                                     Region(Rect{17, side + 17, 13, 9})));
        drawField(
            *surface,
            [&drawing](GraphicsContext& g) {
                g.SetRop(RopXor);
                drawing(g);
            },
            {side, side}, all);
        EXPECT_TRUE(looksLike(name + "-" + std::to_string(percent), *surface, tolerance));
    }
}

constexpr std::array<Point, 5> star{{{22, 2}, {34, 41}, {2, 16}, {42, 16}, {10, 41}}};

} // namespace

TEST(GoldenDrawing, Lines)
{
    compare("lines", [](GraphicsContext& g) {
        for (int i = 0; i <= 40; i += 8) {
            g.DrawLine({2, 2}, {42, 2 + i}, Color::Blue);
            g.DrawLine({2, 2}, {2 + i, 42}, Color::Red);
        }
        g.DrawLine({4, 44}, {44, 44}, Color::Black);
        g.DrawLine({44, 4}, {44, 44}, Color::Black);
    });
}

TEST(GoldenDrawing, Rectangles)
{
    compare("rectangles", [](GraphicsContext& g) {
        for (int i = 0; i < 5; ++i)
            g.DrawRect({2 + 3 * i, 2 + 2 * i, 40 - 7 * i, 40 - 5 * i}, Color::Black);
        g.FillRect({25, 25, 9, 13}, Color::Cyan);
        g.FillRect({35, 35, 1, 1}, Color::Magenta);
        g.FillRect({38, 38, 0, 5}, Color::Red);
    });
}

TEST(GoldenDrawing, Polygons)
{
    compare("polygons", [](GraphicsContext& g) {
        g.FillPolygon(star.data(), 5, Brush::Create(Color::Green).get());
        g.DrawPolygon(star.data(), 5, Pen::Create(Color::Black).get());
    });
}

TEST(GoldenDrawing, Regions)
{
    compare("regions", [](GraphicsContext& g) {
        Region ring(Rect{3, 3, 36, 30});
        ring.Subtract(Region(Rect{12, 10, 12, 12}));
        ring.Union(Region(Rect{30, 25, 12, 16}));
        g.FillRegion(ring, Brush::Create(Color::Grey).get());
        g.DrawRegion(ring, Pen::Create(Color::Red).get());
    });
}

TEST(GoldenDrawing, Bitmaps)
{
    compare("bitmaps", [](GraphicsContext& g) {
        auto image = Surface::create({0, 0, 12, 10});
        GraphicsContext painter(image.get());
        painter.FillRect({0, 0, 12, 10}, Color::White);
        painter.DrawLine({0, 0}, {11, 9}, Color::Red);
        painter.DrawRect({0, 0, 12, 10}, Color::Blue);
        SurfaceBitmap bitmap(std::move(image));
        g.DrawBitmap(Point{3, 3}, &bitmap);
        g.DrawBitmap(Rect{18, 3, 24, 15}, &bitmap);
        g.DrawBitmap(Point{3, 24}, &bitmap, Rect{4, 2, 8, 8});
        g.DrawBitmap(Rect{20, 24, 5, 20}, &bitmap);
    });
}

TEST(GoldenDrawing, BackgroundPictures)
{
    compare("offscreen", [](GraphicsContext& g) {
        const Point corner = g.GetOrigin();
        g.AttachOffscreen(g.CreateOffscreen({corner.x + 5, corner.y + 7, 31, 25}));
        g.FillRect({0, 0, side, side}, Color::White);
        g.DrawLine({5, 7}, {35, 31}, Color::Red);
        g.DetachOffscreen();
    });
}

TEST(GoldenDrawing, Text)
{
    // font engines of other versions may place a little less or more cover on a letter's edge
    compare(
        "text",
        [](GraphicsContext& g) {
            g.SetFont(Font::Create("DejaVu Sans", 13, 0, Font::Plain, Font::Unit::Point).get());
            g.DrawStringAt({2, 14}, "Loop 16", -1);
            g.SetTextColor(Color::Blue);
            g.SetFont(Font::Create("DejaVu Sans", 11, 0, Font::Bold, Font::Unit::Point).get());
            g.DrawString(Rect{0, 16, 46, 14}, "120 bpm", -1, AlignRight + AlignMiddle);
            g.SetFont(
                Font::Create("DejaVu Sans Mono", 10, 0, Font::Underline, Font::Unit::Point).get());
            g.DrawString("Groove", Rect{0, 30, 46, 16}, AlignCentre + AlignTop);
        },
        48);
}
