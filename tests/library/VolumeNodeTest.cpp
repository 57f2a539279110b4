#include "library/VolumeNode.h"

#include "library/FolderNode.h"
#include "library/Pattern.h"
#include "midi/CMidiTrack.h"
#include "tests/library/TreeBuilder.h"
#include "tests/support/Guards.h"
#include "tests/support/LibraryFolder.h"

#include <gtest/gtest.h>

using Korvanel::DirectoryTrees::InStream;

namespace {

const std::string kHeader("Korvanel Rattlecorder Volume\x1a");

std::string number(std::uint32_t value)
{
    return {static_cast<char>(value), static_cast<char>(value >> 8), static_cast<char>(value >> 16),
            static_cast<char>(value >> 24)};
}

std::string text(const std::string& bytes)
{
    return number(static_cast<std::uint32_t>(bytes.size())) + bytes;
}

const std::string kEnd = number(0);

std::string leafRecord(const std::string& name, const std::string& data)
{
    return text(name) + text(data);
}

/// A volume read from those bytes.
class Volume
{
public:
    explicit Volume(const std::string& bytes)
    {
        mFolder.put("v", bytes);
        mNode->MakeNode();
    }

    VolumeNode* operator->() { return mNode.get(); }

    VolumeNode& operator*() { return *mNode; }

private:
    LibraryFolder mFolder;
    Owned<VolumeNode> mNode{new VolumeNode((mFolder / "v").c_str(), nullptr)};
};

std::string dataOf(Leaf* leaf)
{
    std::string all;
    InStream* input = leaf->GetInput();
    char piece[3];
    while (const std::uint32_t came = input->Read(static_cast<void*>(piece), sizeof piece))
        all.append(piece, came);
    EXPECT_TRUE(input->IsEOF());
    EXPECT_EQ(input->keepRef(), 0);
    EXPECT_EQ(input->releaseRef(), 0);
    return all;
}

} // namespace

TEST(VolumeNodeTest, LeavesAndFoldersComeBackWithTheirData)
{
    Volume volume(kHeader + leafRecord("a.mid", "hello") + kEnd + text("Rock") +
                  leafRecord("b.mid", "x") + kEnd + kEnd + kEnd);

    EXPECT_EQ(leavesOf(*volume), (Names{"a.mid"}));
    EXPECT_EQ(treesOf(*volume), (Names{"Rock"}));
    EXPECT_EQ(dataOf(volume->FindLeaf("a.mid", 0)), "hello");
    EXPECT_EQ(dataOf(volume->FindLeaf("Rock\\b.mid", 0)), "x");
    EXPECT_TRUE(volume->isVolume());
}

TEST(VolumeNodeTest, EverythingInAVolumeIsReadOnly)
{
    Volume volume(kHeader + leafRecord("a.mid", "") + kEnd + text("Rock") + kEnd + kEnd + kEnd);

    EXPECT_TRUE(volume->isReadOnly());
    EXPECT_TRUE(volume->firstLeaf()->isReadOnly());
    EXPECT_TRUE(volume->firstTree()->isReadOnly());
}

TEST(VolumeNodeTest, AWrongByteBehindTheTextMeansNoVolume)
{
    Volume volume(kHeader.substr(0, 28) + "\x1b" + leafRecord("a.mid", "x") + kEnd + kEnd);

    EXPECT_EQ(volume->NumLeaves(), 0);
    EXPECT_FALSE(volume->isVolume());
}

TEST(VolumeNodeTest, AFileShorterThanTheHeaderMeansNoVolume)
{
    for (std::size_t length = 0; length < kHeader.size(); ++length)
        EXPECT_FALSE(Volume(kHeader.substr(0, length))->isVolume()) << length;
}

TEST(VolumeNodeTest, AMissingFileMeansNoVolume)
{
    Owned<VolumeNode> node(new VolumeNode("/nowhere/v", nullptr));

    node->MakeNode();

    EXPECT_FALSE(node->isVolume());
    EXPECT_EQ(node->NumLeaves(), 0);
}

TEST(VolumeNodeTest, APatternOfNoBytesIsAtItsEndAtOnce)
{
    Volume volume(kHeader + leafRecord("a.mid", "") + kEnd + kEnd);

    EXPECT_TRUE(volume->firstLeaf()->GetInput()->IsEOF());
    EXPECT_EQ(dataOf(volume->firstLeaf()), "");
}

TEST(VolumeNodeTest, EachInputHasAPositionOfItsOwn)
{
    Volume volume(kHeader + leafRecord("a.mid", "hello") + kEnd + kEnd);
    InStream* first = volume->firstLeaf()->GetInput();
    char byte = 0;
    first->Read(static_cast<void*>(&byte), 1);

    EXPECT_EQ(dataOf(volume->firstLeaf()), "hello");
    EXPECT_EQ(first->Read(static_cast<void*>(&byte), 1), 1u);
    EXPECT_EQ(byte, 'e');
}

TEST(VolumeNodeTest, EveryTruncationGivesWhatStandsBeforeIt)
{
    const std::string whole = kHeader + leafRecord("a.mid", "hello") + leafRecord("b.mid", "xy") +
                              kEnd + text("Rock") + leafRecord("c.mid", "z") + kEnd + kEnd + kEnd;
    int before = 0;
    for (std::size_t length = kHeader.size(); length <= whole.size(); ++length) {
        Volume volume(whole.substr(0, length));
        EXPECT_TRUE(volume->isVolume());
        EXPECT_GE(volume->NumLeaves(), before) << length;
        before = volume->NumLeaves();
    }
    EXPECT_EQ(before, 3);
}

TEST(VolumeNodeTest, ADeclaredLengthBeyondTheFileCostsOnlyWhatTheFileHolds)
{
    const std::string bytes = kHeader + text("a.mid") + number(0xffffffff) + "abc";
    const AllocationGuard guard;
    Volume volume(bytes);

    EXPECT_LE(guard.largest(), 64u * 1024);
    auto* leaf = static_cast<InFileTerminalNode*>(volume->firstLeaf());
    ASSERT_NE(leaf, nullptr);
    EXPECT_EQ(leaf->data().size(), 3u);
    EXPECT_EQ(leaf->data().capacity(), 3u);
}

TEST(VolumeNodeTest, ADeclaredNameBeyondTheFileCostsOnlyWhatTheFileHolds)
{
    const std::string bytes = kHeader + number(0xffffffff) + "abc";
    const AllocationGuard guard;
    Volume volume(bytes);

    EXPECT_LE(guard.largest(), 64u * 1024);
    EXPECT_EQ(volume->NumLeaves(), 0);
}

TEST(VolumeNodeTest, RecordsOutOfOrderAreSortedAndOfTwoTheFirstStays)
{
    Volume volume(kHeader + leafRecord("b", "1") + leafRecord("a", "2") + leafRecord("b", "3") +
                  kEnd + kEnd);

    EXPECT_EQ(leavesOf(*volume), (Names{"a", "b"}));
    EXPECT_EQ(dataOf(volume->FindLeaf("b", 0)), "1");
}

TEST(VolumeNodeTest, AHundredThousandRecordsInZigzagAreReadInTime)
{
    std::string body;
    for (int i = 0; i < 100000; ++i)
        body += leafRecord(std::to_string(i % 2 == 0 ? 500000 + i : 500000 - i), "");
    Volume volume(kHeader + body + kEnd + kEnd);

    EXPECT_EQ(volume->NumLeaves(), 100000);
}

TEST(VolumeNodeTest, FoldersInFoldersEndAtALimit)
{
    std::string body;
    for (int i = 0; i < 100000; ++i)
        body += kEnd + text("d");
    Volume volume(kHeader + body);

    int depth = 0;
    for (Tree* at = volume->firstTree(); at != nullptr; at = at->firstTree())
        ++depth;
    EXPECT_EQ(depth, 256);
}

TEST(VolumeNodeTest, ReadingAgainReplacesWhatWasThere)
{
    const LibraryFolder folder;
    folder.put("v", kHeader + leafRecord("a", "") + kEnd + kEnd);
    Owned<VolumeNode> node(new VolumeNode((folder / "v").c_str(), nullptr));
    node->MakeNode();

    folder.put("v", kHeader + leafRecord("b", "") + kEnd + kEnd);
    node->MakeNode();

    EXPECT_EQ(leavesOf(*node), (Names{"b"}));
}

TEST(VolumeNodeTest, AVolumesPathIsItsFilesWithoutASlash)
{
    Owned<Tree> root(new Tree("/r", nullptr));
    auto* node = new VolumeNode("v", root.get());
    ASSERT_TRUE(root->AddTree(node));
    Korvanel::String path;

    node->FullPath(path);

    EXPECT_EQ(node->FullPathSize(), 4);
    EXPECT_STREQ(path.c_str(), "/r/v");
}

TEST(VolumeNodeTest, WritingWhatWasReadGivesTheSameBytes)
{
    const std::string whole = kHeader + leafRecord("a.mid", "hello") + kEnd + text("Jazz") + kEnd +
                              kEnd + text("Rock") + leafRecord("c.mid", midiFileWithNote(40)) +
                              kEnd + kEnd + kEnd;
    Volume volume(whole);

    Korvanel::stringStream stream;

    writeVolume(*volume, stream);

    EXPECT_EQ(stream.text(), whole);
}

TEST(VolumeNodeTest, APatternLoadsFromAVolume)
{
    Volume volume(kHeader + leafRecord("a.mid", midiFileWithNote(43)) + kEnd + kEnd);
    Korvanel::CMidiTrack track;

    EXPECT_TRUE((*Korvanel::PatternIterator(&*volume)).LoadTo(&track));

    ASSERT_EQ(track.events.size(), 1u);
    EXPECT_EQ(track.events[0].key, 43);
}

TEST(PatternTest, NothingToLoadIntoOrFromIsAFailure)
{
    LibraryFolder folder;
    folder.put("a.mid");
    folder.put("bad.mid", "not a MIDI file");
    Owned<FolderNode> root(new FolderNode(folder.path().c_str(), nullptr));
    root->MakeNode();
    Korvanel::CMidiTrack track;
    Korvanel::PatternIterator at(root.get());

    EXPECT_FALSE((*at).LoadTo(nullptr));
    EXPECT_FALSE(Korvanel::Pattern(nullptr, nullptr).LoadTo(&track));
    EXPECT_TRUE((*at).LoadTo(&track));
    ASSERT_TRUE(at.find("bad.mid"));
    EXPECT_FALSE((*at).LoadTo(&track));
    folder.remove("bad.mid");
    EXPECT_FALSE((*at).LoadTo(&track));
}
