// The pattern dragged out of the view into another program.
#include "platform/toolkit/Beep.h"
#include "shared/System/kvStream.h"
#include "tests/editor/EventViewFixture.h"
#include "tests/platform/toolkit/DropTargetProcess.h"

#include <optional>
#include <string>
#include <unistd.h>

namespace {

class DragTest : public EventViewFixture
{
protected:
    /// Presses in the pane, and moves by so many pixels.
    void pressAndMove(int by)
    {
        display->moveTo(screen(80, 40));
        settle();
        display->press();
        ASSERT_TRUE(until([this] { return view->CaptureMouse(); }));
        display->moveTo(screen(80 + by, 40));
    }

    /// What a drag of the pattern writes.
    std::string midiFile(int repeat = 1)
    {
        Korvanel::stringStream stream;
        effect->SaveTrack(stream, repeat);
        return stream.text();
    }

    std::optional<DropTargetProcess> target;
};

} // namespace

TEST_F(DragTest, ThePatternArrivesInAnotherProgramAsAMidiFile)
{
    attach();
    target.emplace(std::vector<std::string>{"50", "50"});
    ASSERT_TRUE(until([this] { return target->said("ready"); }));
    pressAndMove(8);
    ASSERT_TRUE(until([this] { return wasDragged(); }));

    display->moveTo({120, 100});
    ASSERT_TRUE(until([this] { return target->said("action XdndActionCopy"); }));
    display->moveTo({130, 110});
    settle(); // the target's consent has to come back before the button goes up
    display->release();

    const auto url = "text/uri-list file://" + dragged("Straight%20Eight.mid");
    EXPECT_TRUE(until([&] { return target->said(url); }));
    EXPECT_EQ(contentOf(dragged("Straight Eight.mid")), midiFile());
}

TEST_F(DragTest, AfterADragThePaneIsAsBefore)
{
    attach();
    pressAndMove(8);
    ASSERT_TRUE(until([this] { return wasDragged(); }));
    display->moveTo({5, 1100}); // nobody is there
    settle();
    display->release();
    settle();
    EXPECT_FALSE(view->CaptureMouse());

    std::filesystem::remove(dragged("Straight Eight.mid"));
    pressAndMove(8);
    EXPECT_TRUE(until([this] { return wasDragged(); }));
    display->release();
    settle();
}

TEST_F(DragTest, AHandThatTremblesByFourPixelsClicks)
{
    attach();
    pressAndMove(4);
    settle();
    EXPECT_FALSE(wasDragged());
    display->moveTo(screen(85, 40));
    EXPECT_TRUE(until([this] { return wasDragged(); }));
    display->release();
    settle();
}

TEST_F(DragTest, TheFileHoldsThePatternAsOftenAsIsSet)
{
    effect->setDnDRepeat(4);
    effect->DragEvents();
    EXPECT_EQ(contentOf(dragged("Straight Eight.mid")), midiFile(4));
    EXPECT_NE(midiFile(4), midiFile(1));
}

TEST_F(DragTest, APatternWithoutANameIsUnknown)
{
    effect->SetPatternName("");
    effect->DragEvents();
    EXPECT_EQ(contentOf(dragged("unknown.mid")), midiFile());
}

TEST_F(DragTest, APatternFromAFileHasTheFilesName)
{
    effect->SetPatternName("file:///home/anna/Loops/Groove.mid");
    effect->DragEvents();
    EXPECT_TRUE(std::filesystem::exists(dragged("Groove.mid")));
}

TEST_F(DragTest, TheNextDragReplacesTheFile)
{
    putContent(dragged("Straight Eight.mid"), std::string(10000, 'x'));
    effect->DragEvents();
    EXPECT_EQ(contentOf(dragged("Straight Eight.mid")), midiFile());
}

TEST_F(DragTest, ALinkInTheTemporaryFolderIsNotFollowed)
{
    putContent(library / "letter", "somebody's letter");
    std::filesystem::create_symlink(library / "letter", dragged("Straight Eight.mid"));
    effect->DragEvents();
    EXPECT_EQ(contentOf(library / "letter"), "somebody's letter");
    EXPECT_EQ(contentOf(dragged("Straight Eight.mid")), midiFile());
}

TEST_F(DragTest, TheFileIsThisUsersAlone)
{
    effect->DragEvents();
    const auto folder = temporary / ("korvanel-" + std::to_string(::geteuid()));
    EXPECT_EQ(contentOf(folder + "/Straight Eight.mid"), midiFile());
    EXPECT_EQ(std::filesystem::status(folder).permissions(), std::filesystem::perms::owner_all);
}

TEST_F(DragTest, SomebodyElsesFileOfThePatternsNameIsNotInTheWay)
{
    std::filesystem::create_directory(temporary / "Straight Eight.mid"); // cannot be replaced
    effect->DragEvents();
    EXPECT_EQ(contentOf(dragged("Straight Eight.mid")), midiFile());
}

TEST_F(DragTest, WhereTheFileCannotBeWrittenNothingIsDraggedAndItBeeps)
{
    const auto beeps = toolkit::beepCount();
    std::filesystem::create_directory(dragged("Straight Eight.mid"));
    attach();
    target.emplace(std::vector<std::string>{"50", "50"});
    ASSERT_TRUE(until([this] { return target->said("ready"); }));
    pressAndMove(8);
    display->moveTo({120, 100});
    settle();
    display->release();
    settle();
    EXPECT_FALSE(target->said("action"));
    EXPECT_EQ(toolkit::beepCount(), beeps + 1);
    EXPECT_EQ(toolkit::lastBeepDuration(), 60);
}
