/// A list or tree of items with columns, inside a control. It stores item numbers and what contains
/// what; texts come from the owner each time a cell is drawn. Thread: user interface.
#pragma once
#include "platform/toolkit/Control.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace toolkit {

class Menu;

/// The owner's number of an item, wide enough for an address. 0 is no item, and as a container it
/// is the browser itself.
using BrowserItem = std::uintptr_t;
using BrowserProperty = std::uint32_t; ///< a column's four characters, or one of the next two

constexpr BrowserProperty itemIsEditableProperty = 3;
constexpr BrowserProperty itemIsContainerProperty = 4;

enum class BrowserMessage : std::uint32_t {
    itemAdded = 1,
    itemRemoved = 2,
    editStarted = 3,
    editStopped = 4,
    itemSelected = 5,
    itemDeselected = 6,
    itemDoubleClicked = 7, ///< or Return pressed on it
    containerOpened = 8,
    containerClosed = 10
};

/// What a cell asks for or, after editing, offers.
class ItemData
{
public:
    explicit ItemData(BrowserProperty column = 0)
        : mColumn(column)
    {
    }

    /// The column that the question is about, also when the property is one of the two numbers.
    BrowserProperty column() const { return mColumn; }

    void setText(std::string text) { mText = std::move(text); } ///< UTF-8

    const std::string& text() const { return mText; }

    void setBoolean(bool value) { mBoolean = value; }

    bool boolean() const { return mBoolean; }

private:
    BrowserProperty mColumn;
    std::string mText;
    bool mBoolean = false;
};

class DataBrowser
{
public:
    struct Callbacks
    {
        /// Fills `data` in, or with `set` takes it over. A status other than noErr leaves the cell
        /// empty, or the item no container and not editable.
        std::function<Status(Control&, BrowserItem, BrowserProperty, ItemData& data, bool set)>
            itemData;
        /// May change the browser, but not remove the item that an itemRemoved is about.
        std::function<void(Control&, BrowserItem, BrowserMessage)> notification;
        /// The menu for a contextual click; null for none.
        std::function<std::shared_ptr<Menu>(Control&)> getContextualMenu;
        /// The chosen entry, 1 for the first. Called only when one was chosen.
        std::function<void(Control&, Menu&, int)> selectContextualMenu;
    };

    /// Selection flag: a click selects one item and deselects the others.
    static constexpr std::uint32_t selectOnlyOne = 2;

    enum class Assign { assign, add, remove };

    explicit DataBrowser(Control& control);
    ~DataBrowser();
    DataBrowser(const DataBrowser&) = delete;
    DataBrowser& operator=(const DataBrowser&) = delete;

    void setCallbacks(Callbacks callbacks);

    /// Shows the triangle that opens containers in this column. Without `expandable` containers are
    /// shown but cannot be opened by the user.
    /// @return propertyNotFoundErr when there is no such column
    Status setDisclosureColumn(BrowserProperty column, bool expandable);
    std::uint32_t selectionFlags() const;
    void setSelectionFlags(std::uint32_t flags);

    /// Adds items at the container's end, in order, each with an itemAdded. An item that is in the
    /// browser already stays where it is and is not reported.
    /// @return itemNotFoundErr when there is no such container; paramErr for an item 0 (the others
    /// are added)
    Status addItems(BrowserItem container, const std::vector<BrowserItem>& items);

    /// Removes items with all they contain, innermost first, each with an itemRemoved. A selected
    /// one is deselected without an itemDeselected: the owner has given it up already. An editing
    /// in one of them is cancelled.
    /// @return itemNotFoundErr when one is not in `container` (the others are removed)
    Status removeItems(BrowserItem container, const std::vector<BrowserItem>& items);
    /// Everything in the container; 0 for everything.
    Status removeAllItems(BrowserItem container = 0);

    bool hasItem(BrowserItem item) const;
    /// Direct members, in order. Empty for an unknown container.
    std::vector<BrowserItem> items(BrowserItem container = 0) const;
    /// 0 at the top level and for an unknown item.
    BrowserItem containerOf(BrowserItem item) const;

    /// Opens with a containerOpened, unless it is open: then nothing. What stands inside stays.
    /// @return itemNotFoundErr; paramErr when it is no container
    Status openContainer(BrowserItem container);
    /// Closes with a containerClosed and removes what stands inside, as `removeItems` does.
    Status closeContainer(BrowserItem container);
    bool isOpen(BrowserItem container) const;

    /// Changes the selection; itemDeselected comes before itemSelected, and neither for an item
    /// whose state stays. With `selectOnlyOne` only the first of several is selected.
    /// @return itemNotFoundErr for an unknown item (nothing is changed)
    Status setSelectedItems(const std::vector<BrowserItem>& items, Assign operation);
    /// In the order of the rows; items in closed containers are not among them.
    std::vector<BrowserItem> selectedItems() const;
    /// The first and the last selected item; 0 for none.
    BrowserItem selectionAnchorFirst() const;
    BrowserItem selectionAnchorLast() const;

    /// Opens what contains the item, and scrolls as little as makes it visible.
    Status revealItem(BrowserItem item);
    /// In rows from the top; limited to what there is.
    void setScrollPosition(int topRow);
    int scrollPosition() const;

    /// Draws the item again, or all with 0.
    void updateItem(BrowserItem item = 0);

    /// Starts editing a cell in place. Return, Tab and a click elsewhere keep the text and offer it
    /// through the item-data callback; Escape does not.
    /// @return itemNotFoundErr; propertyNotFoundErr; propertyNotSupportedErr when the owner says
    /// that it is not editable, or the item cannot be shown
    Status editItem(BrowserItem item, BrowserProperty column);
    /// The item being edited; 0 for none.
    BrowserItem editedItem() const;
    /// Ends editing; `keep` offers the text to the owner.
    void stopEditing(bool keep);

    /// Where a cell is, in window points; empty when the item is not in an open container or has
    /// been scrolled away.
    Rect cellBounds(BrowserItem item, BrowserProperty column) const;
    /// The triangle that opens the item; empty as above, or when it has none.
    Rect disclosureBounds(BrowserItem item) const;

    struct Impl;

    Impl& impl() const { return *mImpl; }

private:
    std::unique_ptr<Impl> mImpl;
};

} // namespace toolkit
