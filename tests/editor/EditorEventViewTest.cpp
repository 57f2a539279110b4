// The event view in the editor's window: what makes it draw, its menu, and the buttons above it.
#include "editor/EventView.h"
#include "editor/PatternsView.h"
#include "tests/editor/EditorFixture.h"
#include "tests/platform/toolkit/MenuUser.h"

#include <filesystem>

namespace fs = std::filesystem;
using toolkit::operator""_4cc;

namespace {

constexpr unsigned kPlaying = 0xFFFF80;
constexpr unsigned kSilent = 0xC0C080;
constexpr unsigned kNote = 0x000000; ///< of a key that is no drum's

class EditorEventView : public EditorFixture
{
protected:
    void openPlaying()
    {
        effect->Enable();
        open();
        ASSERT_TRUE(shows(300, 100, kPlaying));
    }

    /// Waits for a colour at a place in the view.
    bool shows(int x, int y, unsigned color)
    {
        const toolkit::Rect place = control(108).bounds();
        return until([&] { return display->pixel(onScreen({place.x + x, place.y + y})) == color; });
    }

    bool waitsToBeDrawn() const { return !view->eventView()->copyInvalidRegion().IsEmpty(); }

    /// Everything that was asked for is drawn.
    void draw()
    {
        ASSERT_TRUE(until([this] { return !waitsToBeDrawn(); }));
        settle();
        ASSERT_FALSE(waitsToBeDrawn());
    }

    std::unique_ptr<toolkit::Timer> inMenu(std::vector<std::string> keys)
    {
        isPressed = false;
        return ::inMenu(*display, [this, keys = std::move(keys)] {
            for (const std::string& key : keys)
                display->key(key);
            isPressed = true;
        });
    }

    toolkit::Status contextualMenu(int id)
    {
        toolkit::Event click({"cntl"_4cc, 12});
        click.set("----"_4cc, &control(id));
        return view->performContextualMenu(click);
    }

    /// A desktop of the tests' own.
    void makeDesktop()
    {
        environment.set("HOME", home.path());
        environment.set("XDG_CONFIG_HOME", home / "config");
        fs::create_directory(home / "Desktop");
    }

    bool isExported(const std::string& name) const { return fs::exists(home / "Desktop/" + name); }

    TemporaryFolder home;
    Environment environment;
    bool isPressed = false; ///< what inMenu was told
};

} // namespace

// What it shows -----------------------------------------------------------------------------------

TEST_F(EditorEventView, StandsInItsControl)
{
    openPlaying();

    EXPECT_EQ(view->eventView()->control(), &control(108));
    EXPECT_TRUE(shows(687, 0, 0xC0C0C0)); // the frame
    EXPECT_TRUE(shows(687, 195, 0xC0C0C0));
}

TEST_F(EditorEventView, FillsItsControlAtEveryScale)
{
    openPlaying();
    for (const double scale : {1.3333, 13.0 / 12, 0.75}) {
        view->window()->setScale(scale);
        const toolkit::Rect covered = control(108).pixelBounds();
        const toolkit::Point corner = onScreen({0, 0});
        const auto shown = [&](int x, int y) {
            return display->pixel({corner.x + covered.x + x, corner.y + covered.y + y});
        };
        const auto isNear = [&](int x, int y, unsigned color) { // shrunk, the frame is mixed in
            return until([&] { return (shown(x, y) & 0xE0E0C0) == (color & 0xE0E0C0); });
        };
        EXPECT_TRUE(isNear(covered.width - 3, 60, kPlaying)) << scale;
        EXPECT_TRUE(isNear(300, covered.height - 3, kPlaying)) << scale;
        EXPECT_NE(shown(covered.width - 1, covered.height - 1), 0x1d2025u) << scale;
        EXPECT_EQ(shown(covered.width + 1, covered.height - 1), 0x1d2025u) << scale;
    }
}

TEST_F(EditorEventView, ShowsAPatternThatIsLoaded)
{
    openPlaying();
    // The inner rectangle is 686 x 194. Of that 24 are the header, and a fifth of the rest, 34, is
    // the row of the only key, at the bottom. Its note is a quarter of the bar.
    ASSERT_TRUE(shows(100, 170, kPlaying));

    effect->ChangePattern("Rock", "a.mid");

    EXPECT_TRUE(shows(100, 170, kNote));
    EXPECT_TRUE(shows(200, 170, kPlaying));
}

TEST_F(EditorEventView, IsDrawnAnewWhenTheEffectTellsOfSomething)
{
    openPlaying();
    for (const auto tell : {&CLooperView::loaded, &CLooperView::update}) {
        draw();
        ((*view).*tell)();
        EXPECT_TRUE(waitsToBeDrawn());
    }
}

TEST_F(EditorEventView, IsDrawnAnewAfterASwitchAndNotAfterWhatIsNone)
{
    openPlaying();
    draw();
    view->performCheckbox(110, true);
    EXPECT_FALSE(waitsToBeDrawn());

    view->performCheckbox(111, true);
    EXPECT_TRUE(waitsToBeDrawn());
}

TEST_F(EditorEventView, ThruByAClickIsSeenInItsBackground)
{
    openPlaying();
    click(102);
    EXPECT_TRUE(shows(300, 100, kSilent));
}

TEST_F(EditorEventView, ThruByAHostsAutomationIsSeenInItsBackground)
{
    openPlaying();
    effect->setThru(true);
    EXPECT_TRUE(shows(300, 100, kSilent));
    effect->setThru(false);
    EXPECT_TRUE(shows(300, 100, kPlaying));
}

// Its menu ----------------------------------------------------------------------------------------

TEST_F(EditorEventView, TheMenuExportsThePatternToTheDesktop)
{
    makeDesktop();
    open();
    effect->ChangePattern("Rock", "a.mid");
    display->moveTo(onScreen(control(108).bounds().centre()));
    settle();

    const auto user = inMenu({"Down", "Return"});

    EXPECT_EQ(contextualMenu(108), toolkit::noErr);
    EXPECT_TRUE(isExported("a.mid"));
}

TEST_F(EditorEventView, AMenuThatIsLeftIsAnUnhandledClick)
{
    makeDesktop();
    open();
    effect->ChangePattern("Rock", "a.mid");
    display->moveTo(onScreen(control(108).bounds().centre()));
    settle();

    const auto user = inMenu({"Escape"});

    EXPECT_EQ(contextualMenu(108), toolkit::eventNotHandledErr);
    EXPECT_FALSE(isExported("a.mid"));
}

TEST_F(EditorEventView, TheRightButtonOpensTheMenu)
{
    makeDesktop();
    open();
    effect->ChangePattern("Rock", "a.mid");

    const auto user = inMenu({"Down", "Return"});
    click(108, 3);

    EXPECT_TRUE(until([&] { return isExported("a.mid"); }));
    settle();
    EXPECT_FALSE(view->eventView()->CaptureMouse());
}

TEST_F(EditorEventView, AfterAMenuThatWasLeftTheMouseIsFree)
{
    open();

    const auto user = inMenu({"Escape"});
    click(108, 3);
    ASSERT_TRUE(until([&] { return isPressed && !display->hasMenu(); }));
    settle();

    EXPECT_FALSE(view->eventView()->CaptureMouse());
}

// The buttons -------------------------------------------------------------------------------------

TEST_F(EditorEventView, TheButtonsAddAndDeleteThePatternThatPlays)
{
    open();
    effect->ChangePattern("Rock", "a.mid");
    settle();

    click(104);
    EXPECT_TRUE(until([&] { return fs::exists(library / "Rock/a 1.mid"); }));
    EXPECT_TRUE(fs::exists(library / "Rock/a.mid"));

    click(105);
    EXPECT_TRUE(until([&] { return !fs::exists(library / "Rock/a.mid"); }));
    EXPECT_TRUE(fs::exists(library / "Rock/a 1.mid"));
}
