#include "platform/toolkit/native/BrowserTree.h"

#include <algorithm>
#include <utility>

namespace toolkit::native {

BrowserTree::BrowserTree()
{
    mNodes[0].open = true;
}

const BrowserTree::Node* BrowserTree::find(BrowserItem item) const
{
    const auto found = mNodes.find(item);
    return found == mNodes.end() ? nullptr : &found->second;
}

const std::vector<BrowserItem>& BrowserTree::members(BrowserItem container) const
{
    static const std::vector<BrowserItem> none;
    const auto* node = find(container);
    return node ? node->members : none;
}

BrowserItem BrowserTree::containerOf(BrowserItem item) const
{
    const auto* node = find(item);
    return node ? node->container : 0;
}

void BrowserTree::add(BrowserItem container, BrowserItem item)
{
    mNodes[item].container = container;
    mNodes[container].members.push_back(item);
    mRowsKnown = false;
}

std::vector<BrowserItem> BrowserTree::takeMembers(BrowserItem container)
{
    mRowsKnown = false;
    return std::exchange(mNodes[container].members, {});
}

std::vector<BrowserItem> BrowserTree::takeWithContents(BrowserItem item)
{
    std::vector<BrowserItem> result;
    for (const BrowserItem member : takeMembers(item)) {
        const auto inner = takeWithContents(member);
        result.insert(result.end(), inner.begin(), inner.end());
    }
    result.push_back(item);
    return result;
}

void BrowserTree::remove(BrowserItem item)
{
    if (item == 0 || !has(item))
        return;
    std::erase(mNodes[containerOf(item)].members, item);
    mNodes.erase(item);
    mRowsKnown = false;
}

bool BrowserTree::isOpen(BrowserItem item) const
{
    const auto* node = find(item);
    return node && node->open;
}

void BrowserTree::setOpen(BrowserItem item, bool open)
{
    mNodes[item].open = open;
    mRowsKnown = false;
}

bool BrowserTree::isSelected(BrowserItem item) const
{
    const auto* node = find(item);
    return node && node->selected;
}

void BrowserTree::setSelected(BrowserItem item, bool selected)
{
    mNodes[item].selected = selected;
}

void BrowserTree::addRows(BrowserItem container, int depth) const
{
    for (const BrowserItem member : members(container)) {
        mRows.push_back({member, depth});
        if (isOpen(member))
            addRows(member, depth + 1);
    }
}

const std::vector<BrowserTree::Row>& BrowserTree::rows() const
{
    if (!mRowsKnown) {
        mRows.clear();
        addRows(0, 0);
        mRowsKnown = true;
    }
    return mRows;
}

int BrowserTree::rowOf(BrowserItem item) const
{
    const auto& shown = rows();
    const auto found =
        std::find_if(shown.begin(), shown.end(), [&](const Row& row) { return row.item == item; });
    return found == shown.end() ? -1 : static_cast<int>(found - shown.begin());
}

} // namespace toolkit::native
