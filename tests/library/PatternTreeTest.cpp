#include "library/PatternTree.h"

#include "library/FolderNode.h"
#include "midi/CMidiTrack.h"
#include "tests/library/TreeBuilder.h"
#include "tests/support/DescriptorLimit.h"
#include "tests/support/LibraryFolder.h"
#include "tests/support/Waiting.h"

#include <gtest/gtest.h>

#include <atomic>
#include <memory>
#include <thread>

using Korvanel::ScopedLock;
using Korvanel::stringStream;

namespace {

Happenings* sNotified = nullptr;

void notified()
{
    sNotified->add();
}

class PatternTreeTest : public testing::Test
{
protected:
    void SetUp() override { sNotified = &notifications; }

    void open()
    {
        tree->SetRoot(folder.path().c_str());
        tree->setNotifyProc(notified);
    }

    bool has(const char* path) { return hasLeaf(*tree, path); }

    static bool hasLeaf(PatternTree& tree, const char* path)
    {
        const ScopedLock hold(tree.lock());
        return tree.root() != nullptr && tree.root()->FindLeaf(path, 0) != nullptr;
    }

    int leaves()
    {
        const ScopedLock hold(tree->lock());
        return tree->root()->NumLeaves();
    }

    LibraryFolder folder;
    Happenings notifications;
    std::unique_ptr<PatternTree> tree = std::make_unique<PatternTree>();
};

} // namespace

TEST_F(PatternTreeTest, BeforeItHasARootItIsEmpty)
{
    EXPECT_STREQ(tree->GetRoot().c_str(), "");
    EXPECT_EQ(tree->GetObservedFolder(), nullptr);
    EXPECT_EQ(tree->FindNode("Rock").current(), nullptr);
    EXPECT_FALSE(tree->IsReadOnlyNode("Rock"));
    tree->update();
    tree->CompileToVolume("Rock", "/nowhere");
}

TEST_F(PatternTreeTest, SettingTheRootScansItAndTellsNobody)
{
    folder.put("Rock/a.mid");
    tree->setNotifyProc(notified);

    tree->SetRoot(folder.path().c_str());

    EXPECT_TRUE(has("Rock\\a.mid"));
    EXPECT_STREQ(tree->GetRoot().c_str(), folder.path().c_str());
    EXPECT_STREQ(tree->GetObservedFolder(), folder.path().c_str());
    EXPECT_EQ(notifications.count(), 0);
}

TEST_F(PatternTreeTest, TheSameRootAgainIsNotScanned)
{
    open();
    folder.put("Rock/a.mid");

    tree->SetRoot(folder.path().c_str());

    EXPECT_FALSE(has("Rock\\a.mid"));
}

TEST_F(PatternTreeTest, AnotherRootReplacesTheFirst)
{
    folder.put("Rock/a.mid");
    open();
    const LibraryFolder other;
    other.put("Jazz/b.mid");

    tree->SetRoot(other.path().c_str());

    EXPECT_FALSE(has("Rock\\a.mid"));
    EXPECT_TRUE(has("Jazz\\b.mid"));
}

TEST_F(PatternTreeTest, AnUnknownStyleGivesTheWholeLibrary)
{
    folder.put("Rock/a.mid");
    open();

    const auto at = tree->FindNode("Nothing");

    EXPECT_STREQ(at.base()->name().c_str(), folder.path().c_str());
    EXPECT_STREQ(at.current()->name().c_str(), "a.mid");
}

TEST_F(PatternTreeTest, APatternOfTheDiskIsNotReadOnly)
{
    folder.put("Rock/a.mid");
    open();

    EXPECT_FALSE(tree->IsReadOnlyNode("Rock\\a.mid"));
    EXPECT_FALSE(tree->IsReadOnlyNode("Rock"));
    EXPECT_FALSE(tree->IsReadOnlyNode("Nothing"));
}

TEST_F(PatternTreeTest, TheRootIsSavedAsAText)
{
    tree->SetRoot("/x");
    Korvanel::StreamBuffer* buffer = new Korvanel::StreamBuffer;
    Korvanel::MemoryStream stream(*buffer);

    tree->SaveRoot(stream);
    PatternTree().SaveRoot(stream);

    EXPECT_EQ(std::string(static_cast<char*>(buffer->GetBuffer()), buffer->GetSize()),
              std::string("\2\0\0\0/x\0\0\0\0", 10));
    buffer->Release();
}

TEST_F(PatternTreeTest, AStyleCompilesToAVolume)
{
    folder.put("Rock/a.mid");
    open();

    tree->CompileToVolume("Rock", (folder / "rock.volume").c_str());

    EXPECT_EQ(contentOf(folder / "rock.volume").substr(0, 29), "Korvanel Rattlecorder Volume\x1a");
}

TEST_F(PatternTreeTest, APatternLoadsByItsNames)
{
    folder.put("Rock/Fills/a.mid", midiFileWithNote(50));
    open();
    Korvanel::CMidiTrack track;

    EXPECT_TRUE(tree->LoadPattern("Rock\\Fills", "a.mid", track));
    EXPECT_EQ(track.lowKey, 50);
    EXPECT_FALSE(tree->LoadPattern("Rock\\Fills", "b.mid", track));
}

TEST_F(PatternTreeTest, UpdatingRescansAndTellsOnlyWhenAsked)
{
    open();
    folder.put("Rock/a.mid");

    tree->update();
    EXPECT_TRUE(has("Rock\\a.mid"));
    EXPECT_EQ(notifications.count(), 0);

    folder.put("Rock/b.mid");
    tree->updateAndNotify();
    EXPECT_TRUE(has("Rock\\b.mid"));
    EXPECT_EQ(notifications.count(), 1);
}

// Watching ----------------------------------------------------------------------------------------

TEST_F(PatternTreeTest, AChangeInTheUsersFolderIsTakenUpAndTold)
{
    folder.makeFolder("User");
    open();

    folder.put("User/a.mid");

    EXPECT_TRUE(notifications.waitUntil([&] { return has("User\\a.mid"); }));
}

TEST_F(PatternTreeTest, AChangeInANewSubFolderIsTakenUpToo)
{
    folder.makeFolder("User");
    open();
    folder.makeFolder("User/New");
    ASSERT_TRUE(notifications.waitFor(1));

    folder.put("User/New/Deep/a.mid");
    EXPECT_TRUE(notifications.waitUntil([&] { return has("User\\New\\Deep\\a.mid"); }));
    folder.put("User/New/Deep/b.mid");

    EXPECT_TRUE(notifications.waitUntil([&] { return has("User\\New\\Deep\\b.mid"); }));
}

TEST_F(PatternTreeTest, AChangeElsewhereIsNotTold)
{
    folder.makeFolder("User");
    folder.makeFolder("Rock");
    folder.put("a.mid");
    folder.put("b.mid");
    open();

    folder.rename("a.mid", "Rock/a.mid");
    folder.rename("b.mid", "User/b.mid"); // told after it, had both been told

    ASSERT_TRUE(notifications.waitFor(1));
    EXPECT_TRUE(has("User\\b.mid"));
    EXPECT_EQ(notifications.count(), 1);
}

TEST_F(PatternTreeTest, WithoutAUsersFolderNothingIsWatched)
{
    folder.put("Rock/a.mid");
    open();
    EXPECT_FALSE(tree->isWatching());

    folder.makeFolder("User");
    tree->update();

    EXPECT_TRUE(tree->isWatching());
}

TEST_F(PatternTreeTest, TakingTheNotifyProcedureAwayEndsWatching)
{
    folder.makeFolder("User");
    open();
    EXPECT_TRUE(tree->isWatching());

    tree->setNotifyProc(nullptr);

    EXPECT_FALSE(tree->isWatching());
}

TEST_F(PatternTreeTest, AfterTheListenerIsDestroyedNothingIsWatchedAgain)
{
    folder.makeFolder("User");
    open();

    tree->listenerDestroyed();
    EXPECT_FALSE(tree->isWatching());
    tree->update();
    tree->setNotifyProc(notified);

    EXPECT_FALSE(tree->isWatching());
}

TEST_F(PatternTreeTest, ALibraryOpenedWithoutDescriptorsIsEmptyUntilThereAreSome)
{
    folder.put("User/a.mid");
    {
        const DescriptorLimit limit(0);
        open();
        EXPECT_EQ(leaves(), 0);
        EXPECT_FALSE(tree->isWatching());
    }

    tree->update();

    EXPECT_EQ(leaves(), 1);
    EXPECT_TRUE(tree->isWatching());
}

TEST_F(PatternTreeTest, AThousandFilesMakeAHandfulOfCallsAndTheRightTree)
{
    folder.makeFolder("User");
    open();

    for (int i = 0; i < 1000; ++i)
        folder.put("User/" + std::to_string(i) + ".mid", "");

    ASSERT_TRUE(notifications.waitUntil([&] { return leaves() == 1000; }));
    EXPECT_LE(notifications.count(), 10);
}

TEST_F(PatternTreeTest, TheUsersFolderMayVanishAndComeBack)
{
    folder.put("User/a.mid");
    open();

    folder.remove("User");
    ASSERT_TRUE(notifications.waitUntil([&] { return leaves() == 0; }));
    folder.put("User/b.mid");

    EXPECT_TRUE(notifications.waitUntil([&] { return has("User\\b.mid"); }));
    folder.put("User/c.mid");
    EXPECT_TRUE(notifications.waitUntil([&] { return has("User\\c.mid"); }));
}

TEST_F(PatternTreeTest, TheUsersFolderMayBeRenamed)
{
    folder.put("User/a.mid");
    open();

    folder.rename("User", "Other");

    EXPECT_TRUE(notifications.waitUntil([&] { return has("Other\\a.mid") && leaves() == 1; }));
}

TEST_F(PatternTreeTest, TheWholeLibraryMayVanish)
{
    folder.put("User/a.mid");
    open();

    folder.remove("");

    EXPECT_TRUE(notifications.waitUntil([&] { return leaves() == 0; }));
}

TEST_F(PatternTreeTest, ATreeMayGoWhileItsFolderChanges)
{
    folder.makeFolder("User");
    std::atomic<bool> stop = false;
    std::thread writer([&] {
        for (int i = 0; !stop; ++i)
            folder.put("User/" + std::to_string(i % 20) + ".mid", "");
    });
    for (int round = 0; round < 100; ++round) {
        PatternTree one;
        one.SetRoot(folder.path().c_str());
        one.setNotifyProc(notified);
        one.update();
    }
    stop = true;
    writer.join();
}

TEST_F(PatternTreeTest, LookingUpWhileTheTreeChangesIsSafe)
{
    folder.makeFolder("User");
    folder.put("Rock/a.mid");
    open();
    std::atomic<bool> stop = false;
    std::thread writer([&] {
        for (int i = 0; !stop; ++i) {
            folder.put("User/" + std::to_string(i % 20) + "/x.mid", "");
            folder.remove("User/" + std::to_string((i + 7) % 20));
        }
    });
    Korvanel::CMidiTrack track;
    for (int i = 0; i < 300; ++i) {
        EXPECT_TRUE(tree->LoadPattern("Rock", "a.mid", track));
        tree->LoadPattern("User\\3", "x.mid", track);
        tree->IsReadOnlyNode("User\\5\\x.mid");
        if (i % 50 == 0)
            tree->update();
    }
    stop = true;
    writer.join();
}

// The observer alone ------------------------------------------------------------------------------

namespace {

class CountingObserver : public ChangeObserver
{
public:
    explicit CountingObserver(const char* folder)
        : mFolder(folder)
    {
    }

    ~CountingObserver() override { endWatch(); }

    const char* GetObservedFolder() const override { return mFolder; }

    void OnChangeFolderContents() override { changes.add(); }

    Happenings changes;

private:
    const char* mFolder;
};

} // namespace

TEST(ChangeObserverTest, OnlyTheFirstMessageIsHandedOn)
{
    CountingObserver observer(nullptr);

    ChangeObserver::FNSubscriptionProc(0, 0, &observer);
    ChangeObserver::FNSubscriptionProc(2, 0, &observer);
    ChangeObserver::FNSubscriptionProc(1, 0, nullptr);
    EXPECT_EQ(observer.changes.count(), 0);

    ChangeObserver::FNSubscriptionProc(1, 0, &observer);
    EXPECT_EQ(observer.changes.count(), 1);
}

TEST(ChangeObserverTest, WithoutAFolderNothingIsWatched)
{
    CountingObserver none(nullptr);
    CountingObserver missing("/nowhere");

    none.StartWatch();
    missing.StartWatch();

    EXPECT_FALSE(none.isWatching());
    EXPECT_FALSE(missing.isWatching());
}

TEST(ChangeObserverTest, TheSubFolderUserIsWatched)
{
    const LibraryFolder folder;
    folder.makeFolder("User");
    CountingObserver observer(folder.path().c_str());
    observer.StartWatch();
    ASSERT_TRUE(observer.isWatching());

    folder.put("User/x");

    EXPECT_TRUE(observer.changes.waitFor(1));
}

TEST(ChangeObserverTest, StoppingEndsTheWatch)
{
    const LibraryFolder folder;
    folder.makeFolder("User");
    CountingObserver observer(folder.path().c_str());
    observer.StartWatch();

    observer.StopWatch();

    EXPECT_FALSE(observer.isWatching());
}
