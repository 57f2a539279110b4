#include "library/DirectoryTrees.h"

#include "tests/library/TreeBuilder.h"
#include "tests/support/Folders.h"

#include <gtest/gtest.h>

#include <filesystem>

namespace fs = std::filesystem;
using Korvanel::String;
using Korvanel::stringStream;
using Korvanel::DirectoryTrees::FileInStream;
using Korvanel::DirectoryTrees::InStream;

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

/// Runs a block in another working folder.
class WorkingFolder
{
public:
    explicit WorkingFolder(const fs::path& folder)
        : mBefore(fs::current_path())
    {
        fs::current_path(folder);
    }

    WorkingFolder(const WorkingFolder&) = delete;
    WorkingFolder& operator=(const WorkingFolder&) = delete;

    ~WorkingFolder() { fs::current_path(mBefore); }

private:
    fs::path mBefore;
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

TEST(DirectoryTreesOwnership, ReleasingNothingDoesNothing)
{
    Node::release(nullptr);
}

// Search ------------------------------------------------------------------------------------------

TEST_F(DirectoryTrees, AnUnknownPathGivesItsDeepestFolder)
{
    EXPECT_EQ(root->FindTree("Rock\\Fills", 0), root.get());

    Tree* rock = addTree(*root, "Rock");

    EXPECT_EQ(root->FindTree("Rock\\Fills", 0), rock);
    EXPECT_EQ(root->FindTree("rock", 0), root.get());
}

TEST_F(DirectoryTrees, AnEmptyPathIsTheTreeSearched)
{
    Tree* rock = addTree(*root, "Rock");

    EXPECT_EQ(rock->FindTree("", 0), rock);
    EXPECT_EQ(root->FindTree("Rock", 4), root.get());
}

TEST_F(DirectoryTrees, ATreeIsFoundFromAStartInThePath)
{
    Tree* rock = addTree(*root, "Rock");
    Tree* fills = addTree(*rock, "Fills");

    EXPECT_EQ(root->FindTree("Rock\\Fills", 0), fills);
    EXPECT_EQ(rock->FindTree("Rock\\Fills", 5), fills);
    EXPECT_EQ(root->FindTree("Rock\\Fills\\", 0), fills);
}

TEST_F(DirectoryTrees, ALeafIsFoundBelowItsFolder)
{
    Tree* rock = addTree(*root, "Rock");
    Leaf* leaf = addLeaf(*rock, "Intro 1.mid");

    EXPECT_EQ(root->FindLeaf("Rock\\Intro 1.mid", 0), leaf);
    EXPECT_EQ(root->FindLeaf("Intro 1.mid", 0), nullptr);
}

TEST_F(DirectoryTrees, ALeafUnderAMissingFolderIsLookedUpInTheDeepestOne)
{
    Leaf* leaf = addLeaf(*root, "a.mid");

    EXPECT_EQ(root->FindLeaf("Gone\\a.mid", 0), leaf);
}

TEST_F(DirectoryTrees, ASlashIsNoSeparator)
{
    addLeaf(*addTree(*root, "Rock"), "a.mid");
    EXPECT_EQ(root->FindLeaf("Rock/a.mid", 0), nullptr);

    Leaf* literal = addLeaf(*root, "Rock/a.mid");

    EXPECT_EQ(root->FindLeaf("Rock/a.mid", 0), literal);
}

TEST_F(DirectoryTrees, LeavesAreCountedAllTheWayDown)
{
    EXPECT_EQ(root->NumLeaves(), 0);

    addLeaf(*root, "a");
    addLeaf(*addTree(*addTree(*root, "x"), "y"), "b");

    EXPECT_EQ(root->NumLeaves(), 2);
}

// Paths -------------------------------------------------------------------------------------------

TEST_F(DirectoryTrees, TheFullPathEndsInASlash)
{
    Tree* x = addTree(*root, "x");
    String path;

    x->FullPath(path);

    EXPECT_EQ(x->FullPathSize(), 5);
    EXPECT_STREQ(path.c_str(), "/r/x/");
    EXPECT_EQ(path.GetLength(), 5);
}

TEST_F(DirectoryTrees, AFullNameIsThePathOnTheDisk)
{
    Leaf* leaf = addLeaf(*addTree(*root, "Rock"), "a.mid");

    EXPECT_STREQ(leaf->FullName().c_str(), "/r/Rock/a.mid");
    EXPECT_STREQ(root->FullName().c_str(), "/r");
}

TEST_F(DirectoryTrees, ARelativePathNeverHoldsTheRootsName)
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

// Files -------------------------------------------------------------------------------------------

TEST(DirectoryTreesFiles, ARenamedLeafKeepsItsPlaceInTheList)
{
    const TemporaryFolder folder;
    putContent(folder / "a.mid", "x");
    putContent(folder / "b.mid", "y");
    Owned<Tree> root(new Tree(folder.path().c_str(), nullptr));
    Leaf* a = addLeaf(*root, "a.mid");
    addLeaf(*root, "b.mid");

    a->Rename("z.mid");

    EXPECT_EQ(leavesOf(*root), (Names{"z.mid", "b.mid"}));
    EXPECT_EQ(contentOf(folder / "z.mid"), "x");
    EXPECT_FALSE(fs::exists(folder / "a.mid"));
}

TEST(DirectoryTreesFiles, ARenameThatFailsChangesNothing)
{
    const TemporaryFolder folder;
    Owned<Tree> root(new Tree(folder.path().c_str(), nullptr));
    Leaf* gone = addLeaf(*root, "gone.mid");

    gone->Rename("new.mid");

    EXPECT_STREQ(gone->name().c_str(), "gone.mid");
}

TEST(DirectoryTreesFiles, RemovingALeafDeletesItsFileAndKeepsTheNode)
{
    const TemporaryFolder folder;
    putContent(folder / "a.mid", "x");
    Owned<Tree> root(new Tree(folder.path().c_str(), nullptr));
    Leaf* a = addLeaf(*root, "a.mid");

    a->Remove();

    EXPECT_FALSE(fs::exists(folder / "a.mid"));
    EXPECT_EQ(root->firstLeaf(), a);
}

TEST(DirectoryTreesFiles, RemovingATreeDeletesWhatItListsAndTheFileNamedStar)
{
    const TemporaryFolder folder;
    fs::create_directories(folder / "Rock/Fills");
    putContent(folder / "Rock/a.mid", "x");
    putContent(folder / "Rock/*", "x");
    putContent(folder / "Rock/Fills/b.mid", "x");
    Owned<Tree> root(new Tree(folder.path().c_str(), nullptr));
    Tree* rock = addTree(*root, "Rock");
    addLeaf(*rock, "a.mid");
    addLeaf(*addTree(*rock, "Fills"), "b.mid");

    rock->Remove();

    EXPECT_FALSE(fs::exists(folder / "Rock"));
    EXPECT_EQ(root->firstTree(), rock);
}

TEST(DirectoryTreesFiles, AFolderWithOtherFilesInItStays)
{
    const TemporaryFolder folder;
    fs::create_directories(folder / "Rock");
    putContent(folder / "Rock/cover.png", "x");
    Owned<Tree> root(new Tree(folder.path().c_str(), nullptr));

    addTree(*root, "Rock")->Remove();

    EXPECT_TRUE(fs::exists(folder / "Rock/cover.png"));
}

TEST(DirectoryTreesFiles, ALeafsInputReadsItsFile)
{
    const TemporaryFolder folder;
    putContent(folder / "a.mid", "hello");
    Owned<Tree> root(new Tree(folder.path().c_str(), nullptr));
    InStream* input = addLeaf(*root, "a.mid")->GetInput();
    char text[8] = {};

    EXPECT_FALSE(input->IsEOF());
    EXPECT_EQ(input->Read(static_cast<void*>(text), 7), 5u);

    EXPECT_STREQ(text, "hello");
    EXPECT_TRUE(input->IsEOF());
    EXPECT_EQ(input->keepRef(), 2);
    EXPECT_EQ(input->releaseRef(), 1);
    EXPECT_EQ(input->releaseRef(), 0);
}

TEST(DirectoryTreesFiles, TheInputOfAMissingFileIsEmpty)
{
    Owned<Tree> root(new Tree("/nowhere", nullptr));
    InStream* input = addLeaf(*root, "a.mid")->GetInput();
    char byte = 0;

    EXPECT_TRUE(input->IsEOF());
    EXPECT_EQ(input->Read(static_cast<void*>(&byte), 1), 0u);
    input->releaseRef();
}

TEST(DirectoryTreesFiles, InputsAreCountedAmongTheFrameworksBlocks)
{
    const auto before = Korvanel::Base::numAllocations.load();
    InStream* input = new FileInStream("/nowhere", Korvanel::File::ReadMode);
    EXPECT_EQ(Korvanel::Base::numAllocations.load(), before + 1);

    input->releaseRef();

    EXPECT_EQ(Korvanel::Base::numAllocations.load(), before);
}

// Serialised form ---------------------------------------------------------------------------------

TEST_F(DirectoryTrees, AnEmptyTreeIsTwoEndMarks)
{
    stringStream bytes;

    root->WriteTo(bytes);

    EXPECT_EQ(bytes.text(), std::string(8, '\0'));
}

TEST_F(DirectoryTrees, RecordsAreLengthNameAndContent)
{
    addLeaf(*root, "ab"); // its file is missing: a length of 0 and no bytes
    addTree(*root, "T");
    stringStream bytes;

    root->WriteTo(bytes);

    const char expected[] = "\2\0\0\0ab\0\0\0\0" // the leaf
                            "\0\0\0\0"           // no more leaves
                            "\1\0\0\0T\0\0\0\0\0\0\0\0"
                            "\0\0\0"; // no more sub-trees; the last byte is the literal's own
    EXPECT_EQ(bytes.text(), std::string(expected, sizeof expected));
}

TEST(DirectoryTreesFiles, APlainLeafOfAWholeBlockIsWrittenAsOneByte)
{
    const TemporaryFolder folder;
    putContent(folder / "big.mid", "M" + std::string(2000, 'x'));
    const WorkingFolder here(folder.path());
    Owned<Tree> root(new Tree("ignored", nullptr));
    stringStream bytes;

    addLeaf(*root, "big.mid")->WriteTo(bytes);

    EXPECT_EQ(bytes.text(), std::string("\0\0\0\0M", 5));
}

TEST(DirectoryTreesFiles, APlainLeafBelowABlockIsWrittenAsNothing)
{
    const TemporaryFolder folder;
    putContent(folder / "small.mid", std::string(1023, 'x'));
    const WorkingFolder here(folder.path());
    Owned<Tree> root(new Tree("ignored", nullptr));
    stringStream bytes;

    addLeaf(*root, "small.mid")->WriteTo(bytes);

    EXPECT_EQ(bytes.text(), std::string(4, '\0'));
}

// Slots -------------------------------------------------------------------------------------------

namespace {

/// What a caller compiled elsewhere believes a tree's operations to be, in their order.
class TreeSlots
{
public:
    virtual ~TreeSlots() = default;
    virtual void WriteTo(Korvanel::OutputStream&) = 0;
    virtual void Rename(const String&) = 0;
    virtual void Remove() = 0;
    virtual String GetDescription() = 0;
    virtual String GetDescriptionNoPath() = 0;
    virtual void SetDescription(const String&) = 0;
    virtual String Path(Tree*) = 0;
    virtual int FullPathSize() = 0;
    virtual void AppendFullPath(char*) = 0;
    virtual void MakeNode() = 0;
};

class LeafSlots
{
public:
    virtual ~LeafSlots() = default;
    virtual void WriteTo(Korvanel::OutputStream&) = 0;
    virtual void Rename(const String&) = 0;
    virtual void Remove() = 0;
    virtual String GetDescription() = 0;
    virtual String GetDescriptionNoPath() = 0;
    virtual void SetDescription(const String&) = 0;
    virtual InStream* GetInput() = 0;
};

/// The object as a caller sees it who knows the order of the slots only.
template <typename Slots>
Slots& through(void* object)
{
    return *static_cast<Slots*>(object);
}

} // namespace

TEST_F(DirectoryTrees, ATreesOperationsStandInTheirSlots)
{
    Tree* x = addTree(*root, "x");
    stringStream bytes;
    char path[8] = {};
    auto& slots = through<TreeSlots>(static_cast<void*>(x));

    slots.WriteTo(bytes);
    EXPECT_EQ(bytes.text().size(), 8u);
    EXPECT_STREQ(slots.GetDescription().c_str(), "");
    EXPECT_STREQ(slots.Path(nullptr).c_str(), "x\\");
    EXPECT_EQ(slots.FullPathSize(), 5);
    slots.AppendFullPath(path);
    EXPECT_STREQ(path, "/r/x/");
    slots.MakeNode();
}

TEST_F(DirectoryTrees, ALeafsOperationsStandInTheirSlots)
{
    Leaf* leaf = addLeaf(*root, "a");
    stringStream bytes;
    auto& slots = through<LeafSlots>(static_cast<void*>(leaf));

    slots.WriteTo(bytes);
    EXPECT_EQ(bytes.text().size(), 4u);
    EXPECT_STREQ(slots.GetDescriptionNoPath().c_str(), "");
    InStream* input = slots.GetInput();
    EXPECT_TRUE(input->IsEOF());
    input->releaseRef();
}
