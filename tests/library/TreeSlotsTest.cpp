// Callers compiled elsewhere know the order of the virtual operations only. These mirrors declare
// it independently.
#include "library/DirectoryTrees.h"
#include "tests/library/TreeBuilder.h"

#include <gtest/gtest.h>

using Korvanel::String;
using Korvanel::stringStream;
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

/// The object as a caller sees it who knows the order of the slots only.
template <typename Slots>
Slots& through(void* object)
{
    return *static_cast<Slots*>(object);
}

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

TEST_F(NodeSlots, ALeafsOperationsStandInTheirSlots)
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
