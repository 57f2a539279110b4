#include "library/DirectoryTrees.h"

#include "tests/library/TreeBuilder.h"

#include <gtest/gtest.h>

namespace {

/// A leaf that says when it is destroyed.
class MortalLeaf : public Leaf
{
public:
    MortalLeaf(const char* name, Tree* parent, int& deaths)
        : Leaf(name, parent)
        , mDeaths(deaths)
    {
    }

protected:
    ~MortalLeaf() override { ++mDeaths; }

private:
    int& mDeaths;
};

class DirectoryTrees : public testing::Test
{
protected:
    Owned<Tree> root{new Tree("/r", nullptr)};
};

} // namespace

// Lists -------------------------------------------------------------------------------------------

TEST_F(DirectoryTrees, LeavesStandInByteOrder)
{
    addLeaf(*root, "b.mid");
    addLeaf(*root, "A.mid");
    addLeaf(*root, "a.mid");

    EXPECT_EQ(leavesOf(*root), (Names{"A.mid", "a.mid", "b.mid"}));
    EXPECT_EQ(namesBack(root->lastLeaf()), (Names{"A.mid", "a.mid", "b.mid"}));
}

TEST_F(DirectoryTrees, ASecondLeafOfANameStaysTheCallers)
{
    addLeaf(*root, "a.mid");
    auto* second = new Leaf("a.mid", root.get());

    EXPECT_FALSE(root->AddLeaf(second));

    EXPECT_EQ(leavesOf(*root), (Names{"a.mid"}));
    second->release();
}

TEST_F(DirectoryTrees, ANameThatStandsOutOfOrderIsRefusedToo)
{
    addLeaf(*root, "b");
    Leaf* at = root->firstLeaf();
    root->InsertLeaf(at, new Leaf("z", root.get())); // as after a Rename
    Owned<Leaf> second(new Leaf("z", root.get()));

    EXPECT_FALSE(root->AddLeaf(second.get()));

    EXPECT_EQ(leavesOf(*root), (Names{"z", "b"}));
}

TEST_F(DirectoryTrees, AmongLeavesOutOfOrderANewOneStandsBeforeTheFirstThatIsGreater)
{
    addLeaf(*root, "b");
    Leaf* at = root->firstLeaf();
    root->InsertLeaf(at, new Leaf("z", root.get()));

    addLeaf(*root, "c");

    EXPECT_EQ(leavesOf(*root), (Names{"c", "z", "b"}));
    EXPECT_EQ(namesBack(root->lastLeaf()), (Names{"c", "z", "b"}));
}

TEST_F(DirectoryTrees, ALeafAndASubTreeMayShareAName)
{
    addLeaf(*root, "Rock");
    addTree(*root, "Rock");

    EXPECT_EQ(leavesOf(*root), (Names{"Rock"}));
    EXPECT_EQ(treesOf(*root), (Names{"Rock"}));
}

TEST_F(DirectoryTrees, ManyLeavesAtOnceJoinThoseThatAreThere)
{
    Leaf* there = addLeaf(*root, "m.mid");
    std::vector<Leaf*> more;
    for (const char* name : {"z.mid", "m.mid", "a.mid", "z.mid"})
        more.push_back(new Leaf(name, root.get()));

    root->AddLeaves(more);

    EXPECT_EQ(leavesOf(*root), (Names{"a.mid", "m.mid", "z.mid"}));
    EXPECT_EQ(namesBack(root->lastLeaf()), (Names{"a.mid", "m.mid", "z.mid"}));
    EXPECT_EQ(root->FindLeaf("m.mid", 0), there);
    EXPECT_TRUE(more.empty());
}

TEST_F(DirectoryTrees, ManyLeavesStandInByteOrderHoweverLongTheirCommonBeginningIs)
{
    std::vector<Leaf*> leaves;
    for (const char* name : {"Groove \xC3\xA4", "Groove 12345678b", "Groove 12345678a", "Groove 1",
                             "Groove ", "Groove 12345678", "Groove 1234567"})
        leaves.push_back(new Leaf(name, root.get()));

    root->AddLeaves(leaves);

    EXPECT_EQ(leavesOf(*root), (Names{"Groove ", "Groove 1", "Groove 1234567", "Groove 12345678",
                                      "Groove 12345678a", "Groove 12345678b", "Groove \xC3\xA4"}));
}

TEST_F(DirectoryTrees, OfEqualNamesAmongManyTheFirstOneGivenStays)
{
    auto* first = new Leaf("b", root.get());
    std::vector<Leaf*> leaves{new Leaf("c", root.get()), first, new Leaf("a", root.get()),
                              new Leaf("b", root.get())};

    root->AddLeaves(leaves);

    EXPECT_EQ(leavesOf(*root), (Names{"a", "b", "c"}));
    EXPECT_EQ(root->firstLeaf()->next(), first);
}

TEST_F(DirectoryTrees, ALeafTakenOutKeepsItsReferenceAndItsParent)
{
    addLeaf(*root, "a.mid");
    addLeaf(*root, "b.mid");
    addLeaf(*root, "c.mid");
    auto* at = static_cast<Leaf*>(root->firstLeaf()->next());

    Leaf* taken = root->RemoveLeaf(at);

    EXPECT_STREQ(taken->name().c_str(), "b.mid");
    EXPECT_EQ(taken->parent(), root.get());
    EXPECT_EQ(taken->next(), nullptr);
    EXPECT_EQ(taken->prev(), nullptr);
    EXPECT_STREQ(at->name().c_str(), "c.mid");
    EXPECT_EQ(leavesOf(*root), (Names{"a.mid", "c.mid"}));
    EXPECT_EQ(namesBack(root->lastLeaf()), (Names{"a.mid", "c.mid"}));
    taken->release();
}

TEST_F(DirectoryTrees, TakingOutTheOnlySubTreeEmptiesTheList)
{
    Tree* at = addTree(*root, "Rock");

    Tree* taken = root->RemoveTree(at);

    EXPECT_EQ(at, nullptr);
    EXPECT_EQ(root->firstTree(), nullptr);
    EXPECT_EQ(root->lastTree(), nullptr);
    taken->release();
}

TEST_F(DirectoryTrees, InsertingGoesBeforeThePositionEvenOutOfOrder)
{
    addLeaf(*root, "m.mid");
    Leaf* at = root->firstLeaf();

    root->InsertLeaf(at, new Leaf("z.mid", root.get()));
    EXPECT_STREQ(at->name().c_str(), "z.mid");
    Leaf* end = nullptr;
    root->InsertLeaf(end, new Leaf("b.mid", root.get()));

    EXPECT_EQ(leavesOf(*root), (Names{"z.mid", "m.mid", "b.mid"}));
    EXPECT_STREQ(end->name().c_str(), "b.mid");
}

TEST_F(DirectoryTrees, LinkingTwoSiblingsPartsBothFromTheirOldNeighbours)
{
    Owned<Leaf> a(new Leaf("a", nullptr));
    Owned<Leaf> b(new Leaf("b", nullptr));
    Owned<Leaf> c(new Leaf("c", nullptr));
    Owned<Leaf> d(new Leaf("d", nullptr));
    a->SetNext(b.get());
    c->SetNext(d.get());

    d->SetPrev(a.get());

    EXPECT_EQ(a->next(), d.get());
    EXPECT_EQ(d->prev(), a.get());
    EXPECT_EQ(b->prev(), nullptr);
    EXPECT_EQ(c->next(), nullptr);
}

// Ownership ---------------------------------------------------------------------------------------

TEST(DirectoryTreesOwnership, ATreeTakesItsChildrenWithIt)
{
    int deaths = 0;
    auto* tree = new Tree("/r", nullptr);
    Tree* below = addTree(*tree, "x");
    EXPECT_TRUE(tree->AddLeaf(new MortalLeaf("a", tree, deaths)));
    EXPECT_TRUE(below->AddLeaf(new MortalLeaf("b", below, deaths)));

    tree->release();

    EXPECT_EQ(deaths, 2);
}

TEST(DirectoryTreesOwnership, ALeafThatIsHeldOutlivesItsTreeAndForgetsIt)
{
    int deaths = 0;
    auto* tree = new Tree("/r", nullptr);
    auto* leaf = new MortalLeaf("a.mid", tree, deaths);
    EXPECT_TRUE(tree->AddLeaf(leaf));
    leaf->keep();

    tree->release();

    EXPECT_EQ(deaths, 0);
    EXPECT_EQ(leaf->parent(), nullptr);
    EXPECT_STREQ(leaf->FullName().c_str(), "a.mid");
    leaf->release();
    EXPECT_EQ(deaths, 1);
}

TEST(DirectoryTreesOwnership, ALeafTakenOutHoldsTheTreeThatItCameFrom)
{
    int deaths = 0;
    auto* root = new Tree("/r", nullptr);
    Tree* rock = addTree(*root, "Rock");
    EXPECT_TRUE(rock->AddLeaf(new MortalLeaf("a.mid", rock, deaths)));
    EXPECT_TRUE(rock->AddLeaf(new MortalLeaf("b.mid", rock, deaths)));
    Leaf* at = rock->firstLeaf();
    Leaf* taken = rock->RemoveLeaf(at);
    root->RemoveTree(rock)->release();
    root->release();

    EXPECT_STREQ(taken->FullName().c_str(), "/r/Rock/a.mid");
    EXPECT_EQ(deaths, 0);
    taken->release();
    EXPECT_EQ(deaths, 2);
}

TEST(DirectoryTreesOwnership, ALeafThatWasNeverListedHoldsItsParent)
{
    auto* root = new Tree("/r", nullptr);
    auto* leaf = new Leaf("a.mid", root);

    root->release();

    EXPECT_STREQ(leaf->FullName().c_str(), "/r/a.mid");
    leaf->release();
}

TEST(DirectoryTreesOwnership, ALeafPutBackHoldsItsTreeNoMore)
{
    int deaths = 0;
    auto* root = new Tree("/r", nullptr);
    EXPECT_TRUE(root->AddLeaf(new MortalLeaf("a.mid", root, deaths)));
    Leaf* at = root->firstLeaf();
    EXPECT_TRUE(root->AddLeaf(root->RemoveLeaf(at)));

    root->release();

    EXPECT_EQ(deaths, 1);
}

TEST(DirectoryTreesOwnership, ReleasingNothingDoesNothing)
{
    Node::release(nullptr);
}
