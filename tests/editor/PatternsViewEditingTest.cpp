// Names edited in place, also while the library changes under the user's hands.
#include "library/PatternTree.h"
#include "tests/editor/BrowserFixture.h"

namespace {

class PatternsViewEditingTest : public BrowserFixture
{
};

} // namespace

TEST_F(PatternsViewEditingTest, APatternIsRenamedWithoutItsExtensionInSight)
{
    openBrowser();
    clickStyle("Rock");
    clickPattern("Rock\\Intro.mid");
    display->key("F2");
    ASSERT_TRUE(until([&] { return browser->patterns().editedItem() != 0; }));
    settle();

    display->key("End");
    typeName("x");

    EXPECT_TRUE(exists("Rock/Introx.mid"));
    EXPECT_FALSE(exists("Rock/Intro.mid"));
    EXPECT_EQ(BrowserWindow::shown(browser->patterns()),
              (Names{"Rock\\Groove.mid", "Rock\\Introx.mid"}));
    EXPECT_EQ(newBeeps(), 0u);
}

TEST_F(PatternsViewEditingTest, APatternNamedFillIsStoredAsFillMid)
{
    openBrowser();
    clickStyle("Rock");
    editPattern("Rock\\Intro.mid");

    typeName("Fill");

    EXPECT_TRUE(exists("Rock/Fill.mid"));
    EXPECT_EQ(BrowserWindow::shown(browser->patterns()),
              (Names{"Rock\\Groove.mid", "Rock\\Fill.mid"}))
        << "it keeps its place until the library is read again";
}

TEST_F(PatternsViewEditingTest, AnExtensionThatIsTypedBelongsToTheName)
{
    openBrowser();
    clickStyle("Rock");
    editPattern("Rock\\Intro.mid");

    typeName("Fill.mid");

    EXPECT_TRUE(exists("Rock/Fill.mid.mid"));
}

TEST_F(PatternsViewEditingTest, AStyleIsStoredAsTypedAndStaysListed)
{
    openBrowser();
    clickStyle("Rock");
    editStyle("Rock");

    typeName("Metal.mid");

    EXPECT_TRUE(exists("Metal.mid/Intro.mid"));
    EXPECT_EQ(browser->listed(), folder / "Metal.mid/");
    rescan();
    EXPECT_EQ(browser->listed(), folder / "Metal.mid/");
    EXPECT_EQ(newBeeps(), 0u);
}

TEST_F(PatternsViewEditingTest, WhatCannotBeANameBeepsAndChangesNothing)
{
    openBrowser();
    clickStyle("Rock");
    std::uint32_t refused = 0;
    for (const char* name : {".", "..", "../Jazz/Stolen", "a/b", "a\\b", ".hidden"}) {
        editPattern("Rock\\Intro.mid");
        typeName(name);
        editStyle("Rock");
        typeName(name);
        refused += 2;
        EXPECT_EQ(newBeeps(), refused) << name;
        EXPECT_EQ(toolkit::lastBeepDuration(), 60);
    }
    EXPECT_TRUE(exists("Rock/Intro.mid"));
    EXPECT_FALSE(exists("Jazz/Stolen.mid"));
}

TEST_F(PatternsViewEditingTest, NothingIsOverwritten)
{
    openBrowser();
    clickStyle("Rock");
    editPattern("Rock\\Intro.mid");
    typeName("Groove");
    editStyle("Jazz");
    typeName("Rock");

    EXPECT_EQ(newBeeps(), 2u);
    EXPECT_EQ(contentOf(folder / "Rock/Groove.mid"), midiFileWithNote(61));
    EXPECT_TRUE(exists("Rock/Intro.mid"));
    EXPECT_TRUE(exists("Jazz/Swing.mid"));
}

TEST_F(PatternsViewEditingTest, AnEmptiedOrUntouchedNameAndEscapeChangeNothing)
{
    openBrowser();
    clickStyle("Rock");
    editPattern("Rock\\Intro.mid");
    settle();
    display->key("BackSpace");
    typeName("");
    editPattern("Rock\\Intro.mid");
    typeName("");
    editPattern("Rock\\Intro.mid");
    settle();
    display->type("Other");
    display->key("Escape");
    ASSERT_TRUE(until([&] { return browser->patterns().editedItem() == 0; }));

    EXPECT_TRUE(exists("Rock/Intro.mid"));
    EXPECT_EQ(newBeeps(), 0u);
}

TEST_F(PatternsViewEditingTest, ANameThatIsNoUtf8StaysUntilAnotherIsTyped)
{
    folder.put("Rock/\xff.mid");
    openBrowser();
    clickStyle("Rock");
    editPattern("Rock\\\xff.mid");
    typeName("");
    EXPECT_TRUE(exists("Rock/\xff.mid"));

    editPattern("Rock\\\xff.mid");
    typeName("Fill");
    EXPECT_FALSE(exists("Rock/\xff.mid"));
    EXPECT_TRUE(exists("Rock/Fill.mid"));
}

TEST_F(PatternsViewEditingTest, Utf8PassesAsItIs)
{
    folder.put("Rock/\xc3\xa4\xe2\x99\xaf.mid");
    openBrowser();
    clickStyle("Rock");
    editPattern("Rock\\\xc3\xa4\xe2\x99\xaf.mid");
    settle();
    display->key("End");
    typeName("x");

    EXPECT_TRUE(exists("Rock/\xc3\xa4\xe2\x99\xafx.mid"));
}

TEST_F(PatternsViewEditingTest, LengthsAreNotEdited)
{
    openBrowser();
    clickStyle("Rock");
    const auto intro = BrowserWindow::find(browser->patterns(), "Rock\\Intro.mid");

    EXPECT_EQ(browser->patterns().editItem(intro, toolkit::fourCharCode("leng")),
              toolkit::propertyNotSupportedErr);
}

TEST_F(PatternsViewEditingTest, AChangeOfTheLibraryWaitsForTheUserToFinish)
{
    openBrowser();
    clickStyle("Rock");
    clickPattern("Rock\\Intro.mid");
    browser->effect.SetPatternName("Groove");
    editPattern("Rock\\Intro.mid");
    settle();
    display->type("Fi");
    settle();
    folder.put("Rock/New.mid");
    rescan();
    EXPECT_NE(browser->patterns().editedItem(), 0u);
    EXPECT_EQ(BrowserWindow::selected(browser->patterns()), Names{"Rock\\Intro.mid"});

    typeName("ll");

    EXPECT_TRUE(exists("Rock/Fill.mid"));
    EXPECT_TRUE(until([&] { return browser->patterns().items().size() == 3; }));
    EXPECT_NE(BrowserWindow::find(browser->patterns(), "Rock\\New.mid"), 0u);
    EXPECT_EQ(BrowserWindow::selected(browser->patterns()), Names{"Rock\\Groove.mid"});
}

TEST_F(PatternsViewEditingTest, EditingEndsWithThePatternThatHasGone)
{
    openBrowser();
    clickStyle("Rock");
    editPattern("Rock\\Intro.mid");
    settle();
    display->type("Fill");
    settle();
    folder.remove("Rock/Intro.mid");

    rescan();

    EXPECT_EQ(browser->patterns().editedItem(), 0u);
    EXPECT_EQ(BrowserWindow::shown(browser->patterns()), Names{"Rock\\Groove.mid"});
    EXPECT_FALSE(exists("Rock/Fill.mid"));
}

TEST_F(PatternsViewEditingTest, OfAPatternThatWentUnnoticedOnlyTheBeepIsHeard)
{
    openBrowser();
    clickStyle("Rock");
    editPattern("Rock\\Intro.mid");
    folder.rename("Rock/Intro.mid", "Rock/Moved.mid");

    typeName("Fill");

    EXPECT_EQ(newBeeps(), 1u);
    EXPECT_TRUE(exists("Rock/Moved.mid"));
    EXPECT_FALSE(exists("Rock/Fill.mid"));
}

TEST_F(PatternsViewEditingTest, WhatHasTakenThePlaceOfTheEditedPatternIsNotRenamed)
{
    openBrowser();
    clickStyle("Rock");
    editPattern("Rock\\Intro.mid");
    folder.remove("Rock/Intro.mid");
    CLooper::patternTree()->update(); // by another part of the process, which tells later
    folder.put("Rock/Intro.mid", "another");
    CLooper::patternTree()->update();

    typeName("Fill");

    EXPECT_EQ(newBeeps(), 1u);
    EXPECT_EQ(contentOf(folder / "Rock/Intro.mid"), "another");
    EXPECT_FALSE(exists("Rock/Fill.mid"));
}

TEST_F(PatternsViewEditingTest, ClosingTheWindowWhileANameIsEditedRenamesNothing)
{
    openBrowser();
    clickStyle("Rock");
    editPattern("Rock\\Intro.mid");
    settle();
    display->type("Fill");
    settle();
    folder.put("Rock/New.mid");
    rescan();

    browser->close();
    settle();

    EXPECT_TRUE(exists("Rock/Intro.mid"));
    EXPECT_FALSE(exists("Rock/Fill.mid"));
}

TEST_F(PatternsViewEditingTest, AnotherWindowShowsTheNewNameToo)
{
    openBrowser();
    BrowserWindow other(folder);
    ASSERT_TRUE(other.attach(make(BrowserWindow::kControls)));
    other.selectStyle("Rock");
    clickStyle("Rock");
    editStyle("Rock");

    typeName("Metal");

    EXPECT_EQ(BrowserWindow::shown(other.styles()), (Names{"Jazz", "Metal"}));
    rescan();
    EXPECT_EQ(other.listed(), folder / "Metal/");
}
