/// The inside of a data browser: its items, its owner's callbacks, and the list that shows it.
#pragma once
#include "platform/toolkit/DataBrowser.h"
#include "platform/toolkit/native/BrowserTree.h"
#include "platform/toolkit/native/ControlImpl.h"

namespace toolkit {

namespace native {

/// What the browser asks of the component that shows it.
class BrowserList
{
public:
    virtual ~BrowserList() = default;

    /// Rows, selection or texts have changed.
    virtual void refresh() = 0;
    virtual void scrollToRow(int row) = 0; ///< as little as makes it visible
    virtual void setTopRow(int row) = 0;
    virtual int topRow() const = 0;
    virtual bool startEditing(int row, BrowserProperty column, const std::string& text) = 0;
    /// The text as it stands; the field goes.
    virtual std::string endEditing() = 0;
    virtual Rect cellBounds(int row, BrowserProperty column) const = 0;
    virtual Rect disclosureBounds(int row) const = 0;
};

} // namespace native

struct DataBrowser::Impl
{
    explicit Impl(Control& itsControl)
        : control(itsControl)
    {
    }

    bool hasColumn(BrowserProperty column) const;
    bool ask(BrowserItem item, BrowserProperty property, ItemData& data) const;
    std::string textOf(BrowserItem item, BrowserProperty column) const;
    bool isContainer(BrowserItem item) const;
    bool isEditable(BrowserItem item, BrowserProperty column) const;
    void notify(BrowserItem item, BrowserMessage message);
    /// Exactly these are selected afterwards; the owner hears of every change.
    void select(const std::vector<BrowserItem>& wanted);
    void removeOne(BrowserItem item);
    void refresh();
    /// Asks the owner for the menu, shows it and hands over the choice.
    void contextualMenu(Point at);

    Control& control;
    Callbacks callbacks;
    native::BrowserTree tree;
    BrowserProperty disclosureColumn = 0;
    bool expandable = false;
    std::uint32_t flags = 0;
    BrowserItem editedItem = 0;
    BrowserProperty editedColumn = 0;
    native::BrowserList* list = nullptr; // null without a view
};

} // namespace toolkit
