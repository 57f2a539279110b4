#include "platform/toolkit/Menu.h"

#include "tests/platform/toolkit/ToolkitFixture.h"

using namespace toolkit;

namespace {

class MenuTest : public ToolkitFixture
{
protected:
    void SetUp() override
    {
        ToolkitFixture::SetUp();
        open(R"({"kind": "push button", "id": 1, "bounds": [20, 20, 100, 24], "title": "Menu"})");
        display->click(window->toScreen({390, 290})); // as a user, who has the window in front
        settle();
        menu.addItem("Export To Desktop", 1);
        menu.addItem("", 0, Menu::separatorItem);
        menu.addItem("Not now", 2, Menu::disabledItem);
        menu.addItem("Marked", 3, 0, true);
    }

    int choose(const std::function<void()>& user)
    {
        const auto timer = inMenu(user);
        return menu.popUp(*window, {150, 60});
    }

    Menu menu;
};

} // namespace

TEST_F(MenuTest, TheKeyboardChoosesAndTheIndexCountsFromZero)
{
    EXPECT_EQ(choose([this] {
                  display->key("Down");
                  display->key("Return");
              }),
              0);
}

TEST_F(MenuTest, SeparatorsCountAndDisabledItemsAreSkipped)
{
    EXPECT_EQ(choose([this] {
                  display->key("Down");
                  display->key("Down");
                  display->key("Return");
              }),
              3);
}

TEST_F(MenuTest, ThePointerChooses)
{
    const auto corner = window->toScreen({150, 60});
    EXPECT_EQ(choose([&] { display->click({corner.x + 40, corner.y + 16}); }), 0);
}

TEST_F(MenuTest, EscapeChoosesNothing)
{
    EXPECT_EQ(choose([this] { display->key("Escape"); }), -1);
}

TEST_F(MenuTest, AnEmptyMenuIsNotShown)
{
    EXPECT_EQ(Menu().popUp(*window, {0, 0}), -1);
}

TEST_F(MenuTest, AMenuOfAClosedWindowIsNotShown)
{
    window->dispose();
    EXPECT_EQ(menu.popUp(*window, {0, 0}), -1);
}

TEST_F(MenuTest, ClosingTheWindowClosesTheMenu)
{
    EXPECT_EQ(choose([this] { window->dispose(); }), -1);
    EXPECT_FALSE(window->isOpen());
}

TEST_F(MenuTest, AButtonsActionMayShowAMenuThatOutlivesTheWindow)
{
    bool returned = false;
    control(1).setAction([&](Control&, ControlPart) {
        choose([this] { window->dispose(); });
        returned = true;
    });

    click(1);

    EXPECT_TRUE(until([&returned] { return returned; }));
    settle();
}

TEST_F(MenuTest, ItemsAreEnabledAndMarkedByTheirIndexFromOne)
{
    menu.setEnabled(3, true);
    menu.setChecked(4, false);
    menu.setEnabled(1, false);
    menu.setEnabled(0, false);
    menu.setChecked(5, true);

    EXPECT_EQ(menu.count(), 4);
    EXPECT_EQ(menu.items()[2].attributes, 0u);
    EXPECT_FALSE(menu.items()[3].checked);
    EXPECT_EQ(menu.items()[0].attributes, Menu::disabledItem);
}
