#include "platform/toolkit/Menu.h"
#include "platform/toolkit/PixelSource.h"
#include "tests/platform/toolkit/ToolkitFixture.h"

#include <cstdint>
#include <vector>

using namespace toolkit;

namespace {

/// A pane's pixels, with two unused columns at the right and rubbish in the unused byte.
class Pixels final : public PixelSource
{
public:
    Pixels(int width, int height, std::uint32_t colour)
        : mWidth(width)
        , mHeight(height)
        , store(static_cast<std::size_t>((width + 2) * height), colour)
    {
    }

    int width() const override { return mWidth; }

    int height() const override { return mHeight; }

    int stride() const override { return mWidth + 2; }

    const std::uint32_t* pixels() const override { return store.data(); }

    std::uint32_t& at(int x, int y) { return store[static_cast<std::size_t>(y * stride() + x)]; }

private:
    int mWidth;
    int mHeight;

public:
    std::vector<std::uint32_t> store;
};

struct Heard
{
    std::uint32_t kind;
    Point point;
    std::uint32_t buttons;
};

class UserPaneTest : public ToolkitFixture
{
protected:
    void SetUp() override
    {
        ToolkitFixture::SetUp();
        open(R"({"kind": "user pane", "id": 108, "bounds": [40, 30, 200, 100]})");
    }

    void watchMouse()
    {
        control(108).installHandler({{"mous"_4cc, 1},
                                     {"mous"_4cc, 2},
                                     {"mous"_4cc, 5},
                                     {"mous"_4cc, 6},
                                     {"mous"_4cc, 8},
                                     {"mous"_4cc, 9}},
                                    [this](const Event& event) {
                                        heard.push_back({event.type().kind,
                                                         *event.get<Point>("mloc"_4cc),
                                                         *event.get<std::uint32_t>("chor"_4cc)});
                                        return noErr;
                                    });
    }

    bool has(std::uint32_t kind) const { return find(kind) != nullptr; }

    const Heard* find(std::uint32_t kind) const
    {
        for (const auto& each : heard)
            if (each.kind == kind)
                return &each;
        return nullptr;
    }

    Point screen(int x, int y) { return window->toScreen({x, y}); }

    std::vector<Heard> heard;
};

} // namespace

TEST_F(UserPaneTest, ShowsTheOwnersPixelsOneToOne)
{
    Pixels pixels(200, 100, 0x7f204060);
    pixels.at(3, 5) = 0x00ff8000;
    control(108).setPixelSource(&pixels);

    ASSERT_TRUE(until([this] { return display->pixel(screen(43, 35)) == 0xff8000; }));
    EXPECT_EQ(display->pixel(screen(42, 35)), 0x204060u);
    EXPECT_EQ(display->pixel(screen(44, 35)), 0x204060u);
    EXPECT_EQ(display->pixel(screen(239, 129)), 0x204060u);
}

TEST_F(UserPaneTest, AChangeIsShownOnceItIsInvalidated)
{
    Pixels pixels(200, 100, 0x204060);
    control(108).setPixelSource(&pixels);
    ASSERT_TRUE(until([this] { return display->pixel(screen(50, 40)) == 0x204060; }));

    pixels.at(10, 10) = 0xffffff;
    control(108).invalidate({10, 10, 1, 1});

    EXPECT_TRUE(until([this] { return display->pixel(screen(50, 40)) == 0xffffff; }));
}

TEST_F(UserPaneTest, AtTwiceTheScaleASourcePixelIsADevicePixel)
{
    window->setScale(2);
    Pixels pixels(400, 200, 0x204060);
    pixels.at(3, 5) = 0xff8000;
    control(108).setPixelSource(&pixels);

    EXPECT_EQ(window->scaleFactor(), 2.0);
    const auto corner = screen(40, 30);
    EXPECT_TRUE(until([&] { return display->pixel({corner.x + 3, corner.y + 5}) == 0xff8000; }));
    EXPECT_EQ(display->pixel({corner.x + 4, corner.y + 5}), 0x204060u);
}

TEST_F(UserPaneTest, CoversEveryPixelThatItTouches)
{
    EXPECT_EQ(control(108).pixelBounds(), (Rect{40, 30, 200, 100}));
    window->setScale(2);
    EXPECT_EQ(control(108).pixelBounds(), (Rect{80, 60, 400, 200}));
    window->setScale(13.0 / 12); // 43.33 to 260, and 32.5 to 140.83
    EXPECT_EQ(control(108).pixelBounds(), (Rect{43, 32, 217, 109}));
    window->setScale(4.0 / 3); // 53.33 to 320, and 40 to 173.33
    EXPECT_EQ(control(108).pixelBounds(), (Rect{53, 40, 267, 134}));
    window->setScale(0.75); // 30 to 180, and 22.5 to 97.5
    EXPECT_EQ(control(108).pixelBounds(), (Rect{30, 22, 150, 76}));
}

TEST_F(UserPaneTest, AtEveryScaleSourcePixelsFillItOneByOne)
{
    for (const double scale : {1.0, 13.0 / 12, 1.3333, 4.0 / 3, 1.5, 0.75}) {
        window->setScale(scale);
        const Rect covered = control(108).pixelBounds();
        Pixels pixels(covered.width, covered.height, 0x204060);
        pixels.at(0, 0) = 0xff8000;
        pixels.at(77, 33) = 0x00ff00;
        pixels.at(covered.width - 1, covered.height - 1) = 0xff00ff;
        control(108).setPixelSource(&pixels);
        const Point corner = screen(0, 0);
        const auto shown = [&](int x, int y) {
            return display->pixel({corner.x + covered.x + x, corner.y + covered.y + y});
        };
        EXPECT_TRUE(until([&] { return shown(0, 0) == 0xff8000; })) << scale;
        EXPECT_EQ(shown(77, 33), 0x00ff00u) << scale;
        EXPECT_EQ(shown(78, 33), 0x204060u) << scale;
        EXPECT_EQ(shown(covered.width - 1, covered.height - 1), 0xff00ffu) << scale;
        EXPECT_EQ(shown(covered.width, covered.height - 1), 0x1d2025u) << scale;
        EXPECT_EQ(shown(covered.width - 1, covered.height), 0x1d2025u) << scale;
        control(108).setPixelSource(nullptr);
    }
}

TEST_F(UserPaneTest, ASourceOfAnotherSizeIsStretched)
{
    Pixels pixels(100, 200, 0x204060);
    for (int y = 0; y < 200; ++y)
        for (int x = 50; x < 100; ++x)
            pixels.at(x, y) = 0xff8000;
    control(108).setPixelSource(&pixels);

    EXPECT_TRUE(until([this] { return display->pixel(screen(41, 128)) == 0x204060; }));
    EXPECT_EQ(display->pixel(screen(130, 80)), 0x204060u);
    EXPECT_EQ(display->pixel(screen(150, 80)), 0xff8000u);
    EXPECT_EQ(display->pixel(screen(238, 31)), 0xff8000u);
}

TEST_F(UserPaneTest, TheOwnerIsAskedToDrawBeforeItsPixelsAreShown)
{
    Pixels pixels(200, 100, 0x204060);
    control(108).installHandler({{"cntl"_4cc, 4}}, [&pixels](const Event& event) {
        EXPECT_EQ(event.get<void*>("graf"_4cc), static_cast<PixelSource*>(&pixels));
        pixels.at(0, 0) = 0x00ff00;
        return noErr;
    });
    control(108).setPixelSource(&pixels);

    EXPECT_TRUE(until([this] { return display->pixel(screen(40, 30)) == 0x00ff00; }));
}

TEST_F(UserPaneTest, PointsAreInWindowPointsAndButtonsAreBits)
{
    watchMouse();

    display->moveTo(screen(60, 50));
    ASSERT_TRUE(until([this] { return has(8); }));
    display->press();
    ASSERT_TRUE(until([this] { return has(1); }));
    display->release();
    ASSERT_TRUE(until([this] { return has(2); }));

    EXPECT_EQ(find(1)->point, (Point{60, 50}));
    EXPECT_EQ(find(1)->buttons, leftButton);
    EXPECT_EQ(find(2)->buttons, 0u);
}

TEST_F(UserPaneTest, WithAButtonHeldMovesOutsideArriveToo)
{
    watchMouse();
    display->moveTo(screen(60, 50));
    display->press();
    ASSERT_TRUE(until([this] { return has(1); }));

    display->moveTo(screen(20, 10));

    ASSERT_TRUE(until([this] { return has(6); }));
    EXPECT_EQ(find(6)->point, (Point{20, 10}));
    display->release();
    EXPECT_TRUE(until([this] { return has(2); }));
}

TEST_F(UserPaneTest, LeavingIsReported)
{
    watchMouse();
    display->moveTo(screen(60, 50));
    ASSERT_TRUE(until([this] { return has(8); }));

    display->moveTo(screen(10, 10));

    EXPECT_TRUE(until([this] { return has(9); }));
}

TEST_F(UserPaneTest, AWheelNotchIsOne)
{
    std::int32_t up = 0;
    control(108).installHandler({{"mous"_4cc, 10}}, [&up](const Event& event) {
        up += *event.get<std::int32_t>("mwdy"_4cc);
        return noErr;
    });
    display->moveTo(screen(60, 50));
    settle();

    display->press(4);
    display->release(4);
    EXPECT_TRUE(until([&up] { return up == 1; }));
    display->press(5);
    display->release(5);
    EXPECT_TRUE(until([&up] { return up == 0; }));
}

TEST_F(UserPaneTest, TheSecondOfTwoQuickClicksCountsTwo)
{
    std::vector<std::uint32_t> counts;
    control(108).installHandler({{"mous"_4cc, 1}}, [&counts](const Event& event) {
        counts.push_back(*event.get<std::uint32_t>("ccnt"_4cc));
        return noErr;
    });

    display->click(screen(60, 50));
    display->click(screen(60, 50));

    ASSERT_TRUE(until([&counts] { return counts.size() == 2; }));
    EXPECT_EQ(counts, (std::vector<std::uint32_t>{1, 2}));
}

TEST_F(UserPaneTest, KeysComeDownAndUp)
{
    std::vector<std::uint32_t> kinds;
    std::uint32_t character = 0;
    control(108).installHandler({{"keyb"_4cc, 1}, {"keyb"_4cc, 3}}, [&](const Event& event) {
        kinds.push_back(event.type().kind);
        character = event.type().kind == 1 ? *event.get<std::uint32_t>("kchr"_4cc) : character;
        return noErr;
    });
    ASSERT_TRUE(until([this] { return control(108).focus(); }));

    display->key("a");

    ASSERT_TRUE(until([&kinds] { return kinds.size() == 2; }));
    EXPECT_EQ(kinds, (std::vector<std::uint32_t>{1, 3}));
    EXPECT_EQ(character, static_cast<std::uint32_t>('a'));
}

TEST_F(UserPaneTest, AContextualClickGoesToTheWindowAndNotToTheMouse)
{
    watchMouse();
    std::optional<Point> at;
    window->installHandler({{"cntl"_4cc, 12}}, [&](const Event& event) {
        EXPECT_EQ(event.get<Control*>("----"_4cc), &control(108));
        at = event.get<Point>("mloc"_4cc);
        return noErr;
    });

    display->click(screen(60, 50), 3);

    ASSERT_TRUE(until([&at] { return at.has_value(); }));
    EXPECT_EQ(*at, (Point{60, 50}));
    EXPECT_FALSE(has(1));
}

TEST_F(UserPaneTest, AContextualClickThatNobodyTakesIsAMouseDown)
{
    watchMouse();

    display->click(screen(60, 50), 3);

    ASSERT_TRUE(until([this] { return has(1); }));
    EXPECT_EQ(find(1)->buttons, rightButton);
}

TEST_F(UserPaneTest, AMenuThatIsLeftHasHadTheWholeClick)
{
    watchMouse();
    bool isOver = false;
    Menu menu;
    menu.addItem("Export To Desktop", 1);
    window->installHandler({{"cntl"_4cc, 12}}, [&](const Event& event) {
        menu.popUp(*window, *event.get<Point>("mloc"_4cc));
        isOver = true;
        return eventNotHandledErr;
    });

    const auto user = inMenu([this] { display->key("Escape"); });
    display->click(screen(60, 50), 3);

    ASSERT_TRUE(until([&isOver] { return isOver; }));
    settle();
    EXPECT_FALSE(has(1));
}
