#include "tests/platform/toolkit/ToolkitFixture.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <vector>

using namespace toolkit;

namespace {

const std::string everyKind =
    R"({"kind": "group box", "bounds": [10, 10, 380, 280], "title": "All"},
       {"kind": "check box", "id": 1, "bounds": [20, 40, 100, 24], "title": "One", "tabOrder": 2},
       {"kind": "push button", "id": 2, "bounds": [20, 70, 100, 24], "title": "Two", "tabOrder": 1,
        "tooltip": "Does nothing"},
       {"kind": "edit text", "id": 3, "bounds": [20, 100, 100, 24]},
       {"kind": "pop-up menu", "id": 4, "bounds": [20, 130, 100, 24], "items": ["A", "B", "C"]},
       {"kind": "little arrows", "id": 5, "bounds": [20, 160, 20, 24]},
       {"kind": "static text", "id": 6, "bounds": [20, 190, 100, 24], "title": "Six"},
       {"kind": "data browser", "id": 7, "bounds": [140, 40, 120, 100],
        "columns": [{"property": "name", "title": "Name"}]},
       {"kind": "user pane", "id": 8, "bounds": [140, 150, 120, 100],
        "anchors": ["left", "top", "right", "bottom"]})";

std::string bytesOf(const std::string& path)
{
    std::ifstream file(path, std::ios::binary);
    std::ostringstream all;
    all << file.rdbuf();
    return all.str();
}

class WindowTest : public ToolkitFixture
{
protected:
    std::string picture(const std::string& name)
    {
        const auto path = std::string(KV_PICTURES "/") + name + ".png";
        EXPECT_EQ(window->savePicture(path), noErr);
        return bytesOf(path);
    }
};

} // namespace

TEST_F(WindowTest, ShowingTellsTheWindowFirst)
{
    window = make(everyKind);
    bool visibleThen = true;
    window->installHandler({{"wind"_4cc, 22}}, [&](const Event&) {
        visibleThen = window->isVisible();
        return eventNotHandledErr;
    });

    EXPECT_EQ(window->show(), noErr);

    EXPECT_FALSE(visibleThen);
    EXPECT_TRUE(window->isVisible());
    window->hide();
    EXPECT_FALSE(window->isVisible());
}

TEST_F(WindowTest, TheCloseBoxClosesAndTellsOnce)
{
    open(everyKind);
    int closed = 0;
    std::vector<std::int32_t> disposed;
    window->installHandler({{"wind"_4cc, 73}}, [&](const Event& event) {
        EXPECT_EQ(event.get<Window*>("----"_4cc), window.get());
        EXPECT_TRUE(disposed.empty());
        ++closed;
        return noErr;
    });
    for (auto* each : window->controls())
        each->installHandler({{"cntl"_4cc, 1001}}, [&, each](const Event&) {
            disposed.push_back(each->id().id);
            return noErr;
        });

    display->askToClose(window->nativeId());

    ASSERT_TRUE(until([this] { return !window->isOpen(); }));
    window->dispose();
    EXPECT_EQ(closed, 1);
    EXPECT_EQ(disposed, (std::vector<std::int32_t>{0, 1, 2, 3, 4, 5, 6, 7, 8}));
    EXPECT_EQ(window->nativeId(), 0u);
}

TEST_F(WindowTest, ControlsOfAClosedWindowKeepTheirStateAndDoNothing)
{
    open(everyKind);
    auto& field = control(3);
    field.setData(0, "text"_4cc, "kept");
    window->dispose();
    settle();

    EXPECT_EQ(text(3), "kept");
    field.setData(0, "text"_4cc, "changed");
    field.setEnabled(false);
    field.setBounds({0, 0, 5, 5});
    field.invalidate();
    EXPECT_EQ(text(3), "changed");
    EXPECT_FALSE(field.focus());
    EXPECT_EQ(window->show(), loopNotRunningErr);
}

TEST_F(WindowTest, TabVisitsNumberedControlsFirstThenTheOthersInOrder)
{
    open(everyKind);
    std::vector<std::int32_t> visited;
    ASSERT_TRUE(until([this] { return control(2).focus(); }));
    for (int i = 0; i < 7; ++i) {
        const auto* before = window->focusedControl();
        visited.push_back(before->id().id);
        display->key("Tab");
        ASSERT_TRUE(until([&] { return window->focusedControl() != before; }));
    }

    EXPECT_EQ(visited, (std::vector<std::int32_t>{2, 1, 3, 4, 5, 7, 8}));
}

TEST_F(WindowTest, TheFirstTabGoesToTheFirstControl)
{
    open(everyKind);
    display->click(window->toScreen({390, 5}));
    settle();
    EXPECT_EQ(window->focusedControl(), nullptr);

    display->key("Tab");

    EXPECT_TRUE(until([this] { return window->focusedControl() == &control(2); }));
}

TEST_F(WindowTest, FocusChangesAreReported)
{
    open(everyKind);
    std::vector<std::pair<std::int32_t, std::int32_t>> heard;
    window->installHandler({{"cntl"_4cc, 7}}, [&heard](const Event& event) {
        heard.emplace_back((*event.get<Control*>("----"_4cc))->id().id,
                           *event.get<std::int32_t>("part"_4cc));
        return noErr;
    });
    ASSERT_TRUE(until([this] { return control(1).focus(); }));
    ASSERT_TRUE(until([&heard] { return heard.size() >= 1; }));
    heard.clear();

    control(3).focus();

    ASSERT_TRUE(until([&heard] { return heard.size() == 2; }));
    EXPECT_EQ(heard[0], (std::pair<std::int32_t, std::int32_t>(1, 0)));
    EXPECT_EQ(heard[1], (std::pair<std::int32_t, std::int32_t>(3, 1)));
}

TEST_F(WindowTest, AnchoredControlsFollowTheSize)
{
    open(everyKind);
    Rect before;
    Rect now;
    control(8).installHandler({{"cntl"_4cc, 154}}, [&](const Event& event) {
        before = *event.get<Rect>("orct"_4cc);
        now = *event.get<Rect>("crct"_4cc);
        return noErr;
    });

    window->setSize(500, 320);

    EXPECT_EQ(before, (Rect{140, 150, 120, 100}));
    EXPECT_EQ(now, (Rect{140, 150, 220, 120}));
    EXPECT_EQ(control(1).bounds(), (Rect{20, 40, 100, 24}));
    window->setSize(10, 10);
    EXPECT_EQ(window->width(), 200);
    EXPECT_EQ(window->height(), 100);
    window->setSize(400, 300);
    EXPECT_EQ(control(8).bounds(), (Rect{140, 150, 120, 100}));
}

TEST_F(WindowTest, ScaleKeepsWindowPoints)
{
    open(everyKind);
    window->setScale(1.5);

    EXPECT_EQ(window->scaleFactor(), 1.5);
    EXPECT_EQ(window->width(), 400);
    EXPECT_EQ(control(1).bounds(), (Rect{20, 40, 100, 24}));
    const auto corner = window->toScreen({0, 0});
    EXPECT_EQ(window->toScreen({20, 40}), (Point{corner.x + 30, corner.y + 60}));
    window->setScale(100);
    EXPECT_EQ(window->scaleFactor(), 4.0);
}

TEST_F(WindowTest, AClickHitsTheRightControlAtEveryScale)
{
    open(everyKind);
    window->setScale(1.5);
    settle();

    click(1);

    EXPECT_TRUE(until([this] { return control(1).value() == 1; }));
}

TEST_F(WindowTest, APopUpMenuIsChosenFromByKeyboard)
{
    open(everyKind);
    std::int32_t valueAtHit = 0;
    window->installHandler({{"cntl"_4cc, 1}}, [&](const Event& event) {
        valueAtHit = (*event.get<Control*>("----"_4cc))->value();
        return noErr;
    });
    EXPECT_EQ(control(4).value(), 1);
    ASSERT_TRUE(until([this] { return control(4).focus(); }));

    display->key("Down");

    EXPECT_TRUE(until([&] { return valueAtHit == 2; }));
}

TEST_F(WindowTest, APopUpMenuIsChosenFromByPointer)
{
    open(everyKind);
    click(4);

    const auto at = middle(4);
    const Point secondRow{at.x, at.y + 12 + 13 + 26}; // below the closed menu, rows are 26 high
    EXPECT_TRUE(untilClicked(secondRow, [this] { return control(4).value() == 2; }));
}

TEST_F(WindowTest, ATooltipAppearsUnderThePointer)
{
    open(everyKind);
    display->moveTo(middle(2));
    settle();
    const auto without = picture("tooltip-before");

    EXPECT_TRUE(until([&] { return picture("tooltip-after") != without; }));
}

TEST_F(WindowTest, TheLookChangesAtOnce)
{
    open(everyKind);
    EXPECT_TRUE(isDark());

    setAppearance(Appearance::light);

    EXPECT_FALSE(isDark());
    EXPECT_TRUE(until([this] { return display->pixel(window->toScreen({0, 0})) == 0xf1f3f5; }));
}

TEST_F(WindowTest, TwoWindowsGoTheirOwnWays)
{
    open(everyKind);
    auto second = make(everyKind);
    second->show();

    window->dispose();
    settle();

    EXPECT_TRUE(second->isOpen());
    EXPECT_TRUE(second->isVisible());
    second->findControl({0, 1})->setValue(1);
    EXPECT_EQ(control(1).value(), 0);
}

TEST_F(WindowTest, FiftyWindowsLeaveNothingBehind)
{
    const unsigned long root = display->makeWindow(0, 0, 500, 400);
    for (int i = 0; i < 50; ++i) {
        window = make(everyKind, ParentX11{root});
        ASSERT_EQ(window->show(), noErr);
        ASSERT_TRUE(until([&] { return display->childrenOf(root) == 1; }));
        window.reset();
        ASSERT_TRUE(until([&] { return display->childrenOf(root) == 0; }));
    }
    display->destroyWindow(root);
}

TEST_F(WindowTest, AWindowInAHostsWindowTakesClicks)
{
    const unsigned long host = display->makeWindow(100, 50, 500, 400);
    open(everyKind, ParentX11{host});
    EXPECT_EQ(window->toScreen({0, 0}), (Point{100, 50}));

    click(1);

    EXPECT_TRUE(until([this] { return control(1).value() == 1; }));
    window->dispose();
    EXPECT_EQ(display->childrenOf(host), 0u);
    display->destroyWindow(host);
}

TEST_F(WindowTest, AHostsWindowThatGoesFirstDoesNoHarm)
{
    const unsigned long host = display->makeWindow(100, 50, 500, 400);
    open(everyKind, ParentX11{host});

    display->destroyWindow(host);
    settle();
    window->dispose();
    settle();

    EXPECT_FALSE(window->isOpen());
}

TEST_F(WindowTest, AParentThatDoesNotExistIsRefused)
{
    InterfaceDescription description;
    std::string error;
    description.parse(R"({"format": 1, "windows": {"W": {"size": [10, 10], "controls": []}}})",
                      error);
    const auto& plain = *description.window("W");

    EXPECT_EQ(Window::create(plain, ParentX11{0x7ffffff}, window), parentNotFoundErr);
    EXPECT_EQ(Window::create(plain, ParentX11{0}, window), parentNotFoundErr);
    EXPECT_EQ(Window::create(plain, ParentComponent{nullptr}, window), parentNotFoundErr);
    EXPECT_EQ(window, nullptr);
}

TEST_F(WindowTest, StoppingTheLoopClosesWhatIsOpen)
{
    open(everyKind);
    bool closed = false;
    window->installHandler({{"wind"_4cc, 73}}, [&closed](const Event&) {
        closed = true;
        return noErr;
    });

    EventLoop::stop();

    EXPECT_TRUE(closed);
    EXPECT_FALSE(window->isOpen());
    EXPECT_EQ(EventLoop::start(), noErr);
}

TEST_F(WindowTest, WithoutADisplayThereIsAStatusAndNoWindow)
{
    const std::string name = std::getenv("DISPLAY");
    InterfaceDescription description;
    std::string error;
    description.parse(R"({"format": 1, "windows": {"W": {"size": [10, 10], "controls": []}}})",
                      error);

    ::unsetenv("DISPLAY");
    EXPECT_EQ(Window::create(*description.window("W"), {}, window), noDisplayErr);
    ::setenv("DISPLAY", ":31999", 1);
    EXPECT_EQ(Window::create(*description.window("W"), {}, window), noDisplayErr);
    ::setenv("DISPLAY", name.c_str(), 1);
    EXPECT_EQ(window, nullptr);
}

TEST_F(WindowTest, WithoutALoopThereIsAStatusAndNoWindow)
{
    EventLoop::stop();
    EXPECT_EQ(Window::create(WindowDescription(), {}, window), loopNotRunningErr);
    EXPECT_EQ(EventLoop::start(), noErr);
}

TEST_F(WindowTest, TitleAndClassAreKept)
{
    open(everyKind);
    window->setTitle("Loops");
    window->setWindowClass(WindowClass::floating);

    EXPECT_EQ(window->title(), "Loops");
    EXPECT_EQ(window->windowClass(), WindowClass::floating);
    EXPECT_TRUE(window->isVisible());
}

TEST_F(WindowTest, AContextualClickAnywhereNamesItsControl)
{
    open(everyKind);
    std::int32_t clicked = -1;
    window->installHandler({{"cntl"_4cc, 12}}, [&clicked](const Event& event) {
        clicked = (*event.get<Control*>("----"_4cc))->id().id;
        return eventNotHandledErr;
    });

    click(6, 3);
    EXPECT_TRUE(until([&clicked] { return clicked == 6; }));
    click(1, 3);
    EXPECT_TRUE(until([&clicked] { return clicked == 1; }));
}
