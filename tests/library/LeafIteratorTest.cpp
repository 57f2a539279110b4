#include "library/LeafIterator.h"

#include "tests/library/TreeBuilder.h"

#include <gtest/gtest.h>

#include <random>

using Korvanel::DirectoryTrees::LeafCursor;
using Korvanel::DirectoryTrees::LeafIterator;

namespace {

/// Walks on with `step` from the current leaf; the iterator itself only tells the next one.
Names walk(LeafIterator at, Tree* base, Leaf* (LeafIterator::*step)() const)
{
    Names names;
    while (at.current() != nullptr) {
        names.emplace_back(at.current()->name().c_str());
        const Leaf* next = (at.*step)();
        if (next == nullptr || !at.find(next->PathName(base).c_str()))
            break;
    }
    return names;
}

class LeafIteratorTest : public testing::Test
{
protected:
    void SetUp() override
    {
        addLeaf(*root, "L1");
        addLeaf(*root, "L2");
        addLeaf(*addTree(*root, "A"), "a1");
        addLeaf(*addTree(*root, "B"), "b1");
    }

    Owned<Tree> root{new Tree("/r", nullptr)};
};

} // namespace

TEST_F(LeafIteratorTest, LeavesComeBeforeBranches)
{
    EXPECT_EQ(walk(LeafIterator(root.get()), root.get(), &LeafIterator::findNext),
              (Names{"L1", "L2", "a1", "b1"}));
}

TEST_F(LeafIteratorTest, TheWayBackStopsAtTheFirstBranch)
{
    LeafIterator at(root.get());
    ASSERT_TRUE(at.find("B\\b1"));

    EXPECT_EQ(walk(at, root.get(), &LeafIterator::findPrev), (Names{"b1", "a1"}));
    ASSERT_TRUE(at.find("A\\a1"));
    EXPECT_EQ(at.findPrev(), nullptr);
}

TEST_F(LeafIteratorTest, ATreeWithoutLeavesHasNoCurrentOne)
{
    Owned<Tree> empty(new Tree("/e", nullptr));
    addTree(*empty, "x");

    const LeafIterator at(empty.get());

    EXPECT_EQ(at.current(), nullptr);
    EXPECT_EQ(at.findNext(), nullptr);
    EXPECT_EQ(at.findPrev(), nullptr);
    EXPECT_EQ(at.size(), 0);
}

TEST_F(LeafIteratorTest, NoTreeAtAllIsAnEmptyOne)
{
    LeafIterator at(nullptr);

    EXPECT_EQ(at.current(), nullptr);
    EXPECT_EQ(at.size(), 0);
    EXPECT_FALSE(at.find("a"));
}

TEST_F(LeafIteratorTest, ASearchThatFailsLeavesItWhereItIs)
{
    LeafIterator at(root.get());

    EXPECT_FALSE(at.find("nowhere"));

    EXPECT_STREQ(at.current()->name().c_str(), "L1");
}

TEST_F(LeafIteratorTest, TwoIteratorsAreEqualInLeafAndBase)
{
    LeafIterator at(root.get());
    const LeafIterator same = at;
    EXPECT_TRUE(at.isEqual(same));

    at.find("L2");

    EXPECT_FALSE(at.isEqual(same));
}

TEST_F(LeafIteratorTest, FirstAndLastLookIntoTheBranches)
{
    EXPECT_STREQ(LeafIterator::findFirst(root.get())->name().c_str(), "L1");
    EXPECT_STREQ(LeafIterator::findLast(root.get())->name().c_str(), "b1");
    EXPECT_STREQ(LeafIterator::findFirstInBranches(root.get())->name().c_str(), "a1");
    EXPECT_STREQ(LeafIterator::findLastInBranches(root.get())->name().c_str(), "b1");
    EXPECT_EQ(LeafIterator::findFirst(nullptr), nullptr);
    EXPECT_EQ(LeafIterator::findLast(nullptr), nullptr);
}

TEST_F(LeafIteratorTest, TheWalkStaysBelowItsBase)
{
    Tree* a = root->FindTree("A", 0);

    EXPECT_EQ(walk(LeafIterator(a), a, &LeafIterator::findNext), (Names{"a1"}));
}

TEST_F(LeafIteratorTest, ACursorKnowsItsFolder)
{
    LeafCursor at(root.get());
    EXPECT_STREQ(at.PathWithoutName().c_str(), "");

    at.find("A\\a1");

    EXPECT_STREQ(at.PathWithoutName().c_str(), "A\\");
}

TEST(LeafIteratorProperty, TheForwardWalkVisitsEveryLeafOnce)
{
    std::mt19937 random(20261121);
    for (int round = 0; round < 50; ++round) {
        Owned<Tree> root(new Tree("/r", nullptr));
        std::vector<Tree*> trees{root.get()};
        for (int i = 0; i < 30; ++i) {
            Tree* at = trees[random() % trees.size()];
            const std::string name = "n" + std::to_string(i);
            if (random() % 2 == 0)
                trees.push_back(addTree(*at, name.c_str()));
            else
                addLeaf(*at, name.c_str());
        }
        const Names seen = walk(LeafIterator(root.get()), root.get(), &LeafIterator::findNext);
        EXPECT_EQ(seen.size(), static_cast<std::size_t>(root->NumLeaves())) << "round " << round;
    }
}
