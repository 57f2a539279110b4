#include "platform/toolkit/DataBrowser.h"

#include "platform/toolkit/Menu.h"
#include "platform/toolkit/Window.h"
#include "platform/toolkit/native/BrowserImpl.h"

#include <algorithm>

namespace toolkit {

DataBrowser::DataBrowser(Control& control)
    : mImpl(std::make_unique<Impl>(control))
{
}

DataBrowser::~DataBrowser() = default;

void DataBrowser::setCallbacks(Callbacks callbacks)
{
    mImpl->callbacks = std::move(callbacks);
    mImpl->refresh();
}

Status DataBrowser::setDisclosureColumn(BrowserProperty column, bool expandable)
{
    if (!mImpl->hasColumn(column))
        return propertyNotFoundErr;
    mImpl->disclosureColumn = column;
    mImpl->expandable = expandable;
    mImpl->refresh();
    return noErr;
}

std::uint32_t DataBrowser::selectionFlags() const
{
    return mImpl->flags;
}

void DataBrowser::setSelectionFlags(std::uint32_t flags)
{
    mImpl->flags = flags;
}

Status DataBrowser::addItems(BrowserItem container, const std::vector<BrowserItem>& items)
{
    auto& impl = *mImpl;
    if (!impl.tree.has(container))
        return itemNotFoundErr;
    Status status = noErr;
    for (const BrowserItem item : items) {
        if (item == 0)
            status = paramErr;
        if (impl.tree.has(item) || !impl.tree.has(container))
            continue;
        impl.tree.add(container, item);
        impl.notify(item, BrowserMessage::itemAdded);
    }
    impl.refresh();
    return status;
}

Status DataBrowser::removeItems(BrowserItem container, const std::vector<BrowserItem>& items)
{
    auto& impl = *mImpl;
    Status status = noErr;
    for (const BrowserItem item : items) {
        if (item == 0 || !impl.tree.has(item) || impl.tree.containerOf(item) != container) {
            status = itemNotFoundErr;
            continue;
        }
        for (const BrowserItem each : impl.tree.takeWithContents(item))
            impl.removeOne(each);
    }
    impl.refresh();
    return status;
}

Status DataBrowser::removeAllItems(BrowserItem container)
{
    if (!mImpl->tree.has(container))
        return itemNotFoundErr;
    return removeItems(container, mImpl->tree.takeMembers(container));
}

bool DataBrowser::hasItem(BrowserItem item) const
{
    return item != 0 && mImpl->tree.has(item);
}

std::vector<BrowserItem> DataBrowser::items(BrowserItem container) const
{
    return mImpl->tree.members(container);
}

BrowserItem DataBrowser::containerOf(BrowserItem item) const
{
    return mImpl->tree.containerOf(item);
}

Status DataBrowser::openContainer(BrowserItem container)
{
    auto& impl = *mImpl;
    if (!hasItem(container))
        return itemNotFoundErr;
    if (impl.tree.isOpen(container))
        return noErr;
    if (!impl.isContainer(container))
        return paramErr;
    impl.tree.setOpen(container, true);
    impl.notify(container, BrowserMessage::containerOpened);
    impl.refresh();
    return noErr;
}

Status DataBrowser::closeContainer(BrowserItem container)
{
    auto& impl = *mImpl;
    if (!hasItem(container))
        return itemNotFoundErr;
    if (!impl.tree.isOpen(container))
        return noErr;
    impl.tree.setOpen(container, false);
    removeAllItems(container);
    impl.notify(container, BrowserMessage::containerClosed);
    impl.refresh();
    return noErr;
}

bool DataBrowser::isOpen(BrowserItem container) const
{
    return hasItem(container) && mImpl->tree.isOpen(container);
}

Status DataBrowser::setSelectedItems(const std::vector<BrowserItem>& items, Assign operation)
{
    const auto isUnknown = [this](BrowserItem item) { return !hasItem(item); };
    if (std::any_of(items.begin(), items.end(), isUnknown))
        return itemNotFoundErr;
    auto wanted = operation == Assign::assign ? std::vector<BrowserItem>() : selectedItems();
    for (const BrowserItem item : items) {
        std::erase(wanted, item);
        if (operation != Assign::remove)
            wanted.push_back(item);
    }
    if ((mImpl->flags & selectOnlyOne) != 0 && wanted.size() > 1)
        wanted = {items.empty() ? wanted.front() : items.front()};
    mImpl->select(wanted);
    return noErr;
}

std::vector<BrowserItem> DataBrowser::selectedItems() const
{
    std::vector<BrowserItem> result;
    for (const auto& row : mImpl->tree.rows())
        if (mImpl->tree.isSelected(row.item))
            result.push_back(row.item);
    return result;
}

BrowserItem DataBrowser::selectionAnchorFirst() const
{
    const auto selected = selectedItems();
    return selected.empty() ? 0 : selected.front();
}

BrowserItem DataBrowser::selectionAnchorLast() const
{
    const auto selected = selectedItems();
    return selected.empty() ? 0 : selected.back();
}

Status DataBrowser::revealItem(BrowserItem item)
{
    if (!hasItem(item))
        return itemNotFoundErr;
    std::vector<BrowserItem> outermostLast;
    for (auto outer = containerOf(item); outer != 0; outer = containerOf(outer))
        outermostLast.push_back(outer);
    std::for_each(outermostLast.rbegin(), outermostLast.rend(),
                  [this](BrowserItem outer) { openContainer(outer); });
    const int row = mImpl->tree.rowOf(item);
    if (mImpl->list && row >= 0)
        mImpl->list->scrollToRow(row);
    return noErr;
}

void DataBrowser::setScrollPosition(int topRow)
{
    if (mImpl->list)
        mImpl->list->setTopRow(topRow);
}

int DataBrowser::scrollPosition() const
{
    return mImpl->list ? mImpl->list->topRow() : 0;
}

void DataBrowser::updateItem(BrowserItem item)
{
    if (item == 0 || hasItem(item))
        mImpl->refresh();
}

Status DataBrowser::editItem(BrowserItem item, BrowserProperty column)
{
    auto& impl = *mImpl;
    if (!hasItem(item))
        return itemNotFoundErr;
    if (!impl.hasColumn(column))
        return propertyNotFoundErr;
    if (!impl.list || !impl.isEditable(item, column))
        return propertyNotSupportedErr;
    stopEditing(true);
    revealItem(item);
    const int row = impl.tree.rowOf(item);
    if (row < 0 || !impl.list->startEditing(row, column, impl.textOf(item, column)))
        return propertyNotSupportedErr;
    impl.editedItem = item;
    impl.editedColumn = column;
    impl.notify(item, BrowserMessage::editStarted);
    return noErr;
}

BrowserItem DataBrowser::editedItem() const
{
    return mImpl->editedItem;
}

void DataBrowser::stopEditing(bool keep)
{
    auto& impl = *mImpl;
    const auto item = std::exchange(impl.editedItem, 0);
    if (item == 0 || !impl.list)
        return;
    const auto alive = impl.control.window().weak_from_this().lock(); // the owner may close it
    ItemData data(impl.editedColumn);
    data.setText(impl.list->endEditing());
    // An untouched or emptied name is no new one.
    // What is no UTF-8 was edited as it was shown.
    const auto shown = native::toJuce(impl.textOf(item, impl.editedColumn)).toStdString();
    const bool isNew = !data.text().empty() && data.text() != shown;
    if (keep && isNew && impl.callbacks.itemData)
        impl.callbacks.itemData(impl.control, item, impl.editedColumn, data, true);
    impl.notify(item, BrowserMessage::editStopped);
    impl.refresh();
}

Rect DataBrowser::cellBounds(BrowserItem item, BrowserProperty column) const
{
    const int row = mImpl->tree.rowOf(item);
    return mImpl->list && row >= 0 ? mImpl->list->cellBounds(row, column) : Rect();
}

Rect DataBrowser::disclosureBounds(BrowserItem item) const
{
    const int row = mImpl->tree.rowOf(item);
    return mImpl->list && row >= 0 ? mImpl->list->disclosureBounds(row) : Rect();
}

} // namespace toolkit
