// The commands on libraries and state chunks, run as a user runs them.
#include "tests/host/cli/RunLooper.h"
#include "tests/support/LibraryFolder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <nlohmann/json.hpp>

namespace fs = std::filesystem;
using Json = nlohmann::json;

namespace {

bool has(const std::string& text, const std::string& part)
{
    return text.find(part) != std::string::npos;
}

std::vector<std::string> filesIn(const std::string& folder)
{
    std::vector<std::string> files;
    for (const fs::directory_entry& entry : fs::recursive_directory_iterator(folder))
        files.push_back(fs::relative(entry.path(), folder));
    std::sort(files.begin(), files.end());
    return files;
}

class LibraryCommand : public testing::Test
{
protected:
    LibraryFolder folder;
};

} // namespace

// Listing -----------------------------------------------------------------------------------------

TEST_F(LibraryCommand, ListsStylesWithTheirPatternsBarsAndDescriptions)
{
    folder.put("Rock/Fills/a.mid");
    folder.put("Rock/b.mid");
    folder.put("Rock/Rock.txt", "Loud and straight.\nMore of it.\n");

    const Outcome listed = runLooper({"library", folder.path()});

    EXPECT_EQ(listed.code, 0) << listed.err;
    EXPECT_EQ(listed.out, folder.path() + "  (2 patterns, 2 bars)\n"
                                          "  Rock  (2 patterns, 2 bars)  Loud and straight.\n"
                                          "    b  1 bar\n"
                                          "    Fills  (1 pattern, 1 bar)\n"
                                          "      a  1 bar\n");
}

TEST_F(LibraryCommand, ListsAsJson)
{
    folder.put("Rock/b.mid");
    folder.put("Rock/bad.mid", "x");

    const Json library = Json::parse(runLooper({"library", "--json", folder.path()}).out);

    EXPECT_EQ(library["patternCount"], 2);
    const Json rock = library["styles"][0];
    EXPECT_EQ(rock["name"], "Rock");
    EXPECT_EQ(rock["patterns"][0]["bars"], 1);
    EXPECT_EQ(rock["patterns"][0]["file"], folder / "Rock/b.mid");
    EXPECT_TRUE(has(rock["patterns"][1]["problem"], "is not a MIDI file"));
}

TEST_F(LibraryCommand, WithoutAFolderTheFactoryLibraryBesideThePlugInIsListed)
{
    const Outcome listed = runLooper({"library"});

    EXPECT_EQ(listed.code, 0);
    EXPECT_TRUE(has(listed.out, "(11 patterns, 20 bars)")) << listed.out;
}

TEST_F(LibraryCommand, WhatIsNoFolderIsRefused)
{
    expectRefused(runLooper({"library", "/nowhere"}), 2, "/nowhere: No such file or directory");
    folder.put("a.mid");
    expectRefused(runLooper({"library", folder / "a.mid"}), 2, "Not a directory");
}

// Checking ----------------------------------------------------------------------------------------

TEST_F(LibraryCommand, CheckingNamesEveryUnreadablePatternAndWhy)
{
    folder.put("Rock/good.mid");
    folder.put("Rock/empty.mid", "");
    folder.put("Jazz/cut.mid", midiFileWithNote(60).substr(0, 16));

    const Outcome checked = runLooper({"library", "check", folder.path()});

    EXPECT_EQ(checked.out, (folder / "Jazz/cut.mid") +
                               ": is damaged: a track does not begin with MTrk, or the file ends "
                               "too early\n" +
                               (folder / "Rock/empty.mid") +
                               ": is not a MIDI file (it does not begin with MThd)\n");
    expectRefused(checked, 2, "2 of 3 patterns cannot be played");
}

TEST_F(LibraryCommand, CheckingAGoodLibrarySaysSo)
{
    folder.put("Rock/good.mid");

    const Outcome checked = runLooper({"library", "check", folder.path()});

    EXPECT_EQ(checked.code, 0);
    EXPECT_EQ(checked.out, folder.path() + ": all 1 pattern can be played\n");
}

// Volumes -----------------------------------------------------------------------------------------

TEST_F(LibraryCommand, WhatIsPackedComesBackByteForByte)
{
    folder.put("Library/Rock/Fills/a.mid", midiFileWithNote(40));
    folder.put("Library/Rock/b.mid", std::string(100000, 'x') + std::string(1, '\0'));
    folder.put("Library/c.mid", "");
    folder.makeFolder("Library/Empty");

    EXPECT_EQ(runLooper({"library", "pack", folder / "Library", folder / "volume"}).code, 0);
    const Outcome unpacked = runLooper({"library", "unpack", folder / "volume", folder / "Again/"});

    EXPECT_EQ(unpacked.code, 0) << unpacked.err;
    EXPECT_TRUE(has(unpacked.out, "3 patterns in 3 styles")) << unpacked.out;
    ASSERT_EQ(filesIn(folder / "Again"), filesIn(folder / "Library"));
    for (const char* name : {"Rock/Fills/a.mid", "Rock/b.mid", "c.mid"})
        EXPECT_EQ(contentOf(folder / "Again/" + name), contentOf(folder / "Library/" + name));
}

TEST_F(LibraryCommand, UnpackingOverSomethingIsRefused)
{
    folder.put("Library/a.mid");
    folder.put("Full/mine.mid");
    runLooper({"library", "pack", folder / "Library", folder / "volume"});

    expectRefused(runLooper({"library", "unpack", folder / "volume", folder / "Full"}), 3,
                  "is there already, and not an empty folder");
    EXPECT_EQ(filesIn(folder / "Full"), std::vector<std::string>{"mine.mid"});
}

TEST_F(LibraryCommand, ADamagedVolumeIsRefusedAndLeavesNothing)
{
    folder.put("Library/Rock/a.mid");
    runLooper({"library", "pack", folder / "Library", folder / "volume"});
    const std::string whole = contentOf(folder / "volume");
    for (std::size_t length = 0; length < whole.size(); length += 7) {
        folder.put("cut", whole.substr(0, length));
        const Outcome refused = runLooper({"library", "unpack", folder / "cut", folder / "Out"});
        EXPECT_EQ(refused.code, 2) << length << refused.err;
    }

    EXPECT_EQ(filesIn(folder.path()).size(), 5u); // Library, Rock, a.mid, volume, cut
}

TEST_F(LibraryCommand, NamesThatLeadElsewhereAreRefused)
{
    const std::string header("Korvanel Rattlecorder Volume\x1a");
    const std::string end(4, '\0');
    for (const std::string& name :
         {std::string(".."), std::string("../x.mid"), std::string("/tmp/x.mid"),
          std::string("a\0b", 3), std::string(".")}) {
        const std::string length{static_cast<char>(name.size()), 0, 0, 0};
        folder.put("leaf", header + length + name + end + end + end);
        folder.put("style", header + end + length + name + end + end + end);

        expectRefused(runLooper({"library", "unpack", folder / "leaf", folder / "Out"}), 2,
                      "which no file can have");
        expectRefused(runLooper({"library", "unpack", folder / "style", folder / "Out"}), 2,
                      "which no file can have");
    }
    EXPECT_FALSE(fs::exists(folder / "Out"));
}

TEST_F(LibraryCommand, WhatIsNoVolumeIsRefused)
{
    folder.put("a.mid");
    expectRefused(runLooper({"library", "unpack", folder / "a.mid", folder / "Out"}), 2,
                  "is no volume");
    expectRefused(runLooper({"library", "unpack", folder / "nowhere", folder / "Out"}), 2,
                  "does not exist");
}

TEST_F(LibraryCommand, APackThatCannotBeWrittenKeepsTheOldVolume)
{
    folder.put("Library/a.mid");
    folder.put("volume", "old");

    expectRefused(runLooper({"library", "pack", "/nowhere", folder / "volume"}), 2, "/nowhere");
    expectRefused(runLooper({"library", "pack", folder / "Library", "/nowhere/volume"}), 3,
                  "/nowhere/volume");

    EXPECT_EQ(contentOf(folder / "volume"), "old");
}

// Names -------------------------------------------------------------------------------------------

TEST_F(LibraryCommand, PatternsAreShownByStyleAndName)
{
    folder.put("Rock/Fills/a.mid", midiFileWithNote(40));

    for (const char* name : {"Rock/Fills/a", "Rock/Fills/a.mid"}) {
        const Outcome shown = runLooper({"show", "--json", "--library", folder.path(), name});
        EXPECT_EQ(shown.code, 0) << shown.err;
        EXPECT_EQ(Json::parse(shown.out)["file"], folder / "Rock/Fills/a.mid");
    }
}

TEST_F(LibraryCommand, PatternsAreRenderedByStyleAndName)
{
    const Outcome rendered = runLooper({"render", "Rock/Straight Eight", "-o", folder / "out.mid"});

    EXPECT_EQ(rendered.code, 0) << rendered.err;
    EXPECT_EQ(contentOf(folder / "out.mid").substr(0, 4), "MThd");
}

TEST_F(LibraryCommand, PatternsArePlayedByStyleAndName)
{
    EXPECT_EQ(runLooper({"play", "Rock/Straight Eight", "--bars", "1", "--tempo", "400", "--device",
                         folder / "out"})
                  .code,
              0);
    EXPECT_GT(contentOf(folder / "out").size(), 13u * 3);
}

TEST_F(LibraryCommand, ANameThatIsNeitherIsRefused)
{
    expectRefused(runLooper({"show", "--library", folder.path(), "Rock/a"}), 2,
                  "Rock/a: is neither a file nor a pattern of the library " + folder.path());
}

// State chunks ------------------------------------------------------------------------------------

namespace {

std::string int32(int value)
{
    return {static_cast<char>(value), static_cast<char>(value >> 8), static_cast<char>(value >> 16),
            static_cast<char>(value >> 24)};
}

/// A chunk of a version from 1 to 6, with one note.
std::string chunkOf(int version)
{
    const std::vector<std::string> added{"",
                                         int32(2) + "/x" + int32(4) + "Rock" + midiFileWithNote(40),
                                         int32(9) + int32(3),
                                         int32(20) + int32(-10) + int32(-15) + int32(10) +
                                             int32(100) + int32(4),
                                         std::string(1, '\1'),
                                         std::string("\2\7\0", 3)};
    std::string chunk = int32(version);
    for (int i = 0; i < version; ++i)
        chunk += added[static_cast<std::size_t>(i)];
    return chunk;
}

} // namespace

TEST_F(LibraryCommand, AStateIsTakenApartFieldByField)
{
    folder.put("state", chunkOf(6));

    const Outcome dumped = runLooper({"state", "dump", "--json", folder / "state"});

    EXPECT_EQ(dumped.code, 0) << dumped.err;
    const Json state = Json::parse(dumped.out);
    std::map<std::string, Json> values;
    for (const Json& field : state["fields"])
        values[field["field"]] = field["value"];
    EXPECT_EQ(values["version"], 6);
    EXPECT_EQ(values["folder"], "/x");
    EXPECT_EQ(values["style"], "Rock");
    EXPECT_EQ(values["pattern"], "1 bars of 4/4, 1 events");
    EXPECT_EQ(values["channel"], 9);
    EXPECT_EQ(values["velocity"], -10);
    EXPECT_EQ(values["random strength"], 100);
    EXPECT_EQ(values["thru"], 1);
    EXPECT_EQ(values["tempo type"], 2);
    EXPECT_EQ(values["drag repeat"], 7);
    EXPECT_TRUE(state["problems"].empty());
}

TEST_F(LibraryCommand, EveryVersionsStateIsUnderstood)
{
    for (int version = 1; version <= 6; ++version) {
        folder.put("state", chunkOf(version));
        EXPECT_EQ(runLooper({"state", "dump", folder / "state"}).code, 0) << version;
    }
}

TEST_F(LibraryCommand, EveryTruncationOfAStateIsNamedWithItsPlace)
{
    const std::string whole = chunkOf(6);
    for (std::size_t length = 0; length < whole.size(); length += 5) {
        folder.put("state", whole.substr(0, length));
        expectRefused(runLooper({"state", "dump", folder / "state"}), 2, "the chunk ends inside");
    }
}

TEST_F(LibraryCommand, DamageInAStateIsNamedWithItsPlace)
{
    std::string chunk = chunkOf(6);
    chunk[18] = 'X'; // of "MThd"
    folder.put("state", chunk);
    expectRefused(runLooper({"state", "dump", folder / "state"}), 2,
                  "at byte 18: the pattern is no MIDI file");

    folder.put("state", chunkOf(6) + "more");
    expectRefused(runLooper({"state", "dump", folder / "state"}), 2,
                  "4 bytes follow that nobody reads");
    folder.put("state", int32(7));
    const Outcome newer = runLooper({"state", "dump", folder / "state"});
    EXPECT_TRUE(has(newer.err, "at byte 0: no looper of this time writes version 7")) << newer.err;
    expectRefused(runLooper({"state", "dump", "/nowhere"}), 2, "/nowhere: does not exist");
}
