#include "shared/System/kvModule.h"
#include "shared/System/kvStream.h"
#include "tests/effect/EffectFixture.h"

#include <gtest/gtest.h>

#include <cstring>
#include <filesystem>
#include <fstream>
#include <sys/stat.h>
#include <unistd.h>

using namespace Korvanel;
namespace fs = std::filesystem;

namespace {

struct Observer : IKVSSExStrumwerks::PatternObserver
{
    void patternChanged() override { ++told; }

    int told = 0;
};

/// A library folder with Rock/Intro.mid and Loose.mid, and an effect that uses it.
class Patterns : public testing::Test
{
protected:
    Patterns()
    {
        fs::create_directories(root / "Rock");
        write(root / "Rock" / "Intro.mid", pattern(240, {noteAt(0, 100, 50)}));
        write(root / "Loose.mid", pattern(240, {noteAt(0, 100, 51), noteAt(1000, 10, 52)}));
        effect.SetPatternsDir(root.c_str());
    }

    ~Patterns() override { fs::remove_all(root); }

    static void write(const fs::path& path, const CMidiTrack& track)
    {
        stringStream stream;
        track.Save(stream);
        std::ofstream(path, std::ios::binary) << stream.text();
    }

    bool choose(const std::string& name)
    {
        IKVSSExStrumwerks::Pattern record{};
        std::strncpy(record.name, name.c_str(), sizeof record.name - 1);
        return effect.SetCurrentPattern(&record);
    }

    std::string chosen()
    {
        IKVSSExStrumwerks::Pattern record{};
        return effect.GetCurrentPattern(&record) ? record.name : "(none)";
    }

    fs::path root = fs::temp_directory_path() / ("kv-patterns-" + std::to_string(::getpid()));
    CLooper effect;
};

} // namespace

TEST_F(Patterns, ALibraryNameLoadsItsFileAndIsReportedBack)
{
    ASSERT_TRUE(choose("Rock\\Intro"));
    EXPECT_EQ(chosen(), "Rock\\Intro");
    EXPECT_STREQ(effect.GetStyleName().c_str(), "Rock");
    EXPECT_STREQ(effect.GetPatternName().c_str(), "Intro");
}

TEST_F(Patterns, TheHostsChoiceIsLoadedAndNotSelected)
{
    Witness witness;
    effect.AddLooperListener(&witness);
    choose("Missing");
    EXPECT_EQ(witness.told, "");
    choose("Rock\\Intro");
    EXPECT_EQ(witness.told, "l");
    effect.RemoveLooperListener(&witness);
}

TEST_F(Patterns, TheLibraryIsWhereTheEffectSays)
{
    struct Elsewhere : CLooper
    {
        String GetPatternsDir() override { return folder.c_str(); }

        std::string folder;
    } elsewhere;

    elsewhere.folder = root;
    IKVSSExStrumwerks::Pattern record{0, 0, 0, "Rock\\Intro"};
    EXPECT_TRUE(elsewhere.SetCurrentPattern(&record));
}

TEST_F(Patterns, ANameWithoutAStyleKeepsTheStyle)
{
    effect.SetCurrentStyle("Jazz");
    ASSERT_TRUE(choose("Loose"));
    EXPECT_EQ(chosen(), "Jazz\\Loose");
}

TEST_F(Patterns, AFileNameIsReportedWholeAndHasNoStyle)
{
    effect.SetCurrentStyle("Jazz");
    const std::string name = "file://" + (root / "Loose.mid").string();
    ASSERT_TRUE(choose(name));
    EXPECT_EQ(chosen(), "\\" + name);
}

TEST_F(Patterns, TheRecordTellsMeterAndBars)
{
    CMidiTrack track = pattern(240, {noteAt(0, 2000)});
    track.numerator = 3;
    track.denominator = 8;
    effect.set_track(track);
    effect.SetPatternName("x");
    IKVSSExStrumwerks::Pattern record{};
    ASSERT_TRUE(effect.GetCurrentPattern(&record));
    EXPECT_EQ(record.numerator, 3);
    EXPECT_EQ(record.denominator, 8);
    EXPECT_EQ(record.bars, 6); // bars of 360
}

TEST_F(Patterns, WhatCannotBeReadChangesNothing)
{
    ASSERT_TRUE(choose("Rock\\Intro"));
    std::ofstream(root / "Text.mid") << "not a MIDI file";
    EXPECT_FALSE(choose("Missing"));
    EXPECT_FALSE(choose("Text"));
    EXPECT_FALSE(choose("file:///nonexistent"));
    EXPECT_FALSE(choose("file://" + root.string()));
    EXPECT_FALSE(effect.SetCurrentPattern(nullptr));
    EXPECT_FALSE(effect.GetCurrentPattern(nullptr));
    EXPECT_EQ(chosen(), "Rock\\Intro");
}

TEST_F(Patterns, ANameWithoutATerminatorIsNotReadPastItsEnd)
{
    IKVSSExStrumwerks::Pattern record{};
    std::memset(record.name, 'x', sizeof record.name);
    EXPECT_FALSE(effect.SetCurrentPattern(&record));
}

TEST_F(Patterns, WithoutAPatternThereIsNoName)
{
    EXPECT_EQ(chosen(), "(none)");
    choose("Rock\\Intro");
    effect.Clear();
    EXPECT_EQ(chosen(), "(none)");
    EXPECT_EQ(effect.GetMeasures(nullptr), 0);
}

TEST_F(Patterns, NamesThatDoNotFitSaySo)
{
    choose("Rock\\Intro");
    effect.SetCurrentStyle(std::string(259, 's').c_str());
    EXPECT_EQ(chosen(), "(none)");
    effect.SetCurrentStyle(std::string(253, 's').c_str());
    EXPECT_EQ(chosen(), std::string(253, 's') + "\\Intro");
}

TEST_F(Patterns, ANameThatIsTooLongForTheHostIsCut)
{
    choose("Rock\\Intro");
    effect.SetCurrentStyle(std::string(254, 's').c_str());
    EXPECT_EQ(chosen(), std::string(254, 's') + "\\Intr");
    effect.SetCurrentStyle(std::string(258, 's').c_str());
    EXPECT_EQ(chosen(), std::string(258, 's') + "\\");
}

TEST_F(Patterns, APipeIsNoPattern)
{
    const std::string pipe = (root / "pipe.mid").string();
    ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
    EXPECT_FALSE(choose("pipe"));
    EXPECT_FALSE(choose("file://" + pipe));
}

TEST_F(Patterns, ObserversHearOfAPatternFromAStreamOnceForEachTimeTheyWereAdded)
{
    Observer observer;
    EXPECT_FALSE(effect.AddObserver(nullptr));
    EXPECT_TRUE(effect.AddObserver(&observer));
    EXPECT_TRUE(effect.AddObserver(&observer));
    stringStream saved;
    pattern(240, {noteAt(0, 1)}).Save(saved);
    stringStream stream(saved.text());
    effect.LoadTrack(stream, "Dropped");
    EXPECT_EQ(observer.told, 2);
    EXPECT_STREQ(effect.GetPatternName().c_str(), "Dropped");
    EXPECT_TRUE(effect.RemoveObserver(&observer));
    stringStream again(saved.text());
    effect.LoadTrack(again, nullptr);
    EXPECT_EQ(observer.told, 2);
    EXPECT_STREQ(effect.GetPatternName().c_str(), ""); // the file has no name
}

TEST_F(Patterns, AfterTheLastObserverAnotherListenerIsTheFirst)
{
    Observer observer;
    effect.AddObserver(&observer);
    Witness witness;
    effect.AddLooperListener(&witness);
    effect.Enable();
    effect.process_input({0, 0xC0, 7, 0, 0, 0});
    EXPECT_EQ(witness.told, "u");
    effect.RemoveObserver(&observer);
    effect.process_input({0, 0xC0, 7, 0, 0, 0});
    EXPECT_EQ(witness.told, "up7");
    effect.RemoveLooperListener(&witness);
}

TEST_F(Patterns, ADamagedStreamChangesNothing)
{
    Observer observer;
    effect.AddObserver(&observer);
    choose("Rock\\Intro");
    stringStream stream("junk");
    effect.LoadTrack(stream, "Junk");
    EXPECT_EQ(observer.told, 0);
    EXPECT_EQ(chosen(), "Rock\\Intro");
    effect.RemoveObserver(&observer);
}

TEST_F(Patterns, NamesAreOfTheEffectAndItsPattern)
{
    choose("Rock\\Intro");
    effect.SetPatternName("Verse");
    effect.SetPatternName(nullptr);
    effect.SetStyleName("Pop");
    EXPECT_EQ(chosen(), "Pop\\Verse");
    stringStream stream;
    effect.save_track(stream);
    EXPECT_NE(stream.text().find("Verse"), std::string::npos);
}

TEST_F(Patterns, ThePlayedTrackIsPreparedAndTheSavedOneIsNot)
{
    write(root / "Long.mid", pattern(240, {noteAt(120, 10, 0), noteAt(860, 100, 0)}));
    choose("Long");
    effect.Initialize(nullptr);
    effect.Enable();
    ListQueue queue;
    effect.process(0, 1919, queue);
    EXPECT_EQ(queue.events.at(1).duration,
              440); // 100 and the 120 to the first, at twice the resolution
    effect.Terminate();
    stringStream stream;
    effect.save_track(stream);
    CMidiTrack saved;
    stringStream in(stream.text());
    ASSERT_EQ(saved.Load(in, nullptr, nullptr), 0);
    EXPECT_EQ(saved.events.at(1).duration, 100u);
}

TEST_F(Patterns, ADotMeansTheDefaultFolder)
{
    effect.SetPatternsDir(".");
    const fs::path holder(std::string(Module::GetFolderPath().c_str())); // ends in "/"
    const fs::path expected =
        holder.parent_path().parent_path().parent_path().parent_path() / "Loops";
    EXPECT_EQ(std::string(effect.GetPatternsDir().c_str()), expected.string());
    effect.SetPatternsDir("");
    EXPECT_TRUE(effect.GetPatternsDir().IsEmpty());
}

TEST_F(Patterns, ThereIsNoDocument)
{
    String path("kept");
    EXPECT_FALSE(effect.GetDocumentPath(&path));
    EXPECT_STREQ(path.c_str(), "kept");
}

TEST_F(Patterns, EveryChangeOfWhatPlaysIsANewRevision)
{
    const std::uint32_t atFirst = effect.patternRevision();
    effect.set_track(pattern(240, {noteAt(0)}));
    const std::uint32_t loaded = effect.patternRevision();
    effect.Clear();
    EXPECT_NE(loaded, atFirst);
    EXPECT_NE(effect.patternRevision(), loaded);
}
