#include "shared/Panes/kvRegion.h"

#include <gtest/gtest.h>

#include <cstdint>

using namespace Korvanel;

namespace {

const Region wide(Rect{0, 0, 6, 2});
const Region right(Rect{4, 0, 6, 2});

} // namespace

TEST(Region, OfAnEmptyOrNegativeRectangleIsEmpty)
{
    EXPECT_TRUE(Region().IsEmpty());
    EXPECT_TRUE(Region(Rect{3, 3, 0, 5}).IsEmpty());
    EXPECT_TRUE(Region(Rect{3, 3, 5, -1}).IsEmpty());
}

TEST(Region, ReachingPastThePlaneIsCutOffThere)
{
    const Region far(Rect{INT32_MAX - 2, 0, 100, 1});
    EXPECT_TRUE(far.Contains({INT32_MAX - 1, 0}));
    EXPECT_FALSE(far.Contains({INT32_MIN, 0}));
}

TEST(Region, CopyingSharesNothing)
{
    Region copy;
    copy.Copy(wide);
    copy.Empty();
    EXPECT_TRUE(copy.IsEmpty());
    EXPECT_FALSE(wide.IsEmpty());
}

TEST(Region, MovesByItsOffset)
{
    Region region(Rect{0, 0, 2, 2});
    region.Offset(10, -1);
    EXPECT_TRUE(region == Region(Rect{10, -1, 2, 2}));
}

TEST(Region, ContainsAndIntersectsByPixels)
{
    EXPECT_TRUE(wide.Contains({5, 1}));
    EXPECT_FALSE(wide.Contains({6, 1}));
    EXPECT_TRUE(wide.Intersects({5, 1, 9, 9}));
    EXPECT_FALSE(wide.Intersects({6, 0, 9, 9}));
    EXPECT_FALSE(wide.Intersects({1, 1, 0, 0}));
}

TEST(Region, CombinesTwoIntoANewOne)
{
    EXPECT_TRUE(Region::Union(wide, right) == Region(Rect{0, 0, 10, 2}));
    EXPECT_TRUE(Region::Intersection(wide, right) == Region(Rect{4, 0, 2, 2}));
    EXPECT_TRUE(Region::Difference(wide, right) == Region(Rect{0, 0, 4, 2}));
    EXPECT_TRUE(Region::Complementation(wide, right) == Region(Rect{6, 0, 4, 2}));
    EXPECT_TRUE(Region::Xor(wide, right) ==
                Region::Union(Region(Rect{0, 0, 4, 2}), Region(Rect{6, 0, 4, 2})));
}

TEST(Region, CombinesInPlaceAsItDoesApart)
{
    Region united(wide);
    united.Union(right);
    EXPECT_TRUE(united == Region::Union(wide, right));
    Region shared(wide);
    shared.Intersect(right);
    EXPECT_TRUE(shared == Region::Intersection(wide, right));
    Region rest(wide);
    rest.Subtract(right);
    EXPECT_TRUE(rest == Region::Difference(wide, right));
    Region other(wide);
    other.Complement(right);
    EXPECT_TRUE(other == Region::Complementation(wide, right));
    Region either(wide);
    either.Xor(right);
    EXPECT_TRUE(either == Region::Xor(wide, right));
}

TEST(Region, CombinedWithItself)
{
    Region region(wide);
    region.Union(region);
    region.Intersect(region);
    EXPECT_TRUE(region == wide);
    region.Complement(region);
    EXPECT_TRUE(region.IsEmpty());
}
