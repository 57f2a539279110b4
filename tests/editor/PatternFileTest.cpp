#include "editor/PatternFile.h"

#include "tests/support/Folders.h"

#include <gtest/gtest.h>

#include <filesystem>

namespace fs = std::filesystem;

TEST(DraggedFileName, IsThePatternsName)
{
    EXPECT_EQ(draggedFileName("Groove.mid"), "Groove.mid");
    EXPECT_EQ(draggedFileName("Straight Eight"), "Straight Eight");
}

TEST(DraggedFileName, NoNameIsUnknown)
{
    EXPECT_EQ(draggedFileName(""), "unknown.mid");
}

TEST(DraggedFileName, OfAFilesAddressItsOwnNameStays)
{
    EXPECT_EQ(draggedFileName("file:///home/anna/Loops/Groove.mid"), "Groove.mid");
    EXPECT_EQ(draggedFileName("file://"), "unknown.mid");
    EXPECT_EQ(draggedFileName("file:///home/anna/.."), "unknown.mid");
}

TEST(DraggedFileName, NeverLeavesItsFolder)
{
    EXPECT_EQ(draggedFileName("../../etc/passwd"), "..-..-etc-passwd");
    EXPECT_EQ(draggedFileName("6/8 Shuffle.mid"), "6-8 Shuffle.mid");
    EXPECT_EQ(draggedFileName("/"), "-");
    EXPECT_EQ(draggedFileName("."), "unknown.mid");
    EXPECT_EQ(draggedFileName(".."), "unknown.mid");
}

TEST(DraggedFileName, ANameTooLongKeepsItsExtension)
{
    const std::string name = draggedFileName(std::string(300, 'a') + ".mid");
    EXPECT_EQ(name, std::string(246, 'a') + ".mid");
    EXPECT_EQ(draggedFileName(std::string(300, 'a')), std::string(250, 'a'));
}

TEST(DraggedFileName, ANameTooLongIsNotCutWithinACharacter)
{
    // the cut at byte 246 would leave half of the umlaut
    EXPECT_EQ(draggedFileName(std::string(245, 'a') + "\xC3\xA4" + std::string(9, 'b') + ".mid"),
              std::string(245, 'a') + ".mid");
}

TEST(ExportedBaseName, LosesTheExtensionOfAMidiFile)
{
    EXPECT_EQ(exportedBaseName("Groove.mid"), "Groove");
    EXPECT_EQ(exportedBaseName("Groove.midi"), "Groove");
    EXPECT_EQ(exportedBaseName("Groove.mid.midi"), "Groove.mid");
}

TEST(ExportedBaseName, KeepsEveryOtherExtension)
{
    EXPECT_EQ(exportedBaseName("Groove.MID"), "Groove.MID");
    EXPECT_EQ(exportedBaseName("Groove.mid2"), "Groove.mid2");
    EXPECT_EQ(exportedBaseName("No. 5"), "No. 5");
    EXPECT_EQ(exportedBaseName("mid"), "mid");
}

TEST(ExportedBaseName, NoNameIsPattern)
{
    EXPECT_EQ(exportedBaseName(""), "Pattern");
    EXPECT_EQ(exportedBaseName("file:///home/anna/"), "Pattern");
}

TEST(ExportedBaseName, HasNoSlashes)
{
    EXPECT_EQ(exportedBaseName("file:///home/anna/Loops/Groove.mid"), "Groove");
    EXPECT_EQ(exportedBaseName("6/8 Shuffle.mid"), "6-8 Shuffle");
}

TEST(ExportedBaseName, LeavesRoomForANumber)
{
    EXPECT_EQ(exportedBaseName(std::string(300, 'a') + ".mid"), std::string(247, 'a'));
}

TEST(WriteDraggedFile, ReplacesAnOlderFile)
{
    const TemporaryFolder folder;
    putContent(folder / "Groove.mid", "a longer old file");
    EXPECT_TRUE(writeDraggedFile(folder / "Groove.mid", "new"));
    EXPECT_EQ(contentOf(folder / "Groove.mid"), "new");
    EXPECT_EQ(std::distance(fs::directory_iterator(folder.path()), {}), 1);
}

TEST(WriteDraggedFile, ReplacesALinkAndNotItsTarget)
{
    const TemporaryFolder folder;
    putContent(folder / "letter", "somebody's letter");
    fs::permissions(folder / "letter", fs::perms::owner_read);
    fs::create_symlink(folder / "letter", folder / "Groove.mid");

    EXPECT_TRUE(writeDraggedFile(folder / "Groove.mid", "new"));

    EXPECT_EQ(contentOf(folder / "letter"), "somebody's letter");
    EXPECT_FALSE(fs::is_symlink(folder / "Groove.mid"));
    EXPECT_EQ(contentOf(folder / "Groove.mid"), "new");
    EXPECT_NE(fs::status(folder / "Groove.mid").permissions() & fs::perms::owner_write,
              fs::perms::none); // not those of the letter
}

TEST(WriteDraggedFile, ALinkToNowhereMakesNothingThere)
{
    const TemporaryFolder folder;
    fs::create_symlink(folder / "target", folder / "Groove.mid");
    EXPECT_TRUE(writeDraggedFile(folder / "Groove.mid", "new"));
    EXPECT_FALSE(fs::exists(folder / "target"));
}

TEST(WriteDraggedFile, AFolderOfThatNameStays)
{
    const TemporaryFolder folder;
    fs::create_directory(folder / "Groove.mid");
    EXPECT_FALSE(writeDraggedFile(folder / "Groove.mid", "new"));
    EXPECT_TRUE(fs::is_directory(folder / "Groove.mid"));
}

TEST(WriteDraggedFile, TheLongestNameCanBeWritten)
{
    const TemporaryFolder folder;
    const std::string name = draggedFileName(std::string(1000, 'a') + ".mid");
    EXPECT_TRUE(writeDraggedFile(folder / name, "new"));
}
