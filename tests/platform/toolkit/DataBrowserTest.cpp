#include "platform/toolkit/Menu.h"
#include "tests/platform/toolkit/ToolkitFixture.h"

#include <algorithm>
#include <map>
#include <vector>

using namespace toolkit;

namespace {

using Message = BrowserMessage;
using Told = std::pair<BrowserItem, Message>;

/// A tree of two styles, 10 (holding 11 and 12) and 20, each with a name that can be edited.
class DataBrowserTest : public ToolkitFixture
{
protected:
    void SetUp() override
    {
        ToolkitFixture::SetUp();
        open(R"({"kind": "data browser", "id": 99, "bounds": [20, 20, 200, 150], "columns":
                 [{"property": "styl", "title": "Style"},
                  {"property": "leng", "title": "Bars", "width": 50}]},
                {"kind": "push button", "id": 1, "bounds": [250, 20, 100, 24], "title": "Other"})");
        browser = control(99).dataBrowser();
        browser->setCallbacks(
            {.itemData = [this](Control&, BrowserItem item, BrowserProperty property,
                                ItemData& data,
                                bool set) { return cell(item, property, data, set); },
             .notification = [this](Control& source, BrowserItem item,
                                    Message message) { note(source, item, message); },
             .getContextualMenu = [this](Control&) { return menu; },
             .selectContextualMenu = [this](Control&, Menu&, int item) { chosen = item; }});
        browser->setDisclosureColumn("styl"_4cc, true);
        browser->setSelectionFlags(DataBrowser::selectOnlyOne);
        browser->addItems(0, {10, 20});
        told.clear();
    }

    Status cell(BrowserItem item, BrowserProperty property, ItemData& data, bool set)
    {
        if (set) {
            written.emplace_back(item, data.text());
            names[item] = data.text();
            return noErr;
        }
        if (property == itemIsEditableProperty)
            data.setBoolean(data.column() == "styl"_4cc);
        else if (property == itemIsContainerProperty)
            data.setBoolean(item % 10 == 0);
        else if (property == "styl"_4cc)
            data.setText(names[item]);
        else
            return propertyNotSupportedErr;
        return noErr;
    }

    void note(Control&, BrowserItem item, Message message)
    {
        told.emplace_back(item, message);
        if (message == Message::containerOpened && item == 10)
            browser->addItems(10, {11, 12});
        if (reaction)
            reaction(item, message);
    }

    Point cellAt(BrowserItem item) { return browser->cellBounds(item, "styl"_4cc).centre(); }

    void clickItem(BrowserItem item, unsigned button = 1)
    {
        display->click(window->toScreen(cellAt(item)), button);
    }

    bool isSelected(BrowserItem item)
    {
        return browser->selectedItems() == std::vector<BrowserItem>{item};
    }

    bool wasTold(BrowserItem item, Message message)
    {
        return std::find(told.begin(), told.end(), Told(item, message)) != told.end();
    }

    DataBrowser* browser = nullptr;
    std::map<BrowserItem, std::string> names{
        {10, "Rock"}, {11, "Slow"}, {12, "Quick"}, {20, "Jazz"}};
    std::vector<Told> told;
    std::vector<std::pair<BrowserItem, std::string>> written;
    std::function<void(BrowserItem, Message)> reaction;
    std::shared_ptr<Menu> menu;
    int chosen = 0;
};

} // namespace

TEST_F(DataBrowserTest, AddingTellsOnceForEveryItemThatIsNew)
{
    EXPECT_EQ(browser->addItems(0, {20, 30, 10}), noErr);

    EXPECT_EQ(told, (std::vector<Told>{{30, Message::itemAdded}}));
    EXPECT_EQ(browser->items(), (std::vector<BrowserItem>{10, 20, 30}));
}

TEST_F(DataBrowserTest, NothingIsAddedToAnUnknownContainerOrAsItemZero)
{
    EXPECT_EQ(browser->addItems(77, {30}), itemNotFoundErr);
    EXPECT_EQ(browser->addItems(0, {0, 30}), paramErr);
    EXPECT_TRUE(browser->hasItem(30));
    EXPECT_FALSE(browser->hasItem(0));
}

TEST_F(DataBrowserTest, OpeningTellsOnceAndItsOwnerFillsIt)
{
    EXPECT_EQ(browser->openContainer(10), noErr);
    EXPECT_EQ(browser->openContainer(10), noErr);

    EXPECT_EQ(told, (std::vector<Told>{{10, Message::containerOpened},
                                       {11, Message::itemAdded},
                                       {12, Message::itemAdded}}));
    EXPECT_EQ(browser->containerOf(11), 10u);
    EXPECT_TRUE(browser->isOpen(10));
}

TEST_F(DataBrowserTest, OnlyContainersCanBeOpened)
{
    browser->openContainer(10);
    EXPECT_EQ(browser->openContainer(11), paramErr);
    EXPECT_EQ(browser->openContainer(77), itemNotFoundErr);
}

TEST_F(DataBrowserTest, ClosingRemovesWhatStandsInside)
{
    browser->openContainer(10);
    told.clear();

    EXPECT_EQ(browser->closeContainer(10), noErr);

    EXPECT_EQ(told, (std::vector<Told>{{11, Message::itemRemoved},
                                       {12, Message::itemRemoved},
                                       {10, Message::containerClosed}}));
    EXPECT_TRUE(browser->items(10).empty());
}

TEST_F(DataBrowserTest, RemovingGoesFromTheInsideOutAndDeselectsSilently)
{
    browser->openContainer(10);
    browser->setSelectedItems({12}, DataBrowser::Assign::assign);
    told.clear();

    EXPECT_EQ(browser->removeAllItems(), noErr);

    EXPECT_EQ(told, (std::vector<Told>{{11, Message::itemRemoved},
                                       {12, Message::itemRemoved},
                                       {10, Message::itemRemoved},
                                       {20, Message::itemRemoved}}));
    EXPECT_EQ(browser->selectionAnchorFirst(), 0u);
}

TEST_F(DataBrowserTest, WhenAllItemsGoNoneIsListedFromTheFirstOn)
{
    browser->openContainer(10);
    std::vector<std::size_t> listed;
    reaction = [&](BrowserItem, Message message) {
        if (message == Message::itemRemoved)
            listed.push_back(browser->items(0).size() + browser->items(10).size());
    };

    browser->removeAllItems();

    EXPECT_EQ(listed, (std::vector<std::size_t>{0, 0, 0, 0}));
}

TEST_F(DataBrowserTest, AnItemIsRemovedFromItsOwnContainerOnly)
{
    browser->openContainer(10);
    EXPECT_EQ(browser->removeItems(20, {11}), itemNotFoundErr);
    EXPECT_TRUE(browser->hasItem(11));
    EXPECT_EQ(browser->removeItems(10, {11}), noErr);
    EXPECT_FALSE(browser->hasItem(11));
}

TEST_F(DataBrowserTest, SelectingTellsWhatLeavesBeforeWhatComes)
{
    browser->setSelectedItems({10}, DataBrowser::Assign::assign);
    told.clear();

    browser->setSelectedItems({20}, DataBrowser::Assign::assign);
    browser->setSelectedItems({20}, DataBrowser::Assign::assign);

    EXPECT_EQ(told,
              (std::vector<Told>{{10, Message::itemDeselected}, {20, Message::itemSelected}}));
    EXPECT_EQ(browser->selectionAnchorFirst(), 20u);
    EXPECT_EQ(browser->selectionAnchorLast(), 20u);
}

TEST_F(DataBrowserTest, WithSelectOnlyOneTheFirstOfSeveralIsSelected)
{
    browser->setSelectedItems({20, 10}, DataBrowser::Assign::assign);
    EXPECT_TRUE(isSelected(20));
    browser->setSelectedItems({10}, DataBrowser::Assign::add);
    EXPECT_TRUE(isSelected(10));
    browser->setSelectedItems({10}, DataBrowser::Assign::remove);
    EXPECT_TRUE(browser->selectedItems().empty());
    EXPECT_EQ(browser->setSelectedItems({77}, DataBrowser::Assign::assign), itemNotFoundErr);
}

TEST_F(DataBrowserTest, AClickSelects)
{
    clickItem(20);

    EXPECT_TRUE(until([this] { return isSelected(20); }));
    EXPECT_TRUE(wasTold(20, Message::itemSelected));
}

TEST_F(DataBrowserTest, AClickOnTheTriangleOpensAndDoesNotSelect)
{
    display->click(window->toScreen(browser->disclosureBounds(10).centre()));
    ASSERT_TRUE(until([this] { return browser->isOpen(10); }));

    display->click(window->toScreen(browser->disclosureBounds(10).centre()));
    EXPECT_TRUE(until([this] { return !browser->isOpen(10); }));
    EXPECT_TRUE(browser->selectedItems().empty());
}

TEST_F(DataBrowserTest, ADoubleClickIsToldAfterTheSelection)
{
    clickItem(10);
    clickItem(10);

    ASSERT_TRUE(until([this] { return wasTold(10, Message::itemDoubleClicked); }));
    EXPECT_EQ(told.front(), Told(10, Message::itemSelected));
    EXPECT_EQ(browser->editedItem(), 0u);
}

TEST_F(DataBrowserTest, ArrowKeysMoveOpenAndClose)
{
    clickItem(10);
    ASSERT_TRUE(until([this] { return isSelected(10) && control(99).hasFocus(); }));

    display->key("Right");
    ASSERT_TRUE(until([this] { return browser->isOpen(10); }));
    display->key("Down");
    ASSERT_TRUE(until([this] { return isSelected(11); }));
    display->key("End");
    ASSERT_TRUE(until([this] { return isSelected(20); }));
    display->key("Home");
    ASSERT_TRUE(until([this] { return isSelected(10); }));
    display->key("Down");
    display->key("Left");
    ASSERT_TRUE(until([this] { return isSelected(10); }));
    display->key("Left");
    EXPECT_TRUE(until([this] { return !browser->isOpen(10); }));
}

TEST_F(DataBrowserTest, LettersGoToTheItemThatBeginsWithThem)
{
    browser->openContainer(10);
    ASSERT_TRUE(until([this] {
        control(99).focus();
        return control(99).hasFocus();
    }));

    display->type("qu");

    EXPECT_TRUE(until([this] { return isSelected(12); }));
}

TEST_F(DataBrowserTest, EditingInPlaceOffersTheNewText)
{
    EXPECT_EQ(browser->editItem(20, "styl"_4cc), noErr);
    EXPECT_EQ(browser->editedItem(), 20u);

    display->type("Funk");
    display->key("Return");

    ASSERT_TRUE(until([this] { return browser->editedItem() == 0; }));
    EXPECT_EQ(written, (std::vector<std::pair<BrowserItem, std::string>>{{20, "Funk"}}));
    EXPECT_TRUE(wasTold(20, Message::editStopped));
}

TEST_F(DataBrowserTest, EscapeLeavesTheTextAsItWas)
{
    browser->editItem(20, "styl"_4cc);
    display->type("Funk");
    display->key("Escape");

    ASSERT_TRUE(until([this] { return browser->editedItem() == 0; }));
    EXPECT_TRUE(written.empty());
}

TEST_F(DataBrowserTest, AClickElsewhereKeepsTheEditedText)
{
    browser->editItem(20, "styl"_4cc);
    display->type("Soul");
    settle();

    clickItem(10);

    ASSERT_TRUE(until([this] { return browser->editedItem() == 0; }));
    EXPECT_EQ(written, (std::vector<std::pair<BrowserItem, std::string>>{{20, "Soul"}}));
}

TEST_F(DataBrowserTest, AnUntouchedOrEmptiedNameIsNotOffered)
{
    browser->editItem(20, "styl"_4cc);
    browser->stopEditing(true);
    browser->editItem(20, "styl"_4cc);
    display->key("BackSpace");
    display->key("Return");

    ASSERT_TRUE(until([this] { return browser->editedItem() == 0; }));
    EXPECT_TRUE(written.empty());
}

TEST_F(DataBrowserTest, F2AndASecondSlowClickStartEditing)
{
    clickItem(20);
    ASSERT_TRUE(until([this] { return isSelected(20); }));
    display->key("F2");
    ASSERT_TRUE(until([this] { return browser->editedItem() == 20; }));
    display->key("Escape");
    ASSERT_TRUE(until([this] { return browser->editedItem() == 0; }));

    EventLoop::runUntil([] { return false; }, 500); // longer than a double click
    clickItem(20);
    EXPECT_TRUE(until([this] { return browser->editedItem() == 20; }));
}

TEST_F(DataBrowserTest, WhatCannotBeEditedSaysSo)
{
    EXPECT_EQ(browser->editItem(20, "leng"_4cc), propertyNotSupportedErr);
    EXPECT_EQ(browser->editItem(20, "none"_4cc), propertyNotFoundErr);
    EXPECT_EQ(browser->editItem(77, "styl"_4cc), itemNotFoundErr);
}

TEST_F(DataBrowserTest, RemovingTheEditedItemCancelsTheEditing)
{
    browser->editItem(20, "styl"_4cc);
    display->type("Funk");
    settle();

    browser->removeItems(0, {20});

    EXPECT_EQ(browser->editedItem(), 0u);
    EXPECT_TRUE(written.empty());
    settle();
}

TEST_F(DataBrowserTest, TheContextualMenuIsShownForTheItemUnderThePointer)
{
    menu = std::make_shared<Menu>();
    menu->addItem("Add Style", 1);
    menu->addItem("Delete Style", 2);

    const auto user = inMenu([this] {
        EXPECT_TRUE(isSelected(20));
        display->key("Down");
        display->key("Down");
        display->key("Return");
    });
    clickItem(20, 3);

    EXPECT_TRUE(until([this] { return chosen == 2; }));
}

TEST_F(DataBrowserTest, AContextualMenuWithoutAChoiceTellsNothing)
{
    menu = std::make_shared<Menu>();
    menu->addItem("Add Style", 1);

    bool cancelled = false;
    const auto user = inMenu([&] {
        display->key("Escape");
        cancelled = true;
    });
    clickItem(20, 3);

    EXPECT_TRUE(until([&cancelled] { return cancelled; }));
    EXPECT_EQ(chosen, 0);
}

TEST_F(DataBrowserTest, ManyItemsScroll)
{
    std::vector<BrowserItem> many;
    for (BrowserItem item = 101; item <= 199; ++item)
        many.push_back(item);
    browser->addItems(0, many);

    EXPECT_EQ(browser->revealItem(199), noErr);
    EXPECT_GT(browser->scrollPosition(), 90);
    EXPECT_GT(browser->cellBounds(199, "styl"_4cc).height, 0);
    EXPECT_EQ(browser->cellBounds(10, "styl"_4cc), Rect());
    browser->setScrollPosition(0);
    EXPECT_EQ(browser->scrollPosition(), 0);
    EXPECT_GT(browser->cellBounds(10, "styl"_4cc).height, 0);
}

TEST_F(DataBrowserTest, RevealingOpensTheContainersAround)
{
    browser->openContainer(10);
    browser->addItems(11, {110});
    EXPECT_EQ(browser->cellBounds(110, "styl"_4cc), Rect());

    browser->updateItem();
    EXPECT_EQ(browser->revealItem(77), itemNotFoundErr);
    EXPECT_EQ(browser->revealItem(12), noErr);
    EXPECT_GT(browser->cellBounds(12, "styl"_4cc).height, 0);
}

TEST_F(DataBrowserTest, AListenerMayRemoveEverythingWhenToldOfASelection)
{
    reaction = [this](BrowserItem, Message message) {
        if (message == Message::itemSelected)
            browser->removeAllItems();
    };

    clickItem(20);

    EXPECT_TRUE(until([this] { return browser->items().empty(); }));
    settle();
}

TEST_F(DataBrowserTest, ClosingTheWindowReportsEveryItemAsRemoved)
{
    browser->openContainer(10);
    told.clear();

    window->dispose();

    EXPECT_EQ(told, (std::vector<Told>{{11, Message::itemRemoved},
                                       {12, Message::itemRemoved},
                                       {10, Message::itemRemoved},
                                       {20, Message::itemRemoved}}));
}

TEST_F(DataBrowserTest, ColumnsAndFlagsAreKept)
{
    EXPECT_EQ(browser->setDisclosureColumn("none"_4cc, true), propertyNotFoundErr);
    EXPECT_EQ(browser->selectionFlags(), 2u);
    EXPECT_EQ(browser->cellBounds(10, "leng"_4cc).width, 50);
}
