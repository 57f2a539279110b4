#include "platform/toolkit/Drag.h"

#include "tests/platform/toolkit/DropTargetProcess.h"
#include "tests/platform/toolkit/ToolkitFixture.h"

#include <optional>
#include <string>
#include <vector>

using namespace toolkit;

namespace {

class DragTest : public ToolkitFixture
{
protected:
    void SetUp() override
    {
        ToolkitFixture::SetUp();
        open(R"({"kind": "user pane", "id": 108, "bounds": [40, 30, 200, 100]})");
        pasteboard.putItemFlavor(1, fileUrlFlavor, fileUrl("/tmp/Straight Eight.mid"));
        control(108).installHandler({{"mous"_4cc, 6}}, [this](const Event&) {
            if (!std::exchange(started, true))
                status = startDrag(control(108), pasteboard, [this] { ++finished; });
            return noErr;
        });
        control(108).installHandler({{"mous"_4cc, 1}}, [this](const Event&) {
            ++downs;
            return noErr;
        });
    }

    void startTarget(const std::vector<std::string>& arguments)
    {
        target.emplace(arguments);
        ASSERT_TRUE(until([this] { return said("ready"); }));
    }

    /// Whether the other program has printed this by now.
    bool said(const std::string& text) { return target->said(text); }

    /// Presses in the pane and moves until the drag has begun.
    void beginDrag()
    {
        const auto from = middle(108);
        display->moveTo(from);
        display->press();
        ASSERT_TRUE(until([this] { return downs > 0; }));
        display->moveTo({from.x + 8, from.y});
        ASSERT_TRUE(until([this] { return started; }));
    }

    Pasteboard pasteboard;
    bool started = false;
    Status status = noErr;
    int finished = 0;
    int downs = 0;
    std::optional<DropTargetProcess> target;
};

} // namespace

TEST_F(DragTest, TheFileArrivesInAnotherProgramAsACopy)
{
    startTarget({"50", "50"});
    beginDrag();
    EXPECT_EQ(status, noErr);

    display->moveTo({120, 100});
    ASSERT_TRUE(until([this] { return said("action XdndActionCopy"); }));
    display->moveTo({130, 110});
    settle(); // the target's consent has to come back before the button goes up
    display->release();

    EXPECT_TRUE(until([this] { return said("text/uri-list file:///tmp/Straight%20Eight.mid"); }));
    EXPECT_TRUE(until([this] { return finished == 1; }));
}

TEST_F(DragTest, ATargetThatRefusesGetsNothing)
{
    startTarget({"50", "50", "refuse"});
    beginDrag();
    display->moveTo({120, 100});
    ASSERT_TRUE(until([this] { return said("action"); }));
    settle();

    display->release();

    EXPECT_TRUE(until([this] { return said("left"); }));
    EXPECT_TRUE(until([this] { return finished == 1; }));
    EXPECT_FALSE(said("text/uri-list"));
}

TEST_F(DragTest, ADragToNowhereEndsAndTheNextClickCounts)
{
    beginDrag();
    display->moveTo({5, 1100});
    settle();
    display->release();
    ASSERT_TRUE(until([this] { return finished == 1; }));

    click(108);

    EXPECT_TRUE(until([this] { return downs == 2; }));
}

TEST_F(DragTest, WithoutAFileOrAButtonThereIsNoDrag)
{
    EXPECT_EQ(startDrag(control(108), pasteboard), paramErr);
    pasteboard.clear();
    beginDrag();
    EXPECT_EQ(status, paramErr);
    display->release();
    settle();
    EXPECT_EQ(finished, 0);
}

TEST_F(DragTest, AWindowThatClosesDuringTheDragTellsNobody)
{
    beginDrag();
    window->dispose();
    settle();
    display->release();
    settle();

    EXPECT_EQ(finished, 0);
    EXPECT_EQ(startDrag(*window->controls().front(), pasteboard), loopNotRunningErr);
}
