#include "platform/toolkit/Surface.h"

#include "tests/support/GoldenImage.h"

#include <gtest/gtest.h>

#include <array>
#include <cstdlib>
#include <random>

using namespace toolkit;

namespace {

std::unique_ptr<Surface> whitePen(int width, int height, int percent = 100)
{
    auto surface = Surface::create({0, 0, width, height}, {percent});
    surface->setForeground(0xFFFFFF);
    return surface;
}

} // namespace

TEST(Surface, IsNotMadeEmptyOrTooLarge)
{
    EXPECT_EQ(Surface::create({0, 0, 0, 5}), nullptr);
    EXPECT_EQ(Surface::create({5, 0, 2, 5}), nullptr);
    EXPECT_EQ(Surface::create({0, 0, 40'000, 1}), nullptr);
    EXPECT_EQ(Surface::create({INT32_MIN, 0, INT32_MAX, 1}, {400}), nullptr);
}

TEST(Surface, BeginsWithZeroPixelsAndAnOpenClip)
{
    const auto surface = Surface::create({-2, 3, 4, 5}, {150});
    EXPECT_EQ(surface->deviceWidth(), 9);
    EXPECT_EQ(surface->deviceHeight(), 3);
    EXPECT_EQ(surface->pixel(8, 2), 0u);
    EXPECT_TRUE(surface->clip() == SurfaceRegion({-2, 3, 4, 5}));
}

TEST(Surface, DrawnPixelsAreOpaque)
{
    const auto surface = whitePen(1, 1);
    surface->paintRect({0, 0, 1, 1});
    EXPECT_EQ(surface->pixel(0, 0), 0xFFFFFFFFu);
    surface->setPenMode(PenMode::exclusive);
    surface->paintRect({0, 0, 1, 1});
    EXPECT_EQ(surface->pixel(0, 0), 0xFF000000u);
}

TEST(Surface, PenModesWorkBitByBit)
{
    const auto surface = whitePen(3, 1);
    surface->setForeground(0x0F3355);
    surface->paintRect({0, 0, 3, 1});
    surface->setForeground(0xF0FF0F);
    surface->setPenMode(PenMode::join);
    surface->paintRect({1, 0, 2, 1});
    surface->setPenMode(PenMode::exclusive);
    surface->paintRect({2, 0, 3, 1});
    EXPECT_EQ(surface->pixel(0, 0), 0xFF0F3355u);
    EXPECT_EQ(surface->pixel(1, 0), 0xFFFFFF5Fu);
    EXPECT_EQ(surface->pixel(2, 0), 0xFFFFCC5Au);
}

TEST(Surface, ALineHasBothItsEnds)
{
    const auto surface = whitePen(5, 3);
    surface->line({1, 1}, {3, 1});
    EXPECT_EQ(letterArt(*surface), ".....\n"
                                   ".###.\n"
                                   ".....\n");
}

TEST(Surface, ALineToItsOwnPointIsOnePixel)
{
    const auto surface = whitePen(3, 1);
    surface->line({1, 0}, {1, 0});
    EXPECT_EQ(letterArt(*surface), ".#.\n");
}

TEST(Surface, ASlantedLineStepsEvenly)
{
    const auto surface = whitePen(6, 3);
    surface->line({0, 0}, {5, 2});
    EXPECT_EQ(letterArt(*surface), "##....\n"
                                   "..##..\n"
                                   "....##\n");
}

TEST(Surface, ASteepLineHasOnePixelInEachRow)
{
    const auto surface = whitePen(3, 5);
    surface->line({2, 0}, {0, 4});
    EXPECT_EQ(letterArt(*surface), "..#\n"
                                   ".#.\n"
                                   ".#.\n"
                                   "#..\n"
                                   "#..\n");
}

TEST(Surface, ALineIsTheSameFromEitherEnd)
{
    std::mt19937 random(20'240'501);
    for (int i = 0; i < 200; ++i) {
        const auto place = [&random] { return static_cast<std::int32_t>(random() % 30) - 5; };
        const SurfacePoint from{place(), place()};
        const SurfacePoint to{place(), place()};
        for (const int percent : {100, 150, 200}) {
            const auto there = whitePen(20, 20, percent);
            const auto back = whitePen(20, 20, percent);
            there->line(from, to);
            back->line(to, from);
            ASSERT_EQ(letterArt(*there), letterArt(*back)) << i;
        }
    }
}

TEST(Surface, ALineTwiceInExclusiveModeIsGone)
{
    for (const int percent : {100, 150, 200, 300}) {
        const auto surface = whitePen(20, 20, percent);
        const std::string before = letterArt(*surface);
        surface->setPenMode(PenMode::exclusive);
        surface->line({2, 3}, {17, 9});
        EXPECT_NE(letterArt(*surface), before);
        surface->line({2, 3}, {17, 9});
        EXPECT_EQ(letterArt(*surface), before);
    }
}

TEST(Surface, LinesFarOutsideCostNoMoreThanThePicture)
{
    const auto surface = whitePen(4, 4);
    surface->line({INT32_MIN, INT32_MIN}, {INT32_MAX, INT32_MAX});
    EXPECT_EQ(letterArt(*surface), "#...\n.#..\n..#.\n...#\n");
    surface->line({INT32_MIN, 2}, {INT32_MAX, 2}); // it ends where no pixel can hang to its right
    EXPECT_EQ(letterArt(*surface), "#...\n.#..\n..#.\n...#\n");
}

TEST(Surface, AtOneAndAHalfPixelsLinesAlternateInWidth)
{
    const auto surface = whitePen(4, 1, 150);
    surface->line({0, 0}, {0, 0});
    surface->line({3, 0}, {3, 0});
    EXPECT_EQ(letterArt(*surface), "#...##\n"); // 0 to 1, and 4 to 6
}

TEST(Surface, AtDoubleScaleALineIsTwoPixelsWide)
{
    const auto surface = whitePen(3, 2, 200);
    surface->line({1, 0}, {1, 1});
    EXPECT_EQ(letterArt(*surface), "..##..\n..##..\n..##..\n..##..\n");
}

TEST(Surface, AtDoubleScaleASlantedLineHasAThickerPen)
{
    const auto surface = whitePen(3, 3, 200);
    surface->line({0, 0}, {1, 1});
    EXPECT_EQ(letterArt(*surface), "##....\n"
                                   "###...\n"
                                   ".###..\n"
                                   "..##..\n"
                                   "......\n"
                                   "......\n");
}

TEST(Surface, AFrameLiesInsideItsRectangle)
{
    const auto surface = whitePen(5, 4);
    surface->frameRect({1, 0, 5, 4});
    EXPECT_EQ(letterArt(*surface), ".####\n.#..#\n.#..#\n.####\n");
}

TEST(Surface, AFrameTouchesEachPixelOnceHoweverSmall)
{
    for (int width = 0; width < 4; ++width)
        for (int height = 0; height < 4; ++height) {
            const auto framed = whitePen(4, 4);
            const auto filled = whitePen(4, 4);
            framed->setPenMode(PenMode::exclusive);
            framed->frameRect({0, 0, width, height});
            filled->paintRect({0, 0, width, height});
            if (width == 3 && height == 3)
                EXPECT_EQ(letterArt(*framed), "###.\n#.#.\n###.\n....\n");
            else
                EXPECT_EQ(letterArt(*framed), letterArt(*filled)) << width << " by " << height;
        }
}

TEST(Surface, DrawsOnlyWithinItsClip)
{
    const auto surface = whitePen(4, 3);
    SurfaceRegion clip({0, 0, 4, 2});
    clip.subtract(SurfaceRegion({1, 0, 2, 1}));
    surface->setClip(clip);
    surface->paintRect({-5, -5, 50, 50});
    EXPECT_EQ(letterArt(*surface), "#.##\n####\n....\n");
}

TEST(Surface, AnEmptyClipDrawsNothing)
{
    const auto surface = whitePen(2, 1);
    surface->setClip(SurfaceRegion());
    surface->paintRect({0, 0, 2, 1});
    surface->line({0, 0}, {1, 0});
    EXPECT_EQ(letterArt(*surface), "..\n");
}

TEST(Surface, AClipLargerThanThePictureIsGivenBackAsItWas)
{
    const auto surface = whitePen(2, 1);
    surface->setClip(SurfaceRegion({-100, -100, 100, 100}));
    surface->paintRect({-100, -100, 100, 100});
    EXPECT_EQ(letterArt(*surface), "##\n");
    EXPECT_TRUE(surface->clip() == SurfaceRegion({-100, -100, 100, 100}));
}

TEST(Surface, ACornerElsewhereMovesNothingInItsCoordinates)
{
    const auto surface = Surface::create({10, 20, 13, 22});
    surface->setForeground(0xFFFFFF);
    surface->paintRect({11, 21, 12, 22});
    EXPECT_EQ(letterArt(*surface), "...\n.#.\n");
}

TEST(Surface, APolygonHasThePixelsWhoseCentresItHolds)
{
    const auto surface = whitePen(5, 4);
    const std::array<SurfacePoint, 3> triangle{{{0, 0}, {4, 0}, {0, 4}}};
    surface->paintPolygon(triangle);
    EXPECT_EQ(letterArt(*surface), "###..\n" // the slanted side meets the fourth pixel's centre
                                   "##...\n"
                                   "#....\n"
                                   ".....\n");
}

TEST(Surface, NeighbouringPolygonsShareNoPixel)
{
    const auto surface = whitePen(6, 6);
    surface->setPenMode(PenMode::exclusive);
    surface->paintPolygon(std::array<SurfacePoint, 3>{{{0, 0}, {6, 0}, {0, 6}}});
    surface->paintPolygon(std::array<SurfacePoint, 3>{{{6, 0}, {6, 6}, {0, 6}}});
    EXPECT_EQ(letterArt(*surface), "######\n######\n######\n######\n######\n######\n");
}

TEST(Surface, APolygonLeavesOutWhatItRunsRoundTwice)
{
    const auto surface = whitePen(6, 3);
    const std::array<SurfacePoint, 10> twice{
        {{0, 0}, {6, 0}, {6, 3}, {0, 3}, {0, 0}, {2, 1}, {4, 1}, {4, 2}, {2, 2}, {2, 1}}};
    surface->paintPolygon(twice);
    EXPECT_EQ(letterArt(*surface), "######\n##..##\n######\n");
}

TEST(Surface, APolygonOfOneOrTwoPointsIsEmpty)
{
    const auto surface = whitePen(3, 3);
    surface->paintPolygon({});
    surface->paintPolygon(std::array<SurfacePoint, 1>{{{1, 1}}});
    surface->paintPolygon(std::array<SurfacePoint, 2>{{{0, 0}, {3, 3}}});
    EXPECT_EQ(letterArt(*surface), "...\n...\n...\n");
}

TEST(Surface, AHugePolygonIsDrawnWhereThePictureIs)
{
    const auto surface = whitePen(2, 2);
    surface->paintPolygon(std::array<SurfacePoint, 4>{{{INT32_MIN, INT32_MIN},
                                                       {INT32_MAX, INT32_MIN},
                                                       {INT32_MAX, INT32_MAX},
                                                       {INT32_MIN, INT32_MAX}}});
    EXPECT_EQ(letterArt(*surface), "##\n##\n");
}

TEST(Surface, ARegionsFrameFollowsItsShape)
{
    const auto surface = whitePen(6, 6);
    SurfaceRegion shape({0, 0, 6, 3});
    shape.unite(SurfaceRegion({0, 3, 3, 6}));
    surface->frameRegion(shape);
    EXPECT_EQ(letterArt(*surface), "######\n"
                                   "#....#\n"
                                   "#.####\n"
                                   "#.#...\n"
                                   "#.#...\n"
                                   "###...\n");
}

TEST(Surface, CopyingKeepsPixelsAndMakesThemOpaque)
{
    const auto source = whitePen(2, 1);
    source->paintRect({1, 0, 2, 1});
    const auto surface = whitePen(3, 1);
    surface->paintRect({0, 0, 3, 1});
    surface->copyFrom(*source, {0, 0, 2, 1}, {0, 0, 2, 1}, PenMode::copy);
    EXPECT_EQ(letterArt(*surface), ".##\n");
    EXPECT_EQ(surface->pixel(0, 0), 0xFF000000u);
}

TEST(Surface, CopyingStretchesToTheNearestPixel)
{
    const auto source = whitePen(2, 1);
    source->paintRect({1, 0, 2, 1});
    const auto surface = whitePen(6, 2);
    surface->copyFrom(*source, {0, 0, 2, 1}, {0, 0, 6, 2}, PenMode::copy);
    EXPECT_EQ(letterArt(*surface), "...###\n...###\n");
}

TEST(Surface, CopyingLeavesOutWhatTheSourceLacks)
{
    const auto source = whitePen(2, 1);
    source->paintRect({0, 0, 2, 1});
    const auto surface = whitePen(6, 1);
    surface->copyFrom(*source, {-1, 0, 5, 1}, {0, 0, 6, 1}, PenMode::copy);
    EXPECT_EQ(letterArt(*surface), ".##...\n");
}

TEST(Surface, CopyingInExclusiveModeTwiceChangesNothing)
{
    const auto source = whitePen(4, 2);
    source->line({0, 0}, {3, 1});
    const auto surface = whitePen(4, 2);
    surface->frameRect({0, 0, 4, 2});
    const std::string before = letterArt(*surface);
    surface->copyFrom(*source, {0, 0, 4, 2}, {0, 0, 4, 2}, PenMode::exclusive);
    EXPECT_NE(letterArt(*surface), before);
    surface->copyFrom(*source, {0, 0, 4, 2}, {0, 0, 4, 2}, PenMode::exclusive);
    EXPECT_EQ(letterArt(*surface), before);
}

TEST(Surface, CopiesOntoItselfAsFromACopy)
{
    const auto surface = whitePen(4, 1);
    surface->paintRect({0, 0, 1, 1});
    surface->copyFrom(*surface, {0, 0, 3, 1}, {1, 0, 4, 1}, PenMode::copy);
    EXPECT_EQ(letterArt(*surface), "##..\n");
}

TEST(Surface, AMaskBlendsByItsCover)
{
    const auto surface = whitePen(3, 1);
    const std::uint8_t cover[] = {0, 128, 255};
    surface->setPenMode(PenMode::exclusive);
    surface->drawMask({0, 0}, {cover, 3, 1, 3}, 0xFF8000);
    EXPECT_EQ(surface->pixel(0, 0), 0u);
    EXPECT_EQ(surface->pixel(1, 0), 0xFF804000u);
    EXPECT_EQ(surface->pixel(2, 0), 0xFFFF8000u);
}

TEST(Surface, AMaskIsCutOffAtTheClip)
{
    const auto surface = whitePen(3, 2);
    const std::uint8_t cover[] = {255, 255, 255, 255};
    surface->setClip(SurfaceRegion({0, 0, 3, 1}));
    surface->drawMask({2, 0}, {cover, 2, 2, 2}, 0xFFFFFF);
    EXPECT_EQ(letterArt(*surface), "..#\n...\n");
}
