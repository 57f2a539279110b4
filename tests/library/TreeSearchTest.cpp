// Finding nodes by their paths, and the paths of nodes.
#include "library/DirectoryTrees.h"
#include "tests/library/TreeBuilder.h"
#include "tests/support/Guards.h"

#include <gtest/gtest.h>

using Korvanel::String;

namespace {

class TreeSearch : public testing::Test
{
protected:
    Owned<Tree> root{new Tree("/r", nullptr)};
};

} // namespace

TEST_F(TreeSearch, AnUnknownPathGivesItsDeepestFolder)
{
    EXPECT_EQ(root->FindTree("Rock\\Fills", 0), root.get());

    Tree* rock = addTree(*root, "Rock");

    EXPECT_EQ(root->FindTree("Rock\\Fills", 0), rock);
    EXPECT_EQ(root->FindTree("rock", 0), root.get());
}

TEST_F(TreeSearch, AnEmptyPathIsTheTreeSearched)
{
    Tree* rock = addTree(*root, "Rock");

    EXPECT_EQ(rock->FindTree("", 0), rock);
    EXPECT_EQ(root->FindTree("Rock", 4), root.get());
}

TEST_F(TreeSearch, ATreeIsFoundFromAStartInThePath)
{
    Tree* rock = addTree(*root, "Rock");
    Tree* fills = addTree(*rock, "Fills");

    EXPECT_EQ(root->FindTree("Rock\\Fills", 0), fills);
    EXPECT_EQ(rock->FindTree("Rock\\Fills", 5), fills);
    EXPECT_EQ(root->FindTree("Rock\\Fills\\", 0), fills);
}

TEST_F(TreeSearch, ALeafIsFoundBelowItsFolder)
{
    Tree* rock = addTree(*root, "Rock");
    Leaf* leaf = addLeaf(*rock, "Intro 1.mid");

    EXPECT_EQ(root->FindLeaf("Rock\\Intro 1.mid", 0), leaf);
    EXPECT_EQ(root->FindLeaf("Intro 1.mid", 0), nullptr);
}

TEST_F(TreeSearch, ALeafUnderAMissingFolderIsLookedUpInTheDeepestOne)
{
    Leaf* leaf = addLeaf(*root, "a.mid");

    EXPECT_EQ(root->FindLeaf("Gone\\a.mid", 0), leaf);
}

TEST_F(TreeSearch, AMissingFolderIsLeftOutOfALeafsPath)
{
    Leaf* leaf = addLeaf(*addTree(*root, "Rock"), "a.mid");

    EXPECT_EQ(root->FindLeaf("Gone\\Rock\\a.mid", 0), leaf);
    EXPECT_EQ(root->FindLeaf("\\\\Rock\\\\a.mid", 0), leaf);
}

TEST_F(TreeSearch, FromAStartBeforeItsLastSeparatorALeafIsFoundByItsWholePath)
{
    Leaf* leaf = addLeaf(*addTree(*addTree(*root, "Rock"), "Fills"), "a.mid");

    for (const int start : {0, 4, 5, 10})
        EXPECT_EQ(root->FindLeaf("Rock\\Fills\\a.mid", start), leaf) << start;
}

TEST_F(TreeSearch, WhatAStartSkipsIsFollowedOnlyAsFarAsItExists)
{
    Leaf* inRoot = addLeaf(*root, "a.mid");
    Leaf* inFills = addLeaf(*addTree(*root, "Fills"), "a.mid");

    EXPECT_EQ(root->FindLeaf("Gone\\Fills\\a.mid", 0), inFills);
    EXPECT_EQ(root->FindLeaf("Gone\\Fills\\a.mid", 5), inRoot); // "Gone\Fills" in one go
}

TEST_F(TreeSearch, FromAStartBehindItsLastSeparatorAPathIsANameAsAWhole)
{
    addLeaf(*addTree(*root, "Rock"), "a.mid");
    addLeaf(*root, "a.mid");
    EXPECT_EQ(root->FindLeaf("Rock\\a.mid", 5), nullptr);
    EXPECT_EQ(root->FindLeaf("Rock\\a.mid", 99), nullptr);

    Leaf* literal = addLeaf(*root, "Rock\\a.mid");

    EXPECT_EQ(root->FindLeaf("Rock\\a.mid", 5), literal);
}

TEST_F(TreeSearch, AMillionSeparatorsAreFollowedInPlace)
{
    Leaf* leaf = addLeaf(*root, "a.mid");
    const String path = (std::string(1000000, '\\') + "a.mid").c_str();

    const AllocationGuard guard;
    EXPECT_EQ(root->FindLeaf(path, 0), leaf);
    EXPECT_EQ(root->FindTree(path, 0), root.get());
    EXPECT_EQ(guard.count(), 0u);
}

TEST_F(TreeSearch, ASlashIsNoSeparator)
{
    addLeaf(*addTree(*root, "Rock"), "a.mid");
    EXPECT_EQ(root->FindLeaf("Rock/a.mid", 0), nullptr);

    Leaf* literal = addLeaf(*root, "Rock/a.mid");

    EXPECT_EQ(root->FindLeaf("Rock/a.mid", 0), literal);
}

TEST_F(TreeSearch, LeavesAreCountedAllTheWayDown)
{
    EXPECT_EQ(root->NumLeaves(), 0);

    addLeaf(*root, "a");
    addLeaf(*addTree(*addTree(*root, "x"), "y"), "b");

    EXPECT_EQ(root->NumLeaves(), 2);
}

// Paths -------------------------------------------------------------------------------------------

TEST_F(TreeSearch, TheFullPathEndsInASlash)
{
    Tree* x = addTree(*root, "x");
    String path;

    x->FullPath(path);

    EXPECT_EQ(x->FullPathSize(), 5);
    EXPECT_STREQ(path.c_str(), "/r/x/");
    EXPECT_EQ(path.GetLength(), 5);
}

TEST_F(TreeSearch, AFullNameIsThePathOnTheDisk)
{
    Leaf* leaf = addLeaf(*addTree(*root, "Rock"), "a.mid");

    EXPECT_STREQ(leaf->FullName().c_str(), "/r/Rock/a.mid");
    EXPECT_STREQ(root->FullName().c_str(), "/r");
}

TEST_F(TreeSearch, ARelativePathNeverHoldsTheRootsName)
{
    Tree* rock = addTree(*root, "Rock");
    Tree* fills = addTree(*rock, "Fills");
    Leaf* leaf = addLeaf(*fills, "a.mid");

    EXPECT_STREQ(leaf->PathName(nullptr).c_str(), "Rock\\Fills\\a.mid");
    EXPECT_STREQ(leaf->PathName(rock).c_str(), "Fills\\a.mid");
    EXPECT_STREQ(fills->Path(root.get()).c_str(), "Rock\\Fills\\");
    EXPECT_STREQ(rock->PathName(rock).c_str(), "");
    EXPECT_STREQ(root->PathName(nullptr).c_str(), "/r");
    EXPECT_STREQ(root->Path(nullptr).c_str(), "");
}
