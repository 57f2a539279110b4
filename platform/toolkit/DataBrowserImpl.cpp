#include "platform/toolkit/Menu.h"
#include "platform/toolkit/Window.h"
#include "platform/toolkit/native/BrowserImpl.h"

#include <algorithm>

namespace toolkit {

bool DataBrowser::Impl::hasColumn(BrowserProperty column) const
{
    const auto& columns = control.impl().description.columns;
    return std::any_of(columns.begin(), columns.end(),
                       [column](const auto& each) { return each.property == column; });
}

bool DataBrowser::Impl::ask(BrowserItem item, BrowserProperty property, ItemData& data) const
{
    return callbacks.itemData && callbacks.itemData(control, item, property, data, false) == noErr;
}

std::string DataBrowser::Impl::textOf(BrowserItem item, BrowserProperty column) const
{
    ItemData data(column);
    return ask(item, column, data) ? data.text() : std::string();
}

bool DataBrowser::Impl::isContainer(BrowserItem item) const
{
    ItemData data(disclosureColumn);
    return ask(item, itemIsContainerProperty, data) && data.boolean();
}

bool DataBrowser::Impl::isEditable(BrowserItem item, BrowserProperty column) const
{
    ItemData data(column);
    return ask(item, itemIsEditableProperty, data) && data.boolean();
}

void DataBrowser::Impl::notify(BrowserItem item, BrowserMessage message)
{
    const auto call = callbacks.notification; // the owner may replace the callbacks
    if (call)
        call(control, item, message);
}

void DataBrowser::Impl::select(const std::vector<BrowserItem>& wanted)
{
    const auto alive = control.window().weak_from_this().lock();
    const auto isWanted = [&wanted](BrowserItem item) {
        return std::find(wanted.begin(), wanted.end(), item) != wanted.end();
    };
    std::vector<BrowserItem> leaving;
    for (const auto& row : tree.rows())
        if (tree.isSelected(row.item) && !isWanted(row.item))
            leaving.push_back(row.item);
    std::vector<BrowserItem> coming;
    for (const BrowserItem item : wanted)
        if (!tree.isSelected(item))
            coming.push_back(item);
    for (const BrowserItem item : leaving)
        tree.setSelected(item, false);
    for (const BrowserItem item : coming)
        tree.setSelected(item, true);
    refresh();
    // The owner may answer any of these by removing items or selecting others.
    for (const BrowserItem item : leaving)
        if (tree.has(item) && !tree.isSelected(item))
            notify(item, BrowserMessage::itemDeselected);
    for (const BrowserItem item : coming)
        if (tree.isSelected(item))
            notify(item, BrowserMessage::itemSelected);
}

void DataBrowser::Impl::removeOne(BrowserItem item)
{
    if (!tree.has(item)) // a notification has removed it already
        return;
    if (item == editedItem)
        control.dataBrowser()->stopEditing(false);
    tree.remove(item);
    notify(item, BrowserMessage::itemRemoved);
}

void DataBrowser::Impl::refresh()
{
    if (list)
        list->refresh();
}

void DataBrowser::Impl::contextualMenu(Point at)
{
    const auto alive = control.window().weak_from_this().lock();
    if (!callbacks.getContextualMenu || control.impl().closed)
        return;
    const auto menu = callbacks.getContextualMenu(control);
    const int chosen = menu ? menu->popUp(control.window(), at) : -1;
    const auto call = callbacks.selectContextualMenu;
    if (chosen >= 0 && call && !control.impl().closed)
        call(control, *menu, chosen + 1);
}

} // namespace toolkit
