// What nodes do to files, and how a tree writes itself.
#include "library/DirectoryTrees.h"
#include "tests/library/TreeBuilder.h"
#include "tests/support/Folders.h"

#include <gtest/gtest.h>

#include <filesystem>

namespace fs = std::filesystem;
using Korvanel::stringStream;
using Korvanel::DirectoryTrees::FileInStream;
using Korvanel::DirectoryTrees::InStream;

namespace {

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

class TreeForm : public testing::Test
{
protected:
    Owned<Tree> root{new Tree("/r", nullptr)};
};

} // namespace

TEST(TreeFiles, ARenamedLeafKeepsItsPlaceInTheList)
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

TEST(TreeFiles, ARenameThatFailsChangesNothing)
{
    const TemporaryFolder folder;
    Owned<Tree> root(new Tree(folder.path().c_str(), nullptr));
    Leaf* gone = addLeaf(*root, "gone.mid");

    gone->Rename("new.mid");

    EXPECT_STREQ(gone->name().c_str(), "gone.mid");
}

TEST(TreeFiles, RemovingALeafDeletesItsFileAndKeepsTheNode)
{
    const TemporaryFolder folder;
    putContent(folder / "a.mid", "x");
    Owned<Tree> root(new Tree(folder.path().c_str(), nullptr));
    Leaf* a = addLeaf(*root, "a.mid");

    a->Remove();

    EXPECT_FALSE(fs::exists(folder / "a.mid"));
    EXPECT_EQ(root->firstLeaf(), a);
}

TEST(TreeFiles, RemovingATreeDeletesWhatItListsAndTheFileNamedStar)
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

TEST(TreeFiles, AFolderWithOtherFilesInItStays)
{
    const TemporaryFolder folder;
    fs::create_directories(folder / "Rock");
    putContent(folder / "Rock/cover.png", "x");
    Owned<Tree> root(new Tree(folder.path().c_str(), nullptr));

    addTree(*root, "Rock")->Remove();

    EXPECT_TRUE(fs::exists(folder / "Rock/cover.png"));
}

TEST(TreeFiles, ALeafsInputReadsItsFile)
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

TEST(TreeFiles, TheInputOfAMissingFileIsEmpty)
{
    Owned<Tree> root(new Tree("/nowhere", nullptr));
    InStream* input = addLeaf(*root, "a.mid")->GetInput();
    char byte = 0;

    EXPECT_TRUE(input->IsEOF());
    EXPECT_EQ(input->Read(static_cast<void*>(&byte), 1), 0u);
    input->releaseRef();
}

TEST(TreeFiles, InputsAreCountedAmongTheFrameworksBlocks)
{
    const auto before = Korvanel::Base::numAllocations.load();
    InStream* input = new FileInStream("/nowhere", Korvanel::File::ReadMode);
    EXPECT_EQ(Korvanel::Base::numAllocations.load(), before + 1);

    input->releaseRef();

    EXPECT_EQ(Korvanel::Base::numAllocations.load(), before);
}

// Serialised form ---------------------------------------------------------------------------------

TEST_F(TreeForm, AnEmptyTreeIsTwoEndMarks)
{
    stringStream bytes;

    root->WriteTo(bytes);

    EXPECT_EQ(bytes.text(), std::string(8, '\0'));
}

TEST_F(TreeForm, RecordsAreLengthNameAndContent)
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

TEST(TreeFiles, APlainLeafOfAWholeBlockIsWrittenAsOneByte)
{
    const TemporaryFolder folder;
    putContent(folder / "big.mid", "M" + std::string(2000, 'x'));
    const WorkingFolder here(folder.path());
    Owned<Tree> root(new Tree("ignored", nullptr));
    stringStream bytes;

    addLeaf(*root, "big.mid")->WriteTo(bytes);

    EXPECT_EQ(bytes.text(), std::string("\0\0\0\0M", 5));
}

TEST(TreeFiles, APlainLeafBelowABlockIsWrittenAsNothing)
{
    const TemporaryFolder folder;
    putContent(folder / "small.mid", std::string(1023, 'x'));
    const WorkingFolder here(folder.path());
    Owned<Tree> root(new Tree("ignored", nullptr));
    stringStream bytes;

    addLeaf(*root, "small.mid")->WriteTo(bytes);

    EXPECT_EQ(bytes.text(), std::string(4, '\0'));
}
