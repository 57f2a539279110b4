#include "platform/toolkit/SurfaceRegion.h"

#include <gtest/gtest.h>

#include <vector>

using namespace toolkit;

namespace {

std::vector<SurfaceRect> partsOf(const SurfaceRegion& region, const SurfaceRect& area)
{
    std::vector<SurfaceRect> parts;
    region.visitWithin(area, [&parts](const SurfaceRect& part) { parts.push_back(part); });
    return parts;
}

} // namespace

TEST(ScaledEdge, IsTheFloorOnBothSidesOfZero)
{
    EXPECT_EQ(scaledEdge(3, {100}), 3);
    EXPECT_EQ(scaledEdge(3, {150}), 4);
    EXPECT_EQ(scaledEdge(-3, {150}), -5);
    EXPECT_EQ(scaledEdge(-2, {150}), -3);
    EXPECT_EQ(scaledEdge(7, {200}), 14);
}

TEST(ScaledEdge, EndsWhereItsScaleSays)
{
    EXPECT_EQ(scaledEdge(688, {918, 688}), 918);
    EXPECT_EQ(scaledEdge(344, {918, 688}), 459);
    EXPECT_EQ(scaledEdge(1, {918, 688}), 1);
}

TEST(ScaledEdge, StaysWhereProductsFit)
{
    EXPECT_EQ(scaledEdge(INT32_MAX, {100}), 1 << 28);
    EXPECT_EQ(scaledEdge(INT32_MIN, {400}), -(1 << 28));
}

TEST(SurfaceRegion, OfAnEmptyOrTurnedRectangleIsEmpty)
{
    EXPECT_TRUE(SurfaceRegion().empty());
    EXPECT_TRUE(SurfaceRegion({5, 5, 5, 9}).empty());
    EXPECT_TRUE(SurfaceRegion({5, 5, 2, 9}).empty());
}

TEST(SurfaceRegion, ContainsItsLeftTopButNotItsRightBottomEdge)
{
    const SurfaceRegion region({1, 2, 4, 5});
    EXPECT_TRUE(region.contains({1, 2}));
    EXPECT_TRUE(region.contains({3, 4}));
    EXPECT_FALSE(region.contains({4, 4}));
    EXPECT_FALSE(region.contains({3, 5}));
}

TEST(SurfaceRegion, TouchesOnlyWhatSharesAPixel)
{
    const SurfaceRegion region({0, 0, 10, 10});
    EXPECT_TRUE(region.touches({9, 9, 20, 20}));
    EXPECT_FALSE(region.touches({10, 0, 20, 10}));
    EXPECT_FALSE(region.touches({5, 5, 5, 8}));
}

TEST(SurfaceRegion, ExclusiveOrLeavesWhatOneOfTwoHas)
{
    SurfaceRegion region({0, 0, 4, 1});
    region.exclusiveOr(SurfaceRegion({2, 0, 6, 1}));
    EXPECT_EQ(partsOf(region, {0, 0, 10, 10}),
              (std::vector<SurfaceRect>{{0, 0, 2, 1}, {4, 0, 6, 1}}));
}

TEST(SurfaceRegion, ExclusiveOrWithItselfIsEmpty)
{
    SurfaceRegion region({0, 0, 4, 1});
    region.exclusiveOr(region);
    EXPECT_TRUE(region.empty());
}

TEST(SurfaceRegion, IsVisitedFromTheTopDownWithinTheArea)
{
    SurfaceRegion region({0, 0, 4, 4});
    region.subtract(SurfaceRegion({1, 1, 3, 3}));
    EXPECT_EQ(partsOf(region, {2, 0, 10, 10}),
              (std::vector<SurfaceRect>{{2, 0, 4, 1}, {3, 1, 4, 3}, {2, 3, 4, 4}}));
    EXPECT_TRUE(partsOf(region, {1, 1, 3, 3}).empty());
    EXPECT_TRUE(partsOf(SurfaceRegion(), {0, 0, 9, 9}).empty());
}

TEST(SurfaceRegion, BorderOfASmallSquareIsTheSquare)
{
    const SurfaceRegion square({0, 0, 2, 2});
    EXPECT_TRUE(square.border() == square);
}

TEST(SurfaceRegion, BorderIsOnePixelWideAndInside)
{
    SurfaceRegion ring({10, 10, 15, 14});
    ring.subtract(SurfaceRegion({11, 11, 14, 13}));
    EXPECT_TRUE(SurfaceRegion({10, 10, 15, 14}).border() == ring);
}

TEST(SurfaceRegion, ScalesEachEdgeByItsFloor)
{
    SurfaceRegion region({1, 1, 2, 2});
    region.unite(SurfaceRegion({2, 1, 3, 2}));
    EXPECT_EQ(partsOf(region.scaled({150}, {150}), {-9, -9, 9, 9}),
              (std::vector<SurfaceRect>{{1, 1, 4, 3}}));
    EXPECT_TRUE(SurfaceRegion().scaled({200}, {200}).empty());
}

TEST(SurfaceRegion, MovingItOffThePlaneCutsItOff)
{
    SurfaceRegion region({0, 0, 10, 10});
    region.translate(INT32_MAX - 4, 0);
    EXPECT_EQ(region.extents(), (SurfaceRect{INT32_MAX - 4, 0, INT32_MAX, 10}));
    region.translate(INT32_MAX, 0);
    EXPECT_TRUE(region.empty());
}

TEST(SurfaceRegion, MovingItAboveThePlaneCutsItOff)
{
    SurfaceRegion region({0, 0, 10, 10});
    region.translate(0, INT32_MIN);
    region.translate(0, -3);
    EXPECT_EQ(region.extents(), (SurfaceRect{0, INT32_MIN, 10, INT32_MIN + 7}));
}
