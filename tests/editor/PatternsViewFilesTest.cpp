// The window's buttons and the styles' menu: adding, deleting, and the description.
#include "library/PatternTree.h"
#include "midi/CMidiTrack.h"
#include "platform/toolkit/Menu.h"
#include "tests/editor/BrowserFixture.h"

#include <unistd.h>

using toolkit::Menu;

namespace {

class PatternsViewFilesTest : public BrowserFixture
{
protected:
    /// Chooses an entry of the styles' menu as a user does.
    void chooseInMenu(const std::string& style, int downs)
    {
        const auto item = BrowserWindow::find(browser->styles(), style);
        const auto user = inMenu([this, downs] {
            for (int i = 0; i < downs; ++i)
                display->key("Down");
            display->key("Return");
        });
        // On a busy machine the keyboard may come to the window later than its menu: once more
        // then.
        for (int attempt = 0; attempt < 3 && browser->styles().editedItem() == 0; ++attempt) {
            display->click(cell(99, item), 3);
            toolkit::EventLoop::runUntil([&] { return browser->styles().editedItem() != 0; }, 3000);
        }
        ASSERT_NE(browser->styles().editedItem(), 0u);
    }

    Names menuStates() const
    {
        Names states;
        const auto menu = browser->view.contextMenuForStyles();
        for (const auto& item : menu->items())
            states.push_back(item.text + "|" + std::to_string(item.command) + "|" +
                             std::to_string(item.attributes));
        return states;
    }
};

} // namespace

// Patterns ----------------------------------------------------------------------------------------

TEST_F(PatternsViewFilesTest, APatternIsAddedBesideItsNamesakeAndShown)
{
    openBrowser();
    clickStyle("Rock");
    clickPattern("Rock\\Groove.mid");

    browser->view.AddPattern();

    EXPECT_TRUE(exists("Rock/Groove 1.mid"));
    EXPECT_EQ(contentOf(folder / "Rock/Groove.mid"), midiFileWithNote(61));
    EXPECT_EQ(BrowserWindow::shown(browser->patterns()),
              (Names{"Rock\\Groove 1.mid", "Rock\\Groove.mid", "Rock\\Intro.mid"}));
    EXPECT_EQ(BrowserWindow::selected(browser->patterns()), Names{"Rock\\Groove.mid"});
    EXPECT_EQ(browser->loads, 1);
    browser->effect.ChangePattern("Rock", "Groove 1.mid");
    EXPECT_EQ(browser->pattern(), "Groove 1.mid") << "it can be played";
}

TEST_F(PatternsViewFilesTest, WhatIsAddedIsThePatternAsItWasLoaded)
{
    openBrowser();
    clickStyle("Rock");
    clickPattern("Rock\\Groove.mid");
    browser->effect.setVeloPlus(20);

    browser->view.AddPattern();

    Korvanel::CMidiTrack track;
    Korvanel::stringStream stream(contentOf(folder / "Rock/Groove 1.mid"));
    ASSERT_EQ(track.Load(stream, nullptr, nullptr), 0);
    ASSERT_EQ(track.GetLen(), 1);
    EXPECT_EQ(track.GetFirst(), 0);
    EXPECT_EQ(track.GetKey(0), 61);
}

TEST_F(PatternsViewFilesTest, APatternIsAddedToAnotherStyle)
{
    openBrowser();
    browser->effect.ChangePattern("Rock", "Groove.mid");
    clickStyle("Jazz");

    browser->view.AddPattern();

    EXPECT_TRUE(exists("Jazz/Groove.mid"));
    EXPECT_EQ(browser->listed(), folder / "Jazz/");
}

TEST_F(PatternsViewFilesTest, WithoutAListedStyleOrANameNothingIsAdded)
{
    openBrowser();
    browser->effect.SetPatternName("Groove");
    browser->view.AddPattern();
    clickStyle("Jazz");
    browser->effect.SetPatternName("");
    browser->view.AddPattern();

    EXPECT_EQ(BrowserWindow::shown(browser->patterns()), Names{"Jazz\\Swing.mid"});
    EXPECT_EQ(newBeeps(), 0u);
}

TEST_F(PatternsViewFilesTest, APatternIsNotAddedOutsideTheListedStyle)
{
    openBrowser();
    clickStyle("Jazz");
    std::uint32_t refused = 0;
    for (const char* name : {"../Rock/Stolen", "..", "file:///tmp/A.mid", "a\\b"}) {
        browser->effect.SetPatternName(name);
        browser->view.AddPattern();
        EXPECT_EQ(newBeeps(), ++refused) << name;
    }
    EXPECT_EQ(toolkit::lastBeepDuration(), 60);
    EXPECT_FALSE(exists("Rock/Stolen.mid"));
}

TEST_F(PatternsViewFilesTest, AStyleThatHasGoneTakesNoPattern)
{
    openBrowser();
    clickStyle("Jazz");
    browser->effect.SetPatternName("Groove");
    folder.remove("Jazz");

    browser->view.AddPattern();

    EXPECT_EQ(newBeeps(), 1u);
    EXPECT_FALSE(exists("Jazz"));
}

TEST_F(PatternsViewFilesTest, WhatPlaysIsDeletedFromTheListedStyle)
{
    openBrowser();
    clickStyle("Rock");
    clickPattern("Rock\\Groove.mid");

    browser->view.DeletePattern();

    EXPECT_FALSE(exists("Rock/Groove.mid"));
    EXPECT_EQ(BrowserWindow::shown(browser->patterns()), Names{"Rock\\Intro.mid"});
    EXPECT_EQ(browser->pattern(), "Groove.mid") << "it plays on";
}

TEST_F(PatternsViewFilesTest, APatternOfASubStyleIsDeletedThereOnly)
{
    folder.put("Rock/End.mid");
    openBrowser();
    browser->effect.ChangePattern("Rock\\Fills", "End.mid");

    browser->view.DeletePattern();

    EXPECT_FALSE(exists("Rock/Fills/End.mid"));
    EXPECT_TRUE(exists("Rock/End.mid"));
}

TEST_F(PatternsViewFilesTest, WhatPlaysFromAnotherStyleIsNotDeleted)
{
    folder.put("Jazz/Groove.mid");
    openBrowser();
    browser->effect.ChangePattern("Rock", "Groove.mid");
    clickStyle("Jazz");

    browser->view.DeletePattern();

    EXPECT_TRUE(exists("Jazz/Groove.mid"));
    EXPECT_TRUE(exists("Rock/Groove.mid"));
    EXPECT_EQ(newBeeps(), 0u);
}

TEST_F(PatternsViewFilesTest, WhatCannotBeDeletedBeeps)
{
    folder.makeFolder("Rock/Folder.mid");
    openBrowser();
    clickStyle("Rock");
    std::uint32_t refused = 0;
    for (const char* name : {"Missing", "Folder", "../Jazz/Swing", ""}) {
        browser->effect.SetCurrentStyle("Rock");
        browser->effect.SetPatternName(name);
        browser->view.DeletePattern();
        EXPECT_EQ(newBeeps(), ++refused) << name;
    }
    EXPECT_EQ(toolkit::lastBeepDuration(), 60);
    EXPECT_TRUE(exists("Rock/Folder.mid"));
    EXPECT_TRUE(exists("Jazz/Swing.mid"));
}

// The styles' menu --------------------------------------------------------------------------------

TEST_F(PatternsViewFilesTest, TheMenuOffersWhatTheListedStyleAllows)
{
    openBrowser();
    EXPECT_EQ(menuStates(), (Names{"Add Style|1|0", "Delete Style|2|1", "Rename Style|3|1", "|0|64",
                                   "Show Info...|4|1"}));

    clickStyle("Rock");
    EXPECT_EQ(menuStates(), (Names{"Add Style|1|0", "Delete Style|2|0", "Rename Style|3|0", "|0|64",
                                   "Show Info...|4|1"}));

    folder.put("Rock/About.txt", "text");
    rescan();
    EXPECT_EQ(menuStates().back(), "Show Info...|4|0");
}

TEST_F(PatternsViewFilesTest, ThePatternsHaveNoMenu)
{
    openBrowser();
    EXPECT_EQ(browser->view.contextMenuForPatterns(), nullptr);
    clickStyle("Rock");
    clickPattern("Rock\\Intro.mid", 3);
    settle();

    browser->view.SelectContextualMenu(browser->control(101), 2);

    EXPECT_TRUE(exists("Rock/Intro.mid"));
    EXPECT_EQ(newBeeps(), 0u);
}

TEST_F(PatternsViewFilesTest, AStyleIsAddedByTheMenuAndNamedAtOnce)
{
    folder.makeFolder("Rock/New Style");
    folder.makeFolder("Rock/New Style 1");
    openBrowser();

    chooseInMenu("Rock", 1);

    EXPECT_TRUE(exists("Rock/New Style 2"));
    EXPECT_EQ(BrowserWindow::pathOf(browser->styles().editedItem()), "Rock\\New Style 2");
    EXPECT_EQ(browser->listed(), folder / "Rock/New Style 2/");
    typeName("Ballads");
    EXPECT_TRUE(exists("Rock/Ballads"));
    EXPECT_FALSE(exists("Rock/New Style 2"));
    EXPECT_EQ(browser->listed(), folder / "Rock/Ballads/");
}

TEST_F(PatternsViewFilesTest, WhatTheDiskTellsDoesNotEndTheNamingOfANewStyle)
{
    folder.put("User/One.mid");
    openBrowser();
    clickStyle("User");
    choose(1);
    ASSERT_NE(browser->styles().editedItem(), 0u);
    const int before = browser->changes;
    folder.put("User/Two.mid");
    ASSERT_TRUE(until([&] { return browser->changes > before; }));

    typeName("Mine");

    EXPECT_TRUE(exists("User/Mine"));
    EXPECT_TRUE(until([&] { return browser->listed() == folder / "User/Mine/"; }));
}

TEST_F(PatternsViewFilesTest, WithoutAListedStyleNoneIsAdded)
{
    openBrowser();

    choose(1);

    EXPECT_FALSE(exists("New Style"));
    EXPECT_EQ(newBeeps(), 0u);
}

TEST_F(PatternsViewFilesTest, NewStyle1000IsTheLast)
{
    openBrowser();
    folder.put("Rock/New Style", "");
    for (int n = 1; n <= 999; ++n)
        folder.put("Rock/New Style " + std::to_string(n), "");
    browser->selectStyle("Rock");

    choose(1);
    EXPECT_TRUE(std::filesystem::is_directory(folder / "Rock/New Style 1000"));
    EXPECT_EQ(newBeeps(), 0u);

    browser->styles().stopEditing(false);
    browser->selectStyle("Rock");
    choose(1);
    EXPECT_FALSE(exists("Rock/New Style 1001"));
    EXPECT_EQ(newBeeps(), 1u);
}

TEST_F(PatternsViewFilesTest, AStyleThatCannotBeAddedBeeps)
{
    openBrowser();
    clickStyle("Jazz");
    folder.remove("Jazz");

    choose(1);

    EXPECT_EQ(newBeeps(), 1u);
    EXPECT_EQ(browser->styles().editedItem(), 0u);
}

TEST_F(PatternsViewFilesTest, AStyleIsDeletedWithItsPatternsAndSubStyles)
{
    openBrowser();
    clickStyle("Rock");

    choose(2);

    EXPECT_FALSE(exists("Rock"));
    EXPECT_EQ(BrowserWindow::shown(browser->styles()), Names{"Jazz"});
    EXPECT_TRUE(browser->patterns().items().empty());
    EXPECT_EQ(newBeeps(), 0u);
}

TEST_F(PatternsViewFilesTest, AfterASubStyleTheFolderAroundItIsListed)
{
    openBrowser();
    browser->effect.ChangePattern("Rock\\Fills", "End.mid");

    choose(2);

    EXPECT_FALSE(exists("Rock/Fills"));
    EXPECT_EQ(browser->listed(), folder / "Rock/");
    EXPECT_EQ(BrowserWindow::selected(browser->styles()), Names{"Rock"});
}

TEST_F(PatternsViewFilesTest, WhatIsNoPatternKeepsItsStyle)
{
    folder.put("Rock/notes.doc", "text");
    openBrowser();
    clickStyle("Rock");

    choose(2);

    EXPECT_TRUE(exists("Rock/notes.doc"));
    EXPECT_FALSE(exists("Rock/Intro.mid"));
    EXPECT_EQ(browser->listed(), folder / "Rock/");
    EXPECT_TRUE(browser->patterns().items().empty());
}

TEST_F(PatternsViewFilesTest, NoStyleToDeleteBeeps)
{
    openBrowser();

    choose(2);

    EXPECT_EQ(newBeeps(), 1u);
    EXPECT_EQ(toolkit::lastBeepDuration(), 60);
}

TEST_F(PatternsViewFilesTest, AStyleThatTheLibraryHasLetGoOfIsNotDeletedByItsName)
{
    openBrowser();
    clickStyle("Rock");
    folder.rename("Rock", "Metal");
    CLooper::patternTree()->update();
    folder.put("Rock/Precious.mid");
    folder.put("Rock/Intro.mid");
    CLooper::patternTree()->update();

    choose(2);

    EXPECT_TRUE(exists("Rock/Precious.mid"));
    EXPECT_TRUE(exists("Rock/Intro.mid"));
    EXPECT_EQ(newBeeps(), 1u);
}

TEST_F(PatternsViewFilesTest, AStyleIsRenamedByTheMenu)
{
    openBrowser();
    clickStyle("Jazz");

    choose(3);
    EXPECT_EQ(BrowserWindow::pathOf(browser->styles().editedItem()), "Jazz");
    typeName("Swing");

    EXPECT_TRUE(exists("Swing/Swing.mid"));
}

TEST_F(PatternsViewFilesTest, NoStyleToRenameIsNoted)
{
    openBrowser();

    testing::internal::CaptureStderr();
    choose(3);

    EXPECT_EQ(testing::internal::GetCapturedStderr(), "RenameStyle: error -4971\n");
}

TEST_F(PatternsViewFilesTest, EntriesThatAreNoneDoNothing)
{
    openBrowser();
    clickStyle("Rock");

    for (const int index : {-1, 0, 4, 6})
        choose(index);

    EXPECT_EQ(browser->changes, 0);
    EXPECT_EQ(newBeeps(), 0u);
}

// The description ---------------------------------------------------------------------------------

TEST_F(PatternsViewFilesTest, TheDescriptionIsOpenedByTheDesktop)
{
    const TemporaryFolder tools;
    putContent(tools / "xdg-open", "#!/bin/sh\nprintf '%s' \"$1\" > \"$NOTES.new\"\n"
                                   "/bin/mv \"$NOTES.new\" \"$NOTES\"\n");
    std::filesystem::permissions(tools / "xdg-open", std::filesystem::perms::owner_all);
    Environment environment;
    environment.set("NOTES", tools / "notes");
    folder.put("Rock/About $(this).txt", "text");
    openBrowser();
    clickStyle("Rock");
    environment.set("PATH", tools.path());

    choose(5);

    EXPECT_TRUE(until([&] { return std::filesystem::exists(tools / "notes"); }));
    EXPECT_EQ(contentOf(tools / "notes"), folder / "Rock/About $(this).txt");
}

TEST_F(PatternsViewFilesTest, ADescriptionThatCannotBeOpenedIsNoted)
{
    folder.put("Rock/About.txt", "text");
    openBrowser();
    clickStyle("Rock");
    folder.remove("Rock/About.txt");

    testing::internal::CaptureStderr();
    choose(5);

    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              "Finder openFile: \"" + (folder / "Rock/About.txt") + "\" returns -43\n");
}

TEST_F(PatternsViewFilesTest, WithoutADescriptionNothingIsOpenedAndWithoutAStyleItBeeps)
{
    openBrowser();
    choose(5);
    EXPECT_EQ(newBeeps(), 1u);

    clickStyle("Jazz");
    choose(5);
    EXPECT_EQ(newBeeps(), 1u);
}
