#include "editor/LibraryFiles.h"

#include "tests/support/LibraryFolder.h"

#include <gtest/gtest.h>

#include <unistd.h>

using Korvanel::DirectoryTrees::Leaf;
using Korvanel::DirectoryTrees::Tree;

namespace {

class LibraryFilesTest : public testing::Test
{
protected:
    LibraryFolder folder;
    std::string path = folder.path() + "/";
};

/// A folder of a test as a root, with one leaf that both go together.
class OneLeaf
{
public:
    OneLeaf(const LibraryFolder& folder, const char* name)
        : root(new Tree(folder.path().c_str(), nullptr))
        , leaf(new Leaf(name, root))
    {
        root->AddLeaf(leaf);
    }

    OneLeaf(const OneLeaf&) = delete;
    OneLeaf& operator=(const OneLeaf&) = delete;

    ~OneLeaf() { root->release(); }

    Tree* root;
    Leaf* leaf;
};

} // namespace

TEST_F(LibraryFilesTest, ANameHasNoSeparatorNoNulAndNoPointAtTheStart)
{
    EXPECT_TRUE(isLibraryName("Fill"));
    EXPECT_TRUE(isLibraryName("a.b c*\xc3\xa4"));
    for (const std::string& name :
         {std::string(), std::string("."), std::string(".."), std::string(".hidden"),
          std::string("a/b"), std::string("a\\b"), std::string("a\0b", 3)})
        EXPECT_FALSE(isLibraryName(name)) << name;
}

TEST_F(LibraryFilesTest, NewStylesAreNumberedFromOneOn)
{
    EXPECT_EQ(makeStyleFolder(path), "New Style");
    EXPECT_EQ(makeStyleFolder(path), "New Style 1");
    folder.put("New Style 2"); // a file has the name too
    EXPECT_EQ(makeStyleFolder(path), "New Style 3");
    EXPECT_TRUE(std::filesystem::is_directory(folder / "New Style 3"));
}

TEST_F(LibraryFilesTest, NoStyleIsMadeInAFolderThatIsNotThere)
{
    EXPECT_EQ(makeStyleFolder(path + "gone/"), "");
}

TEST_F(LibraryFilesTest, ANewPatternStandsBesideWhatHasItsName)
{
    folder.put("Groove.mid", "old");

    EXPECT_TRUE(addPatternFile(path, "Groove", "new"));

    EXPECT_EQ(contentOf(folder / "Groove.mid"), "old");
    EXPECT_EQ(contentOf(folder / "Groove 1.mid"), "new");
}

TEST_F(LibraryFilesTest, ALinkIsNeitherFollowedNorReplacedByANewPattern)
{
    ASSERT_EQ(::symlink((folder / "elsewhere").c_str(), (folder / "Groove.mid").c_str()), 0);

    EXPECT_TRUE(addPatternFile(path, "Groove", "new"));

    EXPECT_FALSE(std::filesystem::exists(folder / "elsewhere"));
    EXPECT_EQ(contentOf(folder / "Groove 1.mid"), "new");
}

TEST_F(LibraryFilesTest, TheThousandthPatternOfANameIsTheLast)
{
    folder.put("A.mid");
    for (int number = 1; number < 999; ++number)
        putContent(folder / ("A " + std::to_string(number) + ".mid"), "");

    EXPECT_TRUE(addPatternFile(path, "A", "last"));
    EXPECT_EQ(contentOf(folder / "A 999.mid"), "last");
    EXPECT_FALSE(addPatternFile(path, "A", "too many"));
}

TEST_F(LibraryFilesTest, APatternThatCannotBeMadeLeavesNothing)
{
    EXPECT_FALSE(addPatternFile(path, "../A", "x"));
    EXPECT_FALSE(addPatternFile(path, std::string(300, 'a'), "x"));
    EXPECT_FALSE(addPatternFile(path + "gone/", "A", "x"));
    // room for the name, but not for the file beside it that is written first
    EXPECT_FALSE(addPatternFile(path, std::string(250, 'a'), "x"));

    EXPECT_TRUE(std::filesystem::is_empty(folder.path()));
}

TEST_F(LibraryFilesTest, DeletingAPatternTakesAFileOnly)
{
    folder.makeFolder("A.mid");
    folder.put("B.mid");

    EXPECT_FALSE(deletePatternFile(folder / "A.mid"));
    EXPECT_TRUE(deletePatternFile(folder / "B.mid"));

    EXPECT_TRUE(std::filesystem::exists(folder / "A.mid"));
}

TEST_F(LibraryFilesTest, ARenamedPatternKeepsItsContent)
{
    folder.put("A.mid", "a");
    const OneLeaf library(folder, "A.mid");

    EXPECT_TRUE(renameNode(*library.leaf, "B.mid"));

    EXPECT_EQ(contentOf(folder / "B.mid"), "a");
    EXPECT_STREQ(library.leaf->name().c_str(), "B.mid");
}

TEST_F(LibraryFilesTest, RenamingOverwritesNeitherAFileNorAnEmptyFolderNorALink)
{
    folder.put("A.mid", "a");
    folder.put("B.mid", "b");
    folder.makeFolder("C.mid");
    ASSERT_EQ(::symlink("nowhere", (folder / "D.mid").c_str()), 0);
    ASSERT_EQ(::link((folder / "A.mid").c_str(), (folder / "E.mid").c_str()), 0);
    const OneLeaf library(folder, "A.mid");

    for (const char* taken : {"B.mid", "C.mid", "D.mid", "E.mid"})
        EXPECT_FALSE(renameNode(*library.leaf, taken)) << taken;

    EXPECT_EQ(contentOf(folder / "A.mid"), "a");
    EXPECT_EQ(contentOf(folder / "B.mid"), "b");
    EXPECT_STREQ(library.leaf->name().c_str(), "A.mid");
}

TEST_F(LibraryFilesTest, WhatTheDiskRefusesKeepsItsName)
{
    const OneLeaf library(folder, "gone.mid");

    EXPECT_FALSE(renameNode(*library.leaf, "B.mid"));
    EXPECT_FALSE(renameNode(*library.root, "elsewhere")) << "the library itself";

    EXPECT_STREQ(library.leaf->name().c_str(), "gone.mid");
}
