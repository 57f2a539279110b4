#include "shared/Panes/kvGraphics.h"
#include "tests/support/GoldenImage.h"

#include <gtest/gtest.h>

#include <string>

using namespace Korvanel;
using toolkit::FontEngine;
using toolkit::FontStyle;
using toolkit::Surface;
using toolkit::SurfacePoint;

namespace {

const Rect box{10, 20, 80, 30};

/// What drawing "Loop 4" with the baseline at a point looks like.
std::string atBaseline(int x, int y)
{
    const auto surface = Surface::create({0, 0, 120, 80});
    FontEngine::shared().draw(*surface, {x, y}, {0, 0, 12}, "Loop 4", 0xFFFFFF);
    return letterArt(*surface);
}

class GraphicsTextTest : public testing::Test
{
protected:
    GraphicsTextTest()
    {
        g.SetFont(font.get());
        g.SetTextColor(Color::White);
        width = g.CalcStringDimentions("Loop 4", -1).x;
        const auto metrics = FontEngine::shared().metrics({0, 0, 12});
        ascent = metrics.ascent;
        descent = metrics.descent;
    }

    std::string aligned(int align)
    {
        g.DrawString(box, "Loop 4", -1, align);
        return art();
    }

    std::string art() const { return letterArt(*surface); }

    std::unique_ptr<Surface> surface = Surface::create({0, 0, 120, 80});
    GraphicsContext g{surface.get()};
    Ref<Font> font = Font::Create(Font::Type::System);
    int width = 0;
    int ascent = 0;
    int descent = 0;
};

} // namespace

TEST_F(GraphicsTextTest, MeasuresWidthAndFontSize)
{
    EXPECT_GT(width, 30);
    EXPECT_LT(width, 50);
    EXPECT_EQ(g.CalcStringRect("Loop 4", -1), (Rect{0, 0, width, 12}));
    EXPECT_EQ(g.CalcStringDimentions("Loop 4", -1), (Point{width, 12}));
}

TEST_F(GraphicsTextTest, WithoutAFontTheHeightIsZero)
{
    g.SetTool(static_cast<Font*>(nullptr));
    EXPECT_EQ(g.CalcStringRect("Loop 4", -1), (Rect{0, 0, width, 0}));
}

TEST_F(GraphicsTextTest, MeasuresWithAnotherFontAndRestoresTheCurrentOne)
{
    const Ref<Font> large = Font::Create("DejaVu Sans", 24, 0, Font::Plain, Font::Unit::Point);
    const Rect twice = g.CalcStringRect("Loop 4", large.get(), -1);
    EXPECT_NEAR(twice.width, 2 * width, 1);
    EXPECT_EQ(twice.height, 24);
    EXPECT_TRUE(g.GetFont() == font);
    EXPECT_EQ(g.CalcStringRect("Loop 4", nullptr, -1), (Rect{0, 0, width, 12}));
}

TEST_F(GraphicsTextTest, ALengthCutsTheText)
{
    EXPECT_EQ(g.CalcStringRect("Loop 4 and more", 6).width, width);
    EXPECT_EQ(g.CalcStringRect("Loop 4", 0).width, 0);
    EXPECT_EQ(g.CalcStringRect(nullptr, -1).width, 0);
    g.DrawStringAt({10, 30}, "Loop 4 and more", 6);
    EXPECT_EQ(art(), atBaseline(10, 30));
}

TEST_F(GraphicsTextTest, StandsAtItsPointFromTheOrigin)
{
    g.SetOrigin(7, 9);
    g.DrawStringAt({3, 21}, "Loop 4", -1);
    EXPECT_EQ(art(), atBaseline(10, 30));
}

TEST_F(GraphicsTextTest, AlignsLeftAndTopByDefault)
{
    EXPECT_EQ(aligned(0), atBaseline(10, 20 + ascent));
}

TEST_F(GraphicsTextTest, ThreeAcrossIsLeftAsWell)
{
    EXPECT_EQ(aligned(3), atBaseline(10, 20 + ascent));
}

TEST_F(GraphicsTextTest, AlignsToTheCentre)
{
    EXPECT_EQ(aligned(1), atBaseline(10 + (80 - width) / 2, 20 + ascent));
}

TEST_F(GraphicsTextTest, AlignsToTheRight)
{
    EXPECT_EQ(aligned(2), atBaseline(10 + 80 - width, 20 + ascent));
}

TEST_F(GraphicsTextTest, AlignsToTheMiddle)
{
    EXPECT_EQ(aligned(4), atBaseline(10, 20 + (ascent + 30 - descent) / 2));
}

TEST_F(GraphicsTextTest, AlignsToTheBottomRight)
{
    EXPECT_EQ(aligned(8 + 2), atBaseline(10 + 80 - width, 20 + 30 - descent));
}

TEST_F(GraphicsTextTest, TwelvePutsTheBaselineOnTheTop)
{
    EXPECT_EQ(aligned(12), atBaseline(10, 20));
}

TEST_F(GraphicsTextTest, TheOtherFormsDrawTheSame)
{
    g.DrawString("Loop 4", box, 5);
    const std::string first = art();
    g.FillRect({0, 0, 120, 80}, Color::Black);
    g.SetTool(Font::Create(Font::Type::Fixed).get());
    g.DrawString("Loop 4", box, 5, font.get());
    EXPECT_EQ(art(), first);
    g.FillRect({0, 0, 120, 80}, Color::Black);
    g.DrawString(box, "Loop 4", -1, 5, font.get());
    EXPECT_EQ(art(), first);
}

TEST_F(GraphicsTextTest, NoFontForACallMeansTheCurrentOne)
{
    g.SetFont(Font::Create("DejaVu Sans", 20, 0, Font::Plain, Font::Unit::Point).get());
    g.DrawString(box, "Loop 4", -1, 0);
    const std::string large = art();
    g.FillRect({0, 0, 120, 80}, Color::Black);
    g.DrawString(box, "Loop 4", -1, 0, nullptr);
    EXPECT_EQ(art(), large);
    EXPECT_NE(large, atBaseline(10, 20 + ascent));
}

TEST_F(GraphicsTextTest, IsTransparentWhateverTheRasterOperation)
{
    g.SetRop(RopXor);
    g.DrawStringAt({10, 30}, "Loop 4", -1);
    g.DrawStringAt({10, 30}, "Loop 4", -1);
    EXPECT_EQ(art(), atBaseline(10, 30));
}

TEST_F(GraphicsTextTest, LeavesItsColourInThePort)
{
    g.SetTextColor(Color::Red);
    g.DrawStringAt({10, 30}, "", -1);
    EXPECT_EQ(surface->foreground(), 0xFF0000u);
}
