// The library that all effects of the process share.
#include "effect/CLooper.h"
#include "library/PatternTree.h"
#include "shared/System/kvStream.h"
#include "tests/effect/Fakes.h"
#include "tests/support/LibraryFolder.h"
#include "tests/support/Waiting.h"

#include <gtest/gtest.h>

#include <atomic>
#include <memory>
#include <thread>

using Korvanel::ScopedLock;
using Korvanel::String;
using Korvanel::stringStream;

namespace {

/// An effect whose library is the given folder.
std::unique_ptr<CLooper> effectOn(const LibraryFolder& folder)
{
    auto effect = std::make_unique<CLooper>();
    effect->SetPatternsDir(folder.path().c_str());
    effect->Initialize(nullptr);
    return effect;
}

struct Counting : CLooper::Listener
{
    void loaded() override { ++loads; }

    void patternsChanged() override { changes.add(); }

    void patternSelected() override { ++selections; }

    int loads = 0;
    int selections = 0;
    Happenings changes;
};

bool hasPattern(const char* path)
{
    const auto tree = CLooper::patternTree();
    const ScopedLock hold(tree->lock());
    return tree->root()->FindLeaf(path, 0) != nullptr;
}

} // namespace

TEST(CLooperLibrary, TheFirstEffectToConnectOpensItAndTheLastToGoClosesIt)
{
    const LibraryFolder folder;
    EXPECT_EQ(CLooper::patternTree(), nullptr);
    auto first = effectOn(folder);
    const auto* tree = CLooper::patternTree().get();
    ASSERT_NE(tree, nullptr);
    auto second = effectOn(folder);
    EXPECT_EQ(CLooper::patternTree().get(), tree);

    first->Terminate();
    first.reset();
    EXPECT_EQ(CLooper::patternTree().get(), tree);
    second->Terminate();
    EXPECT_EQ(CLooper::patternTree().get(), tree) << "it goes with the effect";
    second.reset();

    EXPECT_EQ(CLooper::patternTree(), nullptr);
}

TEST(CLooperLibrary, ItsRootIsTheFirstEffectsFolder)
{
    const LibraryFolder folder;
    const LibraryFolder other;
    auto first = effectOn(folder);
    auto second = effectOn(other);

    second->SetPatternsDir("/elsewhere");

    EXPECT_STREQ(CLooper::patternTree()->GetRoot().c_str(), folder.path().c_str());
    EXPECT_STREQ(second->GetPatternsDir().c_str(), "/elsewhere");
}

TEST(CLooperLibrary, APatternIsChosenByItsStyleAndFile)
{
    const LibraryFolder folder;
    folder.put("Rock/Fills/a.mid", midiFileWithNote(41));
    auto effect = effectOn(folder);
    Counting listener;
    effect->AddLooperListener(&listener);

    effect->ChangePattern("Rock\\Fills", "a.mid");

    EXPECT_STREQ(effect->GetStyleName().c_str(), "Rock\\Fills");
    EXPECT_STREQ(effect->GetPatternName().c_str(), "a.mid");
    EXPECT_EQ(listener.loads, 1);
    EXPECT_EQ(listener.selections, 0);
    effect->Enable();
    ListQueue queue;
    effect->process(0, 479, queue);
    ASSERT_EQ(queue.events.size(), 1u);
    EXPECT_EQ(queue.events[0].data1, 41);
    effect->RemoveLooperListener(&listener);
}

TEST(CLooperLibrary, APatternThatIsNotThereOrDamagedChangesNothing)
{
    const LibraryFolder folder;
    folder.put("Rock/a.mid");
    folder.put("Rock/bad.mid", "MThd and so on");
    auto effect = effectOn(folder);
    effect->ChangePattern("Rock", "a.mid");
    Counting listener;
    effect->AddLooperListener(&listener);

    effect->ChangePattern("Rock", "b.mid");
    effect->ChangePattern("Rock", "bad.mid");
    effect->ChangePattern("Jazz", "c.mid");

    EXPECT_STREQ(effect->GetPatternName().c_str(), "a.mid");
    EXPECT_EQ(listener.loads, 0);
    effect->RemoveLooperListener(&listener);
}

TEST(CLooperLibrary, BeforeAnyEffectIsConnectedThereIsNothingToChoose)
{
    CLooper effect;

    effect.ChangePattern("Rock", "a.mid");

    EXPECT_STREQ(effect.GetPatternName().c_str(), "");
}

TEST(CLooperLibrary, EveryConnectedEffectIsToldOfAChangeOnTheDisk)
{
    const LibraryFolder folder;
    folder.makeFolder("User");
    auto first = effectOn(folder);
    auto second = effectOn(folder);
    CLooper unconnected;
    Counting told;
    Counting alsoTold;
    Counting notTold;
    first->AddLooperListener(&told);
    second->AddLooperListener(&alsoTold);
    unconnected.AddLooperListener(&notTold);

    folder.put("User/new.mid");

    EXPECT_TRUE(told.changes.waitUntil([] { return hasPattern("User\\new.mid"); }));
    EXPECT_TRUE(alsoTold.changes.waitFor(1));
    EXPECT_EQ(notTold.changes.count(), 0);
    first->RemoveLooperListener(&told);
    second->RemoveLooperListener(&alsoTold);
    unconnected.RemoveLooperListener(&notTold);
}

TEST(CLooperLibrary, AListenerMayDisconnectItsEffectWhenTold)
{
    const LibraryFolder folder;
    auto first = effectOn(folder);
    auto second = effectOn(folder);

    struct Leaving : CLooper::Listener
    {
        void patternsChanged() override { leaving->disconnect(); }

        CLooper* leaving = nullptr;
    } listener;

    listener.leaving = second.get();
    first->AddLooperListener(&listener);

    CLooper::patternTree()->updateAndNotify();

    first->RemoveLooperListener(&listener);
}

TEST(CLooperLibrary, TheStateKeepsTheLoadersLibraryAndBringsEverythingElse)
{
    const LibraryFolder folder;
    folder.put("Rock/a.mid", midiFileWithNote(41));
    auto effect = effectOn(folder);
    effect->ChangePattern("Rock", "a.mid");
    effect->setVeloPlus(7);
    stringStream state;
    effect->SaveTo(state);

    CLooper other;
    other.SetPatternsDir("/mine");
    stringStream chunk(state.text());
    other.LoadFrom(chunk);

    EXPECT_STREQ(other.GetPatternsDir().c_str(), "/mine");
    EXPECT_STREQ(other.GetStyleName().c_str(), "Rock");
    EXPECT_STREQ(other.GetPatternName().c_str(), "a.mid");
    EXPECT_EQ(other.getVeloPlus().value, 7);
}

TEST(CLooperLibrary, AStateThatWasLoadedIsSavedAsItWas)
{
    const LibraryFolder folder;
    folder.put("Rock/a.mid", midiFileWithNote(41));
    auto effect = effectOn(folder);
    effect->ChangePattern("Rock", "a.mid");
    stringStream first;
    effect->SaveTo(first);
    // The style's name has a place in the pattern's, filled with zeros: what loads has it once
    // only.
    stringStream chunk(first.text());
    effect->LoadFrom(chunk);
    stringStream second;
    effect->SaveTo(second);

    stringStream copy(second.text());
    effect->LoadFrom(copy);
    stringStream third;
    effect->SaveTo(third);

    EXPECT_EQ(third.text(), second.text());
    EXPECT_EQ(second.text().size() + 5, first.text().size()); // "/Rock"
}

TEST(CLooperLibrary, EffectsComeAndGoOnTwoThreadsWhileFilesChange)
{
    const LibraryFolder folder;
    folder.makeFolder("User");
    std::atomic<bool> stop = false;
    std::thread writer([&] {
        for (int i = 0; !stop; ++i)
            folder.put("User/" + std::to_string(i % 9) + ".mid");
    });
    const auto live = [&] {
        for (int i = 0; i < 40; ++i) {
            auto effect = effectOn(folder);
            Counting listener;
            effect->AddLooperListener(&listener);
            effect->ChangePattern("User", "3.mid");
            CLooper::patternTree()->updateAndNotify();
            effect->RemoveLooperListener(&listener);
            effect->Terminate();
        }
    };
    std::thread other(live);
    live();
    other.join();
    stop = true;
    writer.join();

    EXPECT_EQ(CLooper::patternTree(), nullptr);
}

TEST(CLooperLibrary, PlayingGoesOnWhilePatternsAndFilesChange)
{
    const LibraryFolder folder;
    for (const char* name : {"User/a.mid", "User/b.mid", "Rock/c.mid"})
        folder.put(name);
    auto effect = effectOn(folder);
    effect->Enable();
    std::atomic<bool> done = false;
    std::thread audio([&] {
        ListQueue queue;
        for (std::int32_t at = 0; !done; at += 64) {
            queue.events.clear();
            effect->process(at, at + 63, queue);
        }
    });
    std::thread writer([&] {
        for (int i = 0; !done; ++i) {
            folder.put("User/" + std::to_string(i % 5) + ".mid");
            folder.remove("User/" + std::to_string((i + 2) % 5) + ".mid");
        }
    });
    Counting listener;
    for (int i = 0; i < 100; ++i) {
        effect->AddLooperListener(&listener);
        effect->ChangePattern(i % 2 == 0 ? "User" : "Rock", i % 2 == 0 ? "a.mid" : "c.mid");
        stringStream state;
        effect->SaveTo(state);
        stringStream render;
        effect->SaveTrack(render, 3);
        effect->setVeloPlus(i);
        effect->RemoveLooperListener(&listener);
    }
    done = true;
    audio.join();
    writer.join();

    EXPECT_STREQ(effect->GetPatternName().c_str(), "c.mid");
}
