#include "editor/CLooperView.h"

#include "editor/EventView.h"
#include "editor/PatternsView.h"
#include "library/PatternTree.h"
#include "platform/toolkit/Beep.h"
#include "platform/toolkit/DataBrowser.h"
#include "tests/editor/EditorFixture.h"

#include <filesystem>

namespace fs = std::filesystem;
using toolkit::operator""_4cc;

namespace {

class Editor : public EditorFixture
{
};

struct CountingListener : CLooper::Listener
{
    void update() override { ++updates; }

    int updates = 0;
};

} // namespace

// Life --------------------------------------------------------------------------------------------

TEST_F(Editor, TellsTheHostItsFixedSize)
{
    CLooperView editor(effect.get());
    int width = 0;
    int height = 0;

    editor.getEditorSize(&width, &height);
    editor.getEditorSize(nullptr, nullptr);

    EXPECT_EQ(width, 100);
    EXPECT_EQ(height, 100);
}

TEST_F(Editor, WithoutAnEffectHasNoWindow)
{
    CLooperView editor(nullptr);

    EXPECT_NE(editor.attach(nullptr, 0, 0), toolkit::noErr);
    editor.remove();
    editor.loaded();
    editor.update();
    editor.patternsChanged();
    editor.AddPattern();
    editor.DeletePattern();
    editor.AddStyle();
    editor.DeleteStyle();
}

TEST_F(Editor, ShowsItsWindow)
{
    open();

    EXPECT_TRUE(view->window()->isVisible());
    EXPECT_EQ(view->window()->title(), "Korvanel Looper");
    EXPECT_EQ(notifier.references, 2);
}

TEST_F(Editor, TheHostHearsWhenItsUserClosesTheWindow)
{
    open();

    display->askToClose(view->window()->nativeId());

    EXPECT_TRUE(until([&] { return notifier.closed == 1; }));
    EXPECT_EQ(view->window(), nullptr);
    EXPECT_EQ(notifier.references, 1);
}

TEST_F(Editor, AHostThatRemovesTheWindowIsNotToldOfIt)
{
    open();

    view->remove();

    EXPECT_EQ(view->window(), nullptr);
    EXPECT_EQ(notifier.closed, 0);
    view->remove();
}

TEST_F(Editor, MayBeAttachedAgainAfterItWasClosed)
{
    open();
    view->remove();

    EditorHostInfo host{&notifier, nullptr};
    ASSERT_EQ(view->attach(&host, 0, 0), toolkit::noErr);

    EXPECT_TRUE(view->window()->isVisible());
}

TEST_F(Editor, OpensAndCloses200TimesWithoutLeavingAnything)
{
    for (int i = 0; i < 200; ++i) {
        view = std::make_unique<CLooperView>(effect.get());
        EditorHostInfo host{&notifier, nullptr};
        ASSERT_EQ(view->attach(&host, 0, 0), toolkit::noErr);
        toolkit::EventLoop::turn();
        view.reset();
        toolkit::EventLoop::turn();
    }
    EXPECT_EQ(notifier.references, 1);
}

// Numbers -----------------------------------------------------------------------------------------

TEST_F(Editor, NumbersShowTheEffectsParametersAndTheirRanges)
{
    effect->setVeloPlus(-7);
    effect->setDnDRepeat(3);

    open();

    EXPECT_EQ(text(109), "-7");
    EXPECT_EQ(text(106), "3");
    EXPECT_EQ(text(114), "-15");
    EXPECT_EQ(text(116), "10");
    EXPECT_EQ(text(118), "100");
    EXPECT_EQ(control(110).minimum(), effect->getVeloPlus().min);
    EXPECT_EQ(control(110).maximum(), effect->getVeloPlus().max);
    EXPECT_FALSE(control(109).isEnabled());
}

TEST_F(Editor, ArrowsStepTheirNumber)
{
    open();

    clickUp(110);
    EXPECT_TRUE(until([&] { return effect->getVeloPlus().value == -9; }));
    EXPECT_EQ(text(109), "-9");
    clickDown(110);
    EXPECT_TRUE(until([&] { return effect->getVeloPlus().value == -10; }));
    EXPECT_EQ(text(109), "-10");
}

TEST_F(Editor, AnArrowReachesTheEndAndStaysThere)
{
    const int most = effect->getVeloPlus().max;
    effect->setVeloPlus(most - 1);
    open();

    clickUp(110);
    EXPECT_TRUE(until([&] { return effect->getVeloPlus().value == most; }));
    EXPECT_EQ(text(109), std::to_string(most));
    clickUp(110);
    settle();

    EXPECT_EQ(effect->getVeloPlus().value, most);
    EXPECT_EQ(text(109), std::to_string(most));
}

TEST_F(Editor, EveryNumberReachesItsParameter)
{
    open();

    view->performNumEdit(107, 5);
    view->performNumEdit(110, 6);
    view->performNumEdit(115, -7);
    view->performNumEdit(117, 8);
    view->performNumEdit(119, 9);
    view->performNumEdit(106, 77); // a text, not arrows
    view->performNumEdit(108, 77);

    EXPECT_EQ(effect->getDnDRepeat().value, 5);
    EXPECT_EQ(effect->getVeloPlus().value, 6);
    EXPECT_EQ(effect->getRandomVeloMin().value, -7);
    EXPECT_EQ(effect->getRandomVeloMax().value, 8);
    EXPECT_EQ(effect->getRandomVeloStrength().value, 9);
    EXPECT_EQ(text(114), "-7");
}

TEST_F(Editor, ANumbersTextTakesDigitsOnlyAndReturnEndsIt)
{
    open();
    control(109).setEnabled(true); // as it would have to be to be typed into
    ASSERT_TRUE(control(109).focus());
    settle();

    display->type("x");
    display->type("5");
    EXPECT_TRUE(until([&] { return text(109).find('5') != std::string::npos; }));
    display->key("Return");

    EXPECT_TRUE(until([&] { return view->window()->focusedControl() == nullptr; }));
    EXPECT_EQ(text(109).find('x'), std::string::npos);
    EXPECT_EQ(effect->getVeloPlus().value, -10);
}

// Switches ----------------------------------------------------------------------------------------

TEST_F(Editor, ThruIsSwitchedWithoutAnyoneBeingTold)
{
    open();
    CountingListener listener;
    effect->AddLooperListener(&listener);

    click(102);
    EXPECT_TRUE(until([&] { return effect->isThru(); }));
    settle();
    EXPECT_EQ(listener.updates, 0);
    EXPECT_EQ(control(102).value(), 1);

    click(102);
    EXPECT_TRUE(until([&] { return !effect->isThru(); }));
    effect->RemoveLooperListener(&listener);
}

TEST_F(Editor, TheOtherSwitchesReachTheirFlags)
{
    effect->setRandomVelo(true);
    open();
    EXPECT_EQ(control(113).value(), 1);

    click(111);
    EXPECT_TRUE(until([&] { return effect->isVelocityUsed(); }));
    click(112);
    EXPECT_TRUE(until([&] { return effect->isPitchWheelUsed(); }));
    click(113);
    EXPECT_TRUE(until([&] { return !effect->isRandomVelo(); }));
}

TEST_F(Editor, ATempoIsChosenFromThePopUp)
{
    open();
    EXPECT_EQ(control(103).value(), 2);
    ASSERT_TRUE(control(103).focus());
    settle();

    display->key("Return"); // opens it
    settle();
    display->key("Down");
    display->key("Return");

    EXPECT_TRUE(until([&] { return effect->tempoType() == 2; }));
}

TEST_F(Editor, TheTempoOfTheMenuIsOneMoreThanTheEffects)
{
    open();

    view->performTempoChange(1);

    EXPECT_EQ(effect->tempoType(), 0);
}

TEST_F(Editor, WhatAHostAutomatesIsShown)
{
    open();

    effect->setVeloPlus(42);
    effect->setThru(true);
    effect->TempoType(0);

    EXPECT_TRUE(until([&] { return text(109) == "42"; }));
    EXPECT_EQ(control(110).value(), 42);
    EXPECT_EQ(control(102).value(), 1);
    EXPECT_EQ(control(103).value(), 1);
}

// What the effect tells ---------------------------------------------------------------------------

TEST_F(Editor, TheLoadedPatternsNameIsShown)
{
    open();
    EXPECT_EQ(text(100), "");

    effect->ChangePattern("Rock", "a.mid");

    EXPECT_EQ(text(100), "Rock/a");
    view->SetPatternName("cut\0off");
    EXPECT_EQ(text(100), "cut");
}

TEST_F(Editor, APatternWithoutStyleAndNameHasNone)
{
    open();
    EXPECT_EQ(text(100), "");

    view->loaded();

    EXPECT_EQ(text(100), "");
}

TEST_F(Editor, WhatIsLoadedOnAnotherThreadIsShownToo)
{
    open();

    std::thread other([&] { effect->ChangePattern("Jazz", "c.mid"); });
    other.join();

    EXPECT_TRUE(until([&] { return text(100) == "Jazz/c"; }));
}

TEST_F(Editor, ALibraryThatChangesIsShown)
{
    open();
    const toolkit::DataBrowser& styles = *control(99).dataBrowser();
    EXPECT_EQ(styles.items().size(), 2u);

    library.makeFolder("Latin");
    CLooper::patternTree()->updateAndNotify();

    EXPECT_TRUE(until([&] { return styles.items().size() == 3; }));
}

TEST_F(Editor, OpensWithWhatIsPlaying)
{
    effect->ChangePattern("Rock", "b.mid");

    open();

    EXPECT_EQ(text(100), "Rock/b");
    EXPECT_EQ(control(101).dataBrowser()->items().size(), 2u);
    EXPECT_EQ(control(101).dataBrowser()->selectedItems().size(), 1u);
}

// Menus and styles --------------------------------------------------------------------------------

TEST_F(Editor, AContextualClickElsewhereIsPassedOn)
{
    open();
    toolkit::Event click({"cntl"_4cc, 12});
    click.set("----"_4cc, &control(99));

    EXPECT_EQ(view->performContextualMenu(click), toolkit::eventNotHandledErr);
    EXPECT_EQ(view->performContextualMenu(toolkit::Event({"cntl"_4cc, 12})),
              toolkit::eventNotHandledErr);
}

TEST_F(Editor, ANewStyleGetsTheFirstFreeName)
{
    open();
    effect->ChangePattern("Rock", "a.mid"); // which lists the style
    ASSERT_TRUE(
        until([&] { return !view->patternsView()->GetCurrentlySelectedStyle().IsEmpty(); }));

    view->AddStyle();
    EXPECT_TRUE(fs::is_directory(library / "Rock/new style"));
    view->AddStyle();
    EXPECT_TRUE(fs::is_directory(library / "Rock/new style 1"));
}

TEST_F(Editor, TheThousandthNewStyleIsTheLast)
{
    open();
    effect->ChangePattern("Rock", "a.mid");
    ASSERT_TRUE(
        until([&] { return !view->patternsView()->GetCurrentlySelectedStyle().IsEmpty(); }));
    library.put("Rock/new style", "");
    for (int n = 1; n <= 998; ++n)
        library.put("Rock/new style " + std::to_string(n), "");

    view->AddStyle();
    EXPECT_TRUE(fs::is_directory(library / "Rock/new style 999"));
    view->AddStyle();
    EXPECT_FALSE(fs::exists(library / "Rock/new style 1000"));
}

TEST_F(Editor, OnlyAnEmptyStyleIsDeleted)
{
    open();
    effect->ChangePattern("Rock", "a.mid");
    ASSERT_TRUE(
        until([&] { return !view->patternsView()->GetCurrentlySelectedStyle().IsEmpty(); }));
    const std::uint32_t beeps = toolkit::beepCount();

    view->DeleteStyle();

    EXPECT_TRUE(fs::exists(library / "Rock/a.mid"));
    EXPECT_EQ(toolkit::beepCount(), beeps + 1);
    EXPECT_EQ(toolkit::lastBeepDuration(), 60);
}

TEST_F(Editor, WithoutASelectedStyleNoneIsAddedOrDeleted)
{
    open();

    view->AddStyle();
    view->DeleteStyle();

    EXPECT_FALSE(fs::exists(library / "new style"));
}

TEST_F(Editor, TwoEditorsShowTwoEffects)
{
    open();
    CLooper other;
    other.SetPatternsDir(library.path().c_str());
    other.Initialize(nullptr);
    other.setVeloPlus(3);
    CLooperView second(&other);
    ASSERT_EQ(second.attach(nullptr, 0, 0), toolkit::noErr);

    second.performNumEdit(110, 4);
    other.ChangePattern("Jazz", "c.mid");

    EXPECT_EQ(text(109), "-10");
    EXPECT_EQ(text(100), "");
    EXPECT_EQ(other.getVeloPlus().value, 4);
    second.remove();
    other.Terminate();
}
