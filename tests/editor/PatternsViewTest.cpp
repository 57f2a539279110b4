// Browsing: what the two lists show, and what plays then.
#include "editor/PatternsView.h"

#include "library/PatternTree.h"
#include "midi/CMidiTrack.h"
#include "tests/editor/BrowserFixture.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

using Korvanel::ScopedLock;
using Korvanel::DirectoryTrees::Leaf;
using Korvanel::DirectoryTrees::Tree;

namespace {

class PatternsViewTest : public BrowserFixture
{
};

/// Lengths stand first here, so that letters typed go to them.
constexpr const char* kLengthsFirst = R"(
    {"kind": "data browser", "id": 99, "bounds": [10, 10, 180, 250],
     "columns": [{"property": "styl", "title": "Style"}]},
    {"kind": "data browser", "id": 101, "bounds": [200, 10, 190, 250],
     "columns": [{"property": "leng", "title": "Bars", "width": 50},
                 {"property": "name", "title": "Pattern"}]})";

/// A MIDI file whose one note ends after so many bars of 4/4.
std::string midiFileOfBars(int bars)
{
    Korvanel::CMidiTrack track;
    track.ticksPerQuarter = 96;
    MfxEvent note{};
    note.type = MfxEvent::Note;
    note.key = 60;
    note.velocity = 100;
    note.duration = static_cast<std::uint32_t>(bars * 4 * 96);
    track.insert(note);
    Korvanel::stringStream stream;
    track.Save(stream);
    return stream.text();
}

} // namespace

// Names -------------------------------------------------------------------------------------------

TEST(PatternNames, TheExtensionIsAddedOnceAndTakenExactly)
{
    EXPECT_STREQ(AddMidiExtension("Groove").c_str(), "Groove.mid");
    EXPECT_STREQ(AddMidiExtension("Groove.mid").c_str(), "Groove.mid");
    EXPECT_STREQ(AddMidiExtension("Groove.midi").c_str(), "Groove.midi.mid");
    EXPECT_STREQ(AddMidiExtension("Groove.MID").c_str(), "Groove.MID.mid");
    EXPECT_STREQ(AddMidiExtension("").c_str(), ".mid");
    EXPECT_STREQ(TrimMidiExtension("Groove.mid").c_str(), "Groove");
    EXPECT_STREQ(TrimMidiExtension("Groove.mid.mid").c_str(), "Groove.mid");
    EXPECT_STREQ(TrimMidiExtension("Groove.midi").c_str(), "Groove.midi");
    EXPECT_STREQ(TrimMidiExtension("Groove.MID").c_str(), "Groove.MID");
    EXPECT_STREQ(TrimMidiExtension("mid").c_str(), "mid");
}

TEST_F(PatternsViewTest, TheNameOfWhatPlaysHasSlashesAndNoExtension)
{
    openBrowser();
    browser->effect.ChangePattern("Rock\\Fills", "End.mid");
    EXPECT_STREQ(browser->view.GetPatternName().c_str(), "Rock/Fills/End");

    browser->effect.SetCurrentStyle("Rock\\");
    browser->effect.SetPatternName("Odd.midi");
    EXPECT_STREQ(browser->view.GetPatternName().c_str(), "Rock/Odd.midi");
}

// The window --------------------------------------------------------------------------------------

TEST_F(PatternsViewTest, AttachingNeedsBothBrowsersAndHappensOnce)
{
    openBrowser();
    PatternsView other(&browser->effect, nullptr);

    EXPECT_FALSE(browser->view.AttachToWindow(browser->window.get())) << "attached already";
    EXPECT_FALSE(other.AttachToWindow(nullptr));
    const auto bare = make(R"({"kind": "data browser", "id": 99, "bounds": [10, 10, 180, 250],
                               "columns": [{"property": "styl", "title": "Style"}]},
                              {"kind": "push button", "id": 101, "bounds": [200, 10, 90, 24]})");
    EXPECT_FALSE(other.AttachToWindow(bare.get())) << "its second browser is a button";
    other.Update();
    other.UpdatePatternList();
    other.UpdateListItems(nullptr);
    other.AddListItems(nullptr);
    EXPECT_STREQ(other.GetCurrentlySelectedStyle().c_str(), "");
}

TEST_F(PatternsViewTest, AFreshWindowShowsTheStylesAndListsNone)
{
    openBrowser();

    EXPECT_EQ(BrowserWindow::shown(browser->styles()), (Names{"Jazz", "Rock"}));
    EXPECT_TRUE(browser->patterns().items().empty());
    EXPECT_EQ(browser->listed(), "");
    EXPECT_EQ(browser->styles().selectionFlags(), toolkit::DataBrowser::selectOnlyOne);
}

TEST_F(PatternsViewTest, WithoutALibraryTheBrowsersStayEmpty)
{
    browser = std::make_unique<BrowserWindow>(folder);
    browser->effect.Terminate();
    CLooper().Initialize(nullptr); // the last effect to go takes the library along
    ASSERT_EQ(CLooper::patternTree(), nullptr);

    openBrowser();
    browser->view.UpdateListItems(nullptr);
    browser->view.UpdatePatternList();

    EXPECT_TRUE(browser->styles().items().empty());
}

TEST_F(PatternsViewTest, OpeningTheWindowShowsWhatPlaysAndDoesNotPlayItAnew)
{
    browser = std::make_unique<BrowserWindow>(folder);
    browser->effect.ChangePattern("Rock\\Fills", "End.mid");
    ASSERT_EQ(browser->loads, 1);

    openBrowser();

    EXPECT_EQ(BrowserWindow::selected(browser->styles()), Names{"Rock\\Fills"});
    EXPECT_EQ(BrowserWindow::selected(browser->patterns()), Names{"Rock\\Fills\\End.mid"});
    EXPECT_EQ(browser->listed(), folder / "Rock/Fills/");
    EXPECT_EQ(browser->loads, 1);
}

TEST_F(PatternsViewTest, AViewThatComesBackToItsWindowListsAgain)
{
    openBrowser();
    clickStyle("Rock");
    clickPattern("Rock\\Intro.mid");
    browser->view.DetachFromWindow();
    EXPECT_EQ(browser->listed(), "");

    EXPECT_TRUE(browser->view.AttachToWindow(browser->window.get()));

    EXPECT_EQ(browser->listed(), folder / "Rock/");
    EXPECT_EQ(BrowserWindow::selected(browser->patterns()), Names{"Rock\\Intro.mid"});
}

TEST_F(PatternsViewTest, AWindowThatOutlivesItsViewIsInert)
{
    openBrowser();
    clickStyle("Rock");
    const auto kept = browser->window;
    const auto where = cell(101, BrowserWindow::find(browser->patterns(), "Rock\\Intro.mid"));
    browser->view.DetachFromWindow();

    display->click(where);
    settle();

    EXPECT_EQ(browser->pattern(), "");
}

TEST_F(PatternsViewTest, FiftyWindowsHoldNoNodeWhenTheyAreGone)
{
    struct Counted : Tree
    {
        Counted(Tree* parent, int* count)
            : Tree("Counted", parent)
            , gone(count)
        {
        }

        ~Counted() override { ++*gone; }

        int* gone;
    };

    struct CountedLeaf : Leaf
    {
        CountedLeaf(Tree* parent, int* count)
            : Leaf("Counted.mid", parent)
            , gone(count)
        {
        }

        ~CountedLeaf() override { ++*gone; }

        int* gone;
    };

    int gone = 0;
    browser = std::make_unique<BrowserWindow>(folder);
    const auto library = CLooper::patternTree();
    {
        const ScopedLock hold(library->lock());
        auto* style = new Counted(library->root(), &gone);
        style->AddLeaf(new CountedLeaf(style, &gone));
        library->root()->AddTree(style);
    }

    for (int time = 0; time < 50; ++time) {
        auto opened = make(BrowserWindow::kControls);
        ASSERT_TRUE(browser->attach(opened));
        opened.reset();
        browser->selectStyle("Counted");
        ASSERT_EQ(BrowserWindow::shown(browser->patterns()), Names{"Counted\\Counted.mid"});
        if (time % 3 == 0)
            browser->view.UpdateListItems(nullptr);
        if (time % 2 == 0) // as the user's click on the close box
            browser->window->dispose();
        browser->close();
    }
    EXPECT_EQ(gone, 0);

    library->update(); // neither is on the disk
    EXPECT_EQ(gone, 2);
}

// Choosing ----------------------------------------------------------------------------------------

TEST_F(PatternsViewTest, AClickOnAStyleListsItAndPlaysNothing)
{
    openBrowser();

    clickStyle("Rock");

    EXPECT_EQ(BrowserWindow::shown(browser->patterns()),
              (Names{"Rock\\Groove.mid", "Rock\\Intro.mid"}));
    EXPECT_EQ(browser->listed(), folder / "Rock/");
    EXPECT_EQ(browser->loads, 0);

    clickStyle("Jazz");
    EXPECT_EQ(BrowserWindow::shown(browser->patterns()), Names{"Jazz\\Swing.mid"});
}

TEST_F(PatternsViewTest, AClickOnAPatternPlaysItOnce)
{
    openBrowser();
    clickStyle("Rock");

    clickPattern("Rock\\Groove.mid");

    EXPECT_EQ(browser->loads, 1);
    EXPECT_EQ(browser->style(), "Rock");
    EXPECT_EQ(browser->pattern(), "Groove.mid");
    EXPECT_EQ(BrowserWindow::selected(browser->patterns()), Names{"Rock\\Groove.mid"});
    EXPECT_STREQ(browser->view.GetPatternName().c_str(), "Rock/Groove");
    Korvanel::stringStream saved;
    browser->effect.save_track(saved);
    EXPECT_NE(saved.text().find(std::string("\x90\x3d")), std::string::npos) << "its note";
}

TEST_F(PatternsViewTest, APatternOfASubStylePlaysUnderItsWholePath)
{
    openBrowser();
    const auto rock = BrowserWindow::find(browser->styles(), "Rock");
    display->click(browser->window->toScreen(browser->styles().disclosureBounds(rock).centre()));
    ASSERT_TRUE(until([&] { return browser->styles().isOpen(rock); }));

    clickStyle("Rock\\Fills");
    clickPattern("Rock\\Fills\\End.mid");

    EXPECT_EQ(browser->style(), "Rock\\Fills");
    EXPECT_EQ(browser->pattern(), "End.mid");
}

TEST_F(PatternsViewTest, TheArrowKeysPlayOnePatternAfterTheOther)
{
    openBrowser();
    clickStyle("Rock");
    clickPattern("Rock\\Groove.mid");

    display->key("Down");
    EXPECT_TRUE(until([&] { return browser->pattern() == "Intro.mid"; }));
    display->key("Up");
    EXPECT_TRUE(until([&] { return browser->pattern() == "Groove.mid"; }));
    EXPECT_EQ(browser->loads, 3);
}

TEST_F(PatternsViewTest, ADoubleClickOpensAStyle)
{
    openBrowser();
    const auto rock = BrowserWindow::find(browser->styles(), "Rock");
    display->click(cell(99, rock));
    display->click(cell(99, rock));

    EXPECT_TRUE(until([&] { return browser->styles().isOpen(rock); }));
    EXPECT_EQ(BrowserWindow::shown(browser->styles()), (Names{"Jazz", "Rock", "Rock\\Fills"}));
}

TEST_F(PatternsViewTest, APatternThatHasGoneFromTheDiskPlaysNothing)
{
    openBrowser();
    clickStyle("Rock");
    folder.remove("Rock/Intro.mid");

    clickPattern("Rock\\Intro.mid");

    EXPECT_EQ(browser->pattern(), "");
}

TEST_F(PatternsViewTest, ClosingAStyleAroundTheListedOneUnlistsItButLeavesThePatterns)
{
    openBrowser();
    browser->effect.ChangePattern("Rock\\Fills", "End.mid");
    const auto rock = BrowserWindow::find(browser->styles(), "Rock");

    browser->styles().closeContainer(rock);

    EXPECT_EQ(browser->listed(), "");
    EXPECT_EQ(BrowserWindow::shown(browser->patterns()), Names{"Rock\\Fills\\End.mid"});
    browser->view.UpdateListItems(nullptr);
    EXPECT_EQ(browser->listed(), folder / "Rock/Fills/") << "its path was kept";
}

TEST_F(PatternsViewTest, OnlyTheListedStyleIsDeselected)
{
    openBrowser();
    browser->selectStyle("Rock");
    const auto jazz = BrowserWindow::find(browser->styles(), "Jazz");

    browser->view.DeselectTree(static_cast<Tree*>(toNode(jazz)));
    EXPECT_EQ(browser->listed(), folder / "Rock/");

    browser->styles().setSelectedItems({}, toolkit::DataBrowser::Assign::assign);
    EXPECT_EQ(browser->listed(), "");
    EXPECT_TRUE(browser->patterns().items().empty());
}

// Following the effect ----------------------------------------------------------------------------

TEST_F(PatternsViewTest, TheHostsChoiceIsShown)
{
    openBrowser();
    IKVSSExStrumwerks::Pattern choice{0, 0, 0, "Rock\\Fills\\End"};

    ASSERT_TRUE(browser->effect.SetCurrentPattern(&choice));

    EXPECT_EQ(BrowserWindow::selected(browser->styles()), Names{"Rock\\Fills"});
    EXPECT_EQ(BrowserWindow::selected(browser->patterns()), Names{"Rock\\Fills\\End.mid"});
    EXPECT_EQ(browser->loads, 1);
}

TEST_F(PatternsViewTest, AStyleThatIsNotThereShowsTheNearestAndSelectsNoNamesakeInIt)
{
    folder.put("Rock/End.mid");
    openBrowser();
    browser->effect.SetCurrentStyle("Rock\\Gone\\Deeper");
    browser->effect.SetPatternName("End");

    browser->view.Update();

    EXPECT_EQ(BrowserWindow::selected(browser->styles()), Names{"Rock"});
    EXPECT_TRUE(BrowserWindow::selected(browser->patterns()).empty());
}

TEST_F(PatternsViewTest, WhatPlaysNoLongerIsNotSelectedAndCanBeChosenAgain)
{
    folder.put("Elsewhere.mid");
    openBrowser();
    clickStyle("Rock");
    clickPattern("Rock\\Intro.mid");
    IKVSSExStrumwerks::Pattern choice{};
    ("file://" + (folder / "Elsewhere.mid")).copy(choice.name, sizeof choice.name - 1);

    ASSERT_TRUE(browser->effect.SetCurrentPattern(&choice));

    EXPECT_TRUE(BrowserWindow::selected(browser->patterns()).empty());
    clickPattern("Rock\\Intro.mid");
    EXPECT_EQ(browser->pattern(), "Intro.mid");
}

TEST_F(PatternsViewTest, ThePatternListFollowsOnlyInTheListedStyle)
{
    openBrowser();
    browser->selectStyle("Rock");
    browser->effect.SetCurrentStyle("Jazz");
    browser->effect.SetPatternName("Swing");

    browser->view.UpdatePatternList();
    EXPECT_EQ(BrowserWindow::selected(browser->styles()), Names{"Rock"});
    EXPECT_TRUE(BrowserWindow::selected(browser->patterns()).empty());

    browser->effect.SetCurrentStyle("Rock");
    browser->effect.SetPatternName("Intro");
    browser->view.UpdatePatternList();
    EXPECT_EQ(BrowserWindow::selected(browser->patterns()), Names{"Rock\\Intro.mid"});
    EXPECT_EQ(browser->loads, 0);
}

// Following the library ---------------------------------------------------------------------------

TEST_F(PatternsViewTest, TheListedStyleAndWhatPlaysSurviveAChangeOfTheLibrary)
{
    openBrowser();
    browser->effect.ChangePattern("Rock\\Fills", "End.mid");
    browser->styles().openContainer(BrowserWindow::find(browser->styles(), "Jazz"));
    folder.put("Rock/Fills/Begin.mid");
    folder.makeFolder("Blues");

    rescan();

    EXPECT_EQ(BrowserWindow::shown(browser->styles()),
              (Names{"Blues", "Jazz", "Rock", "Rock\\Fills"}));
    EXPECT_TRUE(browser->styles().isOpen(BrowserWindow::find(browser->styles(), "Jazz")));
    EXPECT_EQ(BrowserWindow::selected(browser->styles()), Names{"Rock\\Fills"});
    EXPECT_EQ(BrowserWindow::shown(browser->patterns()),
              (Names{"Rock\\Fills\\Begin.mid", "Rock\\Fills\\End.mid"}));
    EXPECT_EQ(BrowserWindow::selected(browser->patterns()), Names{"Rock\\Fills\\End.mid"});
    EXPECT_EQ(browser->loads, 1) << "showing is not playing";
}

TEST_F(PatternsViewTest, OfAListedStyleThatHasGoneTheFolderAroundItIsListed)
{
    openBrowser();
    browser->effect.ChangePattern("Rock\\Fills", "End.mid");
    folder.remove("Rock/Fills");

    rescan();

    EXPECT_EQ(browser->listed(), folder / "Rock/");
    folder.remove("Rock");
    rescan();
    EXPECT_EQ(browser->listed(), "");
    EXPECT_TRUE(browser->patterns().items().empty());
}

TEST_F(PatternsViewTest, WhatTheUserPutsIntoTheLibraryAppears)
{
    folder.put("User/One.mid");
    openBrowser();
    clickStyle("User");

    folder.put("User/Two.mid");

    EXPECT_TRUE(until([&] {
        return BrowserWindow::shown(browser->patterns()) == Names{"User\\One.mid", "User\\Two.mid"};
    }));
}

TEST_F(PatternsViewTest, NodesThatTheLibraryHasLetGoOfAreStillShownUntilItTells)
{
    openBrowser();
    browser->effect.ChangePattern("Rock\\Fills", "End.mid");
    folder.remove("Rock/Fills/End.mid");
    CLooper::patternTree()->update();
    folder.remove("Rock");
    CLooper::patternTree()->update(); // neither was told

    browser->styles().updateItem();
    browser->patterns().updateItem();
    settle(); // all of it is drawn, lengths too

    EXPECT_EQ(browser->listed(), folder / "Rock/Fills/");
    EXPECT_EQ(BrowserWindow::shown(browser->patterns()), Names{"Rock\\Fills\\End.mid"});
}

TEST_F(PatternsViewTest, ALibraryThatWasClosedAndOpenedAgainTakesThePlaceOfTheOld)
{
    openBrowser();
    browser->effect.ChangePattern("Rock", "Intro.mid");
    browser->effect.Terminate();
    CLooper().Initialize(nullptr);
    ASSERT_EQ(CLooper::patternTree(), nullptr);
    settle();
    browser->effect.Initialize(nullptr);

    browser->view.Update();

    EXPECT_EQ(BrowserWindow::shown(browser->styles()), (Names{"Jazz", "Rock", "Rock\\Fills"}));
    EXPECT_EQ(BrowserWindow::selected(browser->patterns()), Names{"Rock\\Intro.mid"});
}

TEST_F(PatternsViewTest, TwoWindowsShowOneLibraryAndPlayTheirOwn)
{
    openBrowser();
    BrowserWindow other(folder);
    ASSERT_TRUE(other.attach(make(BrowserWindow::kControls)));
    clickStyle("Rock");
    clickPattern("Rock\\Intro.mid");
    other.selectStyle("Jazz");
    EXPECT_EQ(other.pattern(), "");
    EXPECT_EQ(browser->listed(), folder / "Rock/");

    folder.put("Jazz/Bebop.mid");
    rescan();

    EXPECT_EQ(BrowserWindow::shown(other.patterns()),
              (Names{"Jazz\\Bebop.mid", "Jazz\\Swing.mid"}));
    EXPECT_EQ(BrowserWindow::selected(browser->patterns()), Names{"Rock\\Intro.mid"});
    EXPECT_EQ(other.pattern(), "");
}

// Lengths -----------------------------------------------------------------------------------------

TEST_F(PatternsViewTest, LengthsAreBarsReadFromTheFileEachTime)
{
    folder.put("Rock/Groove.mid", midiFileOfBars(3));
    openBrowser(kLengthsFirst);
    clickStyle("Rock");
    clickPattern("Rock\\Intro.mid");

    display->type("3");
    EXPECT_TRUE(until([&] { return browser->pattern() == "Groove.mid"; }));

    toolkit::EventLoop::runUntil([] { return false; }, 1200); // the next letter begins anew
    folder.put("Rock/Intro.mid", midiFileOfBars(7));
    display->type("7");
    EXPECT_TRUE(until([&] { return browser->pattern() == "Intro.mid"; }));
}

TEST_F(PatternsViewTest, WhatIsNoPatternHasNoLengthAndHoldsNothingUp)
{
    folder.put("Rock/Bad.mid", "no MIDI at all");
    folder.put("Rock/Empty.mid", "");
    folder.put("Rock/Huge.mid", midiFileOfBars(9));
    folder.put("Rock/Pipe.mid");
    std::filesystem::resize_file(folder / "Rock/Huge.mid", std::uintmax_t{1} << 33);
    openBrowser(kLengthsFirst);
    folder.remove("Rock/Pipe.mid");
    ASSERT_EQ(::mkfifo((folder / "Rock/Pipe.mid").c_str(), 0600), 0);
    clickStyle("Rock");
    clickPattern("Rock\\Groove.mid");
    settle();

    display->type("9");
    settle(); // all are drawn and looked through, without waiting for the pipe

    EXPECT_EQ(BrowserWindow::shown(browser->patterns()).size(), 6u);
    EXPECT_EQ(BrowserWindow::selected(browser->patterns()), Names{"Rock\\Groove.mid"});
}
