// Callers compiled elsewhere know the order of the virtual operations only. These mirrors declare
// it independently.
#include "library/DirectoryTrees.h"
#include "library/FolderNode.h"
#include "library/PatternTree.h"
#include "library/VolumeNode.h"
#include "tests/library/TreeBuilder.h"
#include "tests/support/LibraryFolder.h"
#include "tests/support/Slots.h"

#include <gtest/gtest.h>

namespace fs = std::filesystem;
using Korvanel::String;
using Korvanel::stringStream;
using Korvanel::DirectoryTrees::FileInStream;
using Korvanel::DirectoryTrees::InStream;

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

// What the nodes of a volume have behind them.
class VolumeSlots : public TreeSlots
{
public:
    virtual void ReadFrom(Korvanel::InputStream&) = 0;
};

class VolumeLeafSlots : public LeafSlots
{
public:
    virtual void ReadFrom(Korvanel::InputStream&) = 0;
};

class CountedSlots
{
public:
    virtual std::int32_t keep() = 0;
    virtual std::int32_t release() = 0;

protected:
    ~CountedSlots() = default;
};

class ObjectSlots
{
public:
    virtual ~ObjectSlots() = default;
};

class ObserverSlots
{
public:
    virtual ~ObserverSlots() = default;
    virtual const char* folder() const = 0;
    virtual void changed() = 0;
};

class MortalLeaf final : public Leaf
{
public:
    explicit MortalLeaf(bool& dead)
        : Leaf("a", nullptr)
        , mDead(dead)
    {
    }

    ~MortalLeaf() override { mDead = true; }

private:
    bool& mDead;
};

class NodeSlots : public testing::Test
{
protected:
    Owned<Tree> root{new Tree("/r", nullptr)};
};

} // namespace

TEST_F(NodeSlots, ATreesOperationsStandInTheirSlots)
{
    Tree* x = addTree(*root, "x");
    stringStream bytes;
    char path[8] = {};
    auto& slots = through<TreeSlots>(x);

    slots.WriteTo(bytes);
    EXPECT_EQ(bytes.text().size(), 8u);
    EXPECT_STREQ(slots.Path(nullptr).c_str(), "x\\");
    EXPECT_EQ(slots.FullPathSize(), 5);
    slots.AppendFullPath(path);
    EXPECT_STREQ(path, "/r/x/");
}

TEST(FolderSlots, AFoldersOperationsStandInTheirSlots)
{
    const LibraryFolder folder;
    folder.put("Rock/a.mid");
    Owned<FolderNode> root(new FolderNode(folder.path().c_str(), nullptr));
    root->MakeNode();
    Tree* rock = root->firstTree();
    auto& slots = through<TreeSlots>(rock);

    slots.SetDescription("notes.txt");
    EXPECT_STREQ(slots.GetDescriptionNoPath().c_str(), "notes.txt");
    EXPECT_STREQ(slots.GetDescription().c_str(), (folder / "Rock/notes.txt").c_str());
    slots.Rename("Jazz");
    EXPECT_TRUE(fs::exists(folder / "Jazz/a.mid"));
    folder.put("Jazz/b.mid");
    slots.MakeNode();
    EXPECT_EQ(leavesOf(*rock), (Names{"a.mid", "b.mid"}));
    slots.Remove();
    EXPECT_FALSE(fs::exists(folder / "Jazz"));
}

TEST(FolderSlots, ALeafsOperationsStandInTheirSlots)
{
    const LibraryFolder folder;
    folder.put("a.mid", "hello");
    Owned<FolderNode> root(new FolderNode(folder.path().c_str(), nullptr));
    root->MakeNode();
    stringStream bytes;
    auto& slots = through<LeafSlots>(root->firstLeaf());

    slots.WriteTo(bytes);
    EXPECT_EQ(bytes.text().size(), 4u);
    slots.SetDescription("a leaf has none");
    EXPECT_STREQ(slots.GetDescription().c_str(), "");
    EXPECT_STREQ(slots.GetDescriptionNoPath().c_str(), "");
    slots.Rename("b.mid");
    EXPECT_EQ(contentOf(folder / "b.mid"), "hello");
    InStream* input = slots.GetInput();
    EXPECT_FALSE(input->IsEOF());
    input->releaseRef();
    slots.Remove();
    EXPECT_FALSE(fs::exists(folder / "b.mid"));
}

TEST_F(NodeSlots, ADestructorIsTheFirstOfThem)
{
    bool dead = false;
    delete &through<LeafSlots>(new MortalLeaf(dead));
    EXPECT_TRUE(dead);
}

TEST_F(NodeSlots, AVolumesReaderStandsBehindATreesOperations)
{
    auto* volume = new FileBaseNode("v", root.get());
    ASSERT_TRUE(root->AddTree(volume));
    stringStream body(std::string("\1\0\0\0a\0\0\0\0\0\0\0\0\0\0\0\0", 17));

    through<VolumeSlots>(volume).ReadFrom(body);

    EXPECT_EQ(leavesOf(*volume), (Names{"a"}));
}

TEST_F(NodeSlots, ADataReaderStandsBehindALeafsOperations)
{
    auto* leaf = new InFileTerminalNode("a", root.get());
    ASSERT_TRUE(root->AddLeaf(leaf));
    stringStream record(std::string("\2\0\0\0xy", 6));

    through<VolumeLeafSlots>(leaf).ReadFrom(record);

    EXPECT_EQ(leaf->data(), (std::vector<std::uint8_t>{'x', 'y'}));
}

TEST(FileInStreamSlots, TheObjectLiesBeforeTheStream)
{
    auto* input = new FileInStream("/nowhere", Korvanel::File::ReadMode);
    EXPECT_EQ(static_cast<void*>(static_cast<Korvanel::Object*>(input)), input);
    EXPECT_GT(static_cast<void*>(static_cast<InStream*>(input)), static_cast<void*>(input));

    auto& counted = through<CountedSlots>(static_cast<Korvanel::RefCounted*>(input));
    EXPECT_EQ(counted.keep(), 2);
    EXPECT_EQ(counted.release(), 1);

    const auto before = Korvanel::Base::numAllocations.load();
    delete &through<ObjectSlots>(input);
    EXPECT_EQ(Korvanel::Base::numAllocations.load(), before - 1);
}

TEST(PatternTreeSlots, TheObserversOperationsFollowTheDestructor)
{
    const LibraryFolder folder;
    auto* tree = new PatternTree;
    tree->SetRoot(folder.path().c_str());
    folder.put("Rock/a.mid");
    auto& slots = through<ObserverSlots>(static_cast<ChangeObserver*>(tree));

    EXPECT_STREQ(slots.folder(), folder.path().c_str());
    slots.changed();
    EXPECT_STREQ(tree->FindNode("Rock").base()->name().c_str(), "Rock");

    delete &slots;
}
