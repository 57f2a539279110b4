#include "library/FolderNode.h"

#include "library/VolumeNode.h"
#include "tests/library/TreeBuilder.h"
#include "tests/support/FileSizeLimit.h"
#include "tests/support/LibraryFolder.h"

#include <gtest/gtest.h>

#include <random>
#include <sys/stat.h>
#include <unistd.h>

using Korvanel::DirectoryTrees::LeafIterator;

namespace {

/// Every path of the tree, leaves before branches.
Names pathsOf(Tree& tree)
{
    Names paths;
    for (Leaf* leaf = tree.firstLeaf(); leaf; leaf = static_cast<Leaf*>(leaf->next()))
        paths.emplace_back(leaf->PathName(nullptr).c_str());
    for (Tree* below = tree.firstTree(); below; below = static_cast<Tree*>(below->next())) {
        paths.emplace_back(below->Path(nullptr).c_str());
        const Names more = pathsOf(*below);
        paths.insert(paths.end(), more.begin(), more.end());
    }
    return paths;
}

/// Acts as somebody who may not read everything: the superuser may.
class OrdinaryUser
{
public:
    OrdinaryUser()
    {
        if (mWasSuperuser) {
            EXPECT_EQ(::seteuid(65534), 0);
        }
    }

    OrdinaryUser(const OrdinaryUser&) = delete;
    OrdinaryUser& operator=(const OrdinaryUser&) = delete;

    ~OrdinaryUser()
    {
        if (mWasSuperuser) {
            EXPECT_EQ(::seteuid(0), 0);
        }
    }

private:
    const bool mWasSuperuser = ::geteuid() == 0;
};

class FolderNodeTest : public testing::Test
{
protected:
    void scan() { root->MakeNode(); }

    Tree* tree(const char* path) { return root->FindTree(path, 0); }

    Leaf* leaf(const char* path) { return root->FindLeaf(path, 0); }

    LibraryFolder folder;
    Owned<FolderNode> root{new FolderNode(folder.path().c_str(), nullptr)};
};

} // namespace

TEST_F(FolderNodeTest, OnlyMidFilesArePatternsAndATextDescribesThem)
{
    for (const char* name : {"a.mid", "b.MID", "notes.txt", ".hidden.mid", "readme", "c.midi"})
        folder.put(std::string("Rock/") + name);

    scan();

    EXPECT_EQ(leavesOf(*tree("Rock")), (Names{"a.mid"}));
    EXPECT_STREQ(tree("Rock")->GetDescriptionNoPath().c_str(), "notes.txt");
    EXPECT_STREQ(tree("Rock")->GetDescription().c_str(), (folder / "Rock/notes.txt").c_str());
}

TEST_F(FolderNodeTest, TheRootsDescriptionIsANameOnly)
{
    folder.put("about.txt");

    scan();

    EXPECT_STREQ(root->GetDescription().c_str(), "about.txt");
}

TEST_F(FolderNodeTest, OfSeveralTextsTheLastByNameDescribes)
{
    folder.put("Rock/b.txt");
    folder.put("Rock/a.txt");

    scan();

    EXPECT_STREQ(tree("Rock")->GetDescriptionNoPath().c_str(), "b.txt");
}

TEST_F(FolderNodeTest, FoldersAreReadAllTheWayDown)
{
    folder.put("Rock/Fills/Long/x.mid");
    folder.put(".git/y.mid");
    folder.makeFolder("Jazz");

    scan();

    EXPECT_EQ(pathsOf(*root), (Names{"Jazz\\", "Rock\\", "Rock\\Fills\\", "Rock\\Fills\\Long\\",
                                     "Rock\\Fills\\Long\\x.mid"}));
}

TEST_F(FolderNodeTest, AFolderNamedLikeAPatternIsAFolder)
{
    folder.put("x.mid/a.mid");

    scan();

    EXPECT_EQ(leavesOf(*root), (Names{}));
    EXPECT_EQ(treesOf(*root), (Names{"x.mid"}));
}

TEST_F(FolderNodeTest, NamesThatNoPathCanHoldAreLeftOut)
{
    folder.put("a\\b.mid");
    folder.put("R\\S/c.mid");
    folder.put("about\\it.txt");
    folder.put("a.mid");

    scan();

    EXPECT_EQ(pathsOf(*root), (Names{"a.mid"}));
    EXPECT_STREQ(root->GetDescriptionNoPath().c_str(), "");
}

TEST_F(FolderNodeTest, WhatIsStillThereKeepsItsNode)
{
    folder.put("Rock/a.mid");
    folder.put("Rock/b.mid");
    folder.put("Rock/c.mid");
    scan();
    Tree* rock = tree("Rock");
    Leaf* a = leaf("Rock\\a.mid");
    Leaf* b = leaf("Rock\\b.mid");
    Leaf* c = leaf("Rock\\c.mid");
    b->keep();

    folder.remove("Rock/b.mid");
    folder.put("Rock/bb.mid");
    scan();

    EXPECT_EQ(tree("Rock"), rock);
    EXPECT_EQ(leavesOf(*rock), (Names{"a.mid", "bb.mid", "c.mid"}));
    EXPECT_EQ(leaf("Rock\\a.mid"), a);
    EXPECT_EQ(leaf("Rock\\c.mid"), c);
    EXPECT_EQ(b->next(), nullptr);
    b->release(); // the last reference: the tree has let it go
}

TEST_F(FolderNodeTest, APatternThatIsHeldKnowsItsPathWhenItsStyleVanishesAfterIt)
{
    folder.put("Rock/a.mid");
    scan();
    Leaf* held = leaf("Rock\\a.mid");
    held->keep();
    folder.remove("Rock/a.mid");
    scan();
    folder.remove("Rock");
    scan();

    EXPECT_STREQ(held->FullName().c_str(), (folder / "Rock/a.mid").c_str());
    EXPECT_STREQ(held->PathName(root.get()).c_str(), "Rock\\a.mid");
    held->release();
}

TEST_F(FolderNodeTest, AStyleThatVanishesTakesItsPatternsWithIt)
{
    folder.put("Rock/a.mid");
    folder.put("Jazz/b.mid");
    scan();

    folder.remove("Jazz");
    scan();

    EXPECT_EQ(treesOf(*root), (Names{"Rock"}));
    EXPECT_EQ(root->NumLeaves(), 1);
}

TEST_F(FolderNodeTest, ANewStyleIsScannedAtOnce)
{
    folder.put("Rock/a.mid");
    scan();

    folder.put("Jazz/Fast/b.mid");
    scan();

    EXPECT_NE(leaf("Jazz\\Fast\\b.mid"), nullptr);
}

TEST_F(FolderNodeTest, ADescriptionThatIsDeletedIsForgotten)
{
    folder.put("Rock/notes.txt");
    scan();

    folder.remove("Rock/notes.txt");
    scan();

    EXPECT_STREQ(tree("Rock")->GetDescription().c_str(), "");
}

TEST_F(FolderNodeTest, ARenamedLeafComesIntoOrderWithTheNextScan)
{
    folder.put("a.mid");
    folder.put("b.mid");
    scan();
    leaf("a.mid")->Rename("z.mid");
    EXPECT_EQ(leavesOf(*root), (Names{"z.mid", "b.mid"}));

    scan();

    EXPECT_EQ(leavesOf(*root), (Names{"b.mid", "z.mid"}));
    EXPECT_EQ(namesBack(root->lastLeaf()), (Names{"b.mid", "z.mid"}));
}

TEST_F(FolderNodeTest, AFolderThatIsMissingIsEmpty)
{
    folder.put("Rock/a.mid");
    scan();

    folder.remove("Rock");
    folder.remove("");
    scan();

    EXPECT_EQ(pathsOf(*root), (Names{}));
}

TEST_F(FolderNodeTest, AFolderThatCannotBeReadIsEmpty)
{
    const OrdinaryUser user;
    LibraryFolder own;
    own.put("Rock/a.mid");
    Owned<FolderNode> node(new FolderNode(own.path().c_str(), nullptr));
    node->MakeNode();
    ASSERT_EQ(node->NumLeaves(), 1);

    ::chmod((own / "Rock").c_str(), 0);
    node->MakeNode();
    EXPECT_EQ(node->NumLeaves(), 0);
    ::chmod((own / "Rock").c_str(), 0755);
    node->MakeNode();
    EXPECT_EQ(node->NumLeaves(), 1);
}

TEST_F(FolderNodeTest, ANamelessRootIsNotTheWholeDisk)
{
    Owned<FolderNode> nameless(new FolderNode("", nullptr));

    nameless->MakeNode();

    EXPECT_EQ(nameless->firstTree(), nullptr);
}

TEST_F(FolderNodeTest, ALinkToAPatternIsAPatternAndALinkToAFolderIsNone)
{
    const LibraryFolder elsewhere;
    elsewhere.put("far.mid");
    namespace fs = std::filesystem;
    fs::create_symlink(elsewhere / "far.mid", folder / "near.mid");
    fs::create_symlink(elsewhere.path(), folder / "Far");
    fs::create_symlink(folder / "nothing", folder / "broken.mid");
    fs::create_symlink(folder.path(), folder / "Loop");

    scan();

    EXPECT_EQ(pathsOf(*root), (Names{"near.mid"}));
}

TEST_F(FolderNodeTest, APipeIsNoPattern)
{
    ASSERT_EQ(::mkfifo((folder / "pipe.mid").c_str(), 0600), 0);

    scan();

    EXPECT_EQ(leavesOf(*root), (Names{}));
}

// Folders that have not changed -------------------------------------------------------------------

TEST_F(FolderNodeTest, ManyRandomChangesEndInTheTreeOfAFreshScan)
{
    std::mt19937 random(20261121);
    const auto randomName = [&] {
        const std::string style = std::string(1, static_cast<char>('A' + random() % 4));
        const std::string deep = random() % 3 == 0 ? style + "/Sub" : style;
        return deep + "/" + static_cast<char>('a' + random() % 6) + ".mid";
    };
    for (int round = 0; round < 200; ++round) {
        for (unsigned changes = random() % 4; changes > 0; --changes) {
            switch (random() % 4) {
            case 0:
                folder.remove(randomName());
                break;
            case 1:
                folder.remove(std::string(1, static_cast<char>('A' + random() % 4)));
                break;
            default:
                folder.put(randomName(), "");
            }
        }
        scan();
        Owned<FolderNode> fresh(new FolderNode(folder.path().c_str(), nullptr));
        fresh->MakeNode();
        ASSERT_EQ(pathsOf(*root), pathsOf(*fresh)) << "round " << round;
    }
}

// Volumes -----------------------------------------------------------------------------------------

TEST_F(FolderNodeTest, AFolderWritesItselfAsAVolume)
{
    folder.put("Rock/a.mid", "ab");
    scan();
    const LibraryFolder out;

    root->WriteVolumeTo((out / "v").c_str());

    const char expected[] = "Korvanel Rattlecorder Volume\x1a"
                            "\0\0\0\0"         // no leaves
                            "\4\0\0\0Rock"     // a folder
                            "\5\0\0\0a.mid"    // its leaf
                            "\0\0\0\0"         // whose data a plain leaf does not have
                            "\0\0\0\0\0\0\0\0" // ends of Rock
                            "\0\0\0";          // no more folders
    EXPECT_EQ(contentOf(out / "v"), std::string(expected, sizeof expected));
}

TEST_F(FolderNodeTest, AVolumeThatCannotBeWrittenLeavesTheOldOne)
{
    const LibraryFolder out;
    out.put("v", "old");
    out.makeFolder(".v.new"); // in the way of the new one

    root->WriteVolumeTo((out / "v").c_str());

    EXPECT_EQ(contentOf(out / "v"), "old");
}

TEST_F(FolderNodeTest, AVolumeThatDoesNotFitLeavesTheOldOneAndNothingElse)
{
    folder.put(std::string(200, 'n') + ".mid");
    scan();
    const LibraryFolder out;
    out.put("v", "old");
    {
        const FileSizeLimit limit(100);
        root->WriteVolumeTo((out / "v").c_str());
    }

    EXPECT_EQ(contentOf(out / "v"), "old");
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(out.path()), {}), 1);
}

TEST_F(FolderNodeTest, WritingAVolumeLeavesTheFilesBesideItAlone)
{
    const LibraryFolder out;
    out.put("v.part", "somebody's");

    root->WriteVolumeTo((out / "v").c_str());

    EXPECT_EQ(contentOf(out / "v.part"), "somebody's");
    EXPECT_EQ(contentOf(out / "v").substr(0, 8), "Korvanel");
}
