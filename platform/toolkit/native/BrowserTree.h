/// The items of a data browser: what contains what, what is open, what is selected. No component,
/// no callbacks: a plain tree that knows the rows it is shown in.
#pragma once
#include "platform/toolkit/DataBrowser.h"

#include <unordered_map>
#include <vector>

namespace toolkit::native {

class BrowserTree
{
public:
    struct Row
    {
        BrowserItem item;
        int depth; ///< 0 at the top level
    };

    BrowserTree();

    bool has(BrowserItem item) const { return mNodes.count(item) > 0; } ///< 0 counts

    const std::vector<BrowserItem>& members(BrowserItem container) const;
    BrowserItem containerOf(BrowserItem item) const;

    /// The container exists and the item does not.
    void add(BrowserItem container, BrowserItem item);
    /// The members of a container, which has none from now on. They exist until each is removed,
    /// which so needs no search among the others.
    std::vector<BrowserItem> takeMembers(BrowserItem container);
    /// The item and everything in it, innermost first and taken from its containers; the item
    /// itself is last.
    std::vector<BrowserItem> takeWithContents(BrowserItem item);
    /// The item holds nothing any more.
    void remove(BrowserItem item);

    bool isOpen(BrowserItem item) const;
    void setOpen(BrowserItem item, bool open);
    bool isSelected(BrowserItem item) const;
    void setSelected(BrowserItem item, bool selected);

    /// What is shown, top to bottom.
    const std::vector<Row>& rows() const;
    /// -1 when the item is not shown.
    int rowOf(BrowserItem item) const;

private:
    struct Node
    {
        BrowserItem container = 0;
        std::vector<BrowserItem> members;
        bool open = false;
        bool selected = false;
    };

    void addRows(BrowserItem container, int depth) const;
    const Node* find(BrowserItem item) const;

    std::unordered_map<BrowserItem, Node> mNodes; // 0 is the browser itself
    mutable std::vector<Row> mRows;
    mutable bool mRowsKnown = false;
};

} // namespace toolkit::native
