#include "tests/platform/toolkit/ToolkitFixture.h"

#include <vector>

using namespace toolkit;

namespace {

const std::string checkBox =
    R"({"kind": "check box", "id": 102, "bounds": [20, 20, 160, 24], "title": "Thru"})";
const std::string arrows =
    R"({"kind": "little arrows", "id": 107, "bounds": [20, 20, 20, 24], "minimum": 1,
        "maximum": 999, "value": 5})";
const std::string button =
    R"({"kind": "push button", "id": 104, "bounds": [20, 60, 100, 24], "title": "Add"})";

class ButtonsTest : public ToolkitFixture
{
protected:
    /// Notes part and value at the time of every action, and every 'cntl' 1.
    void watch(std::int32_t id)
    {
        control(id).setAction([this](Control& source, ControlPart part) {
            parts.push_back(part);
            valuesInAction.push_back(source.value());
        });
        window->installHandler({{"cntl"_4cc, 1}}, [this](const Event& event) {
            hit = event.get<Control*>("----"_4cc).value_or(nullptr);
            valueAtHit = hit ? hit->value() : -1;
            return eventNotHandledErr;
        });
    }

    std::vector<ControlPart> parts;
    std::vector<std::int32_t> valuesInAction;
    Control* hit = nullptr;
    std::int32_t valueAtHit = -1;
};

} // namespace

TEST_F(ButtonsTest, AClickOnACheckBoxReachesTheActionBeforeItsValueChanges)
{
    open(checkBox);
    watch(102);

    click(102);

    ASSERT_TRUE(until([this] { return hit != nullptr; }));
    EXPECT_EQ(parts, std::vector<ControlPart>{checkBoxPart});
    EXPECT_EQ(valuesInAction, std::vector<std::int32_t>{0});
    EXPECT_EQ(control(102).value(), 1);
    EXPECT_EQ(valueAtHit, 1);
}

TEST_F(ButtonsTest, TheSpaceBarWorksTheCheckBoxThatHasTheKeyboard)
{
    open(checkBox);
    watch(102);
    ASSERT_TRUE(until([this] { return control(102).focus(); }));

    display->key("space");

    EXPECT_TRUE(until([this] { return control(102).value() == 1; }));
}

TEST_F(ButtonsTest, ADisabledCheckBoxIgnoresTheClick)
{
    open(checkBox);
    watch(102);
    control(102).setEnabled(false);

    click(102);
    settle();

    EXPECT_TRUE(parts.empty());
    EXPECT_EQ(control(102).value(), 0);
}

TEST_F(ButtonsTest, APushButtonReportsItsPartAndKeepsItsValue)
{
    open(button);
    watch(104);

    click(104);

    ASSERT_TRUE(until([this] { return hit != nullptr; }));
    EXPECT_EQ(parts, std::vector<ControlPart>{buttonPart});
    EXPECT_EQ(control(104).value(), 0);
}

TEST_F(ButtonsTest, AnActionMayCloseTheWindow)
{
    open(button);
    control(104).setAction([this](Control&, ControlPart) { window->dispose(); });

    click(104);

    EXPECT_TRUE(until([this] { return !window->isOpen(); }));
    settle();
}

TEST_F(ButtonsTest, AnActionMayLetTheWindowGo)
{
    open(button);
    std::weak_ptr<Window> gone = window;
    control(104).setAction([this](Control&, ControlPart) { window.reset(); });

    click(104);

    EXPECT_TRUE(until([&gone] { return gone.expired(); }));
    settle();
}

TEST_F(ButtonsTest, TheUpperArrowIsPart20AndLeavesTheValueToTheAction)
{
    open(arrows);
    watch(107);

    const auto middleOfIt = middle(107);
    display->click({middleOfIt.x, middleOfIt.y - 6});
    ASSERT_TRUE(until([this] { return !parts.empty(); }));
    display->click({middleOfIt.x, middleOfIt.y + 6});
    ASSERT_TRUE(until([this] { return parts.size() == 2; }));

    EXPECT_EQ(parts, (std::vector<ControlPart>{upArrowPart, downArrowPart}));
    EXPECT_EQ(control(107).value(), 5);
}

TEST_F(ButtonsTest, AHeldArrowRepeats)
{
    open(arrows);
    watch(107);

    const auto middleOfIt = middle(107);
    display->moveTo({middleOfIt.x, middleOfIt.y - 6});
    display->press();

    EXPECT_TRUE(until([this] { return parts.size() >= 3; }));
    display->release();
}

TEST_F(ButtonsTest, TheArrowKeysWorkTheArrows)
{
    open(arrows);
    watch(107);
    ASSERT_TRUE(until([this] { return control(107).focus(); }));

    display->key("Up");
    display->key("Down");

    ASSERT_TRUE(until([this] { return parts.size() == 2; }));
    EXPECT_EQ(parts, (std::vector<ControlPart>{upArrowPart, downArrowPart}));
}

TEST_F(ButtonsTest, AValueStaysBetweenMinimumAndMaximum)
{
    open(arrows);

    control(107).setValue(1000);
    EXPECT_EQ(control(107).value(), 999);
    control(107).setMaximum(10);
    EXPECT_EQ(control(107).value(), 10);
    control(107).setMinimum(20);
    EXPECT_EQ(control(107).maximum(), 20);
    EXPECT_EQ(control(107).value(), 20);
}
