#include "editor/PatternFile.h"
#include "effect/CLooper.h"
#include "platform/toolkit/Beep.h"
#include "shared/System/kvStream.h"
#include "tests/effect/Fakes.h"
#include "tests/support/Folders.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

using Korvanel::CMidiTrack;
namespace fs = std::filesystem;

namespace {

/// An effect with a pattern of one note, and a desktop of its own.
class ExportTest : public testing::Test
{
protected:
    ExportTest()
    {
        fs::create_directories(home / "config");
        fs::create_directories(desktop);
        environment.set("HOME", home.path());
        environment.set("XDG_CONFIG_HOME", home / "config");
        putContent(home / "config/user-dirs.dirs", "XDG_DESKTOP_DIR=\"$HOME/Schreibtisch\"\n");
        effect.set_track(pattern(240, {noteAt(0, 240, 36)}));
        beepsBefore = toolkit::beepCount();
    }

    void exportNamed(const std::string& name)
    {
        effect.SetPatternName(name.c_str());
        effect.ExportEvents();
    }

    bool isOnDesktop(const std::string& name) const { return fs::exists(desktop + "/" + name); }

    std::ptrdiff_t filesOnDesktop() const
    {
        return std::distance(fs::directory_iterator(desktop), {});
    }

    std::uint32_t beeps() const { return toolkit::beepCount() - beepsBefore; }

    CMidiTrack readBack(const std::string& name) const
    {
        Korvanel::stringStream stream(contentOf(desktop + "/" + name));
        CMidiTrack track;
        EXPECT_EQ(track.Load(stream, nullptr, nullptr), 0);
        return track;
    }

    TemporaryFolder home;
    std::string desktop = home / "Schreibtisch";
    Environment environment;
    CLooper effect;
    std::uint32_t beepsBefore = 0;
};

} // namespace

TEST_F(ExportTest, GrooveDotMidiBecomesGrooveAndThenGroove1)
{
    exportNamed("Groove.midi");
    EXPECT_TRUE(isOnDesktop("Groove.mid"));
    EXPECT_EQ(filesOnDesktop(), 1);

    exportNamed("Groove.midi");
    EXPECT_TRUE(isOnDesktop("Groove 1.mid"));
    EXPECT_EQ(filesOnDesktop(), 2);
}

TEST_F(ExportTest, APatternWithoutANameIsPattern)
{
    exportNamed("");
    EXPECT_TRUE(isOnDesktop("Pattern.mid"));
}

TEST_F(ExportTest, TheFileHoldsThePatternAsOftenAsItIsDragged)
{
    effect.setDnDRepeat(3);
    exportNamed("Groove.mid");

    const CMidiTrack track = readBack("Groove.mid");
    ASSERT_EQ(track.GetLen(), 3);
    EXPECT_EQ(track.GetLast(), 1920);
    EXPECT_EQ(track.lowKey, 36);
}

TEST_F(ExportTest, AFileThatWasWrittenBeeps30)
{
    exportNamed("Groove.mid");
    EXPECT_EQ(beeps(), 1u);
    EXPECT_EQ(toolkit::lastBeepDuration(), 30);
}

TEST_F(ExportTest, WhatIsOnTheDesktopIsNotTouched)
{
    putContent(desktop + "/Groove.mid", "mine");
    fs::create_directory(desktop + "/Groove 1.mid");
    fs::create_symlink(home / "target", desktop + "/Groove 2.mid");

    exportNamed("Groove.mid");

    EXPECT_EQ(contentOf(desktop + "/Groove.mid"), "mine");
    EXPECT_TRUE(fs::is_directory(desktop + "/Groove 1.mid"));
    EXPECT_FALSE(fs::exists(home / "target"));
    EXPECT_EQ(readBack("Groove 3.mid").GetLen(), 1);
}

TEST_F(ExportTest, TheLastNameThatIsTriedIsNumber999)
{
    putContent(desktop + "/Groove.mid", "");
    for (int n = 1; n <= 998; ++n)
        putContent(desktop + "/Groove " + std::to_string(n) + ".mid", "");
    exportNamed("Groove.mid");
    EXPECT_TRUE(isOnDesktop("Groove 999.mid"));
    EXPECT_EQ(toolkit::lastBeepDuration(), 30);

    exportNamed("Groove.mid");

    EXPECT_EQ(filesOnDesktop(), 1000);
    EXPECT_EQ(beeps(), 2u);
    EXPECT_EQ(toolkit::lastBeepDuration(), 60);
}

TEST_F(ExportTest, AFolderThatTakesNoFileBeeps60)
{
    EXPECT_FALSE(writeExportedFile(home / "missing", "Groove", "bytes"));
    fs::remove(desktop);
    fs::create_directory_symlink("/proc/self/task",
                                 desktop); // a folder in which nobody makes files

    exportNamed("Groove.mid");

    EXPECT_EQ(beeps(), 1u);
    EXPECT_EQ(toolkit::lastBeepDuration(), 60);
}

TEST_F(ExportTest, WithoutADesktopNothingHappens)
{
    fs::remove(desktop);
    exportNamed("Groove.mid");
    EXPECT_EQ(beeps(), 0u);
    EXPECT_FALSE(fs::exists(desktop));
}
