// What the two browsers list, and how that follows the effect and the library.
#include "editor/LibraryNodes.h"
#include "editor/PatternsView.h"
#include "platform/toolkit/EventLoop.h"

#include <utility>

using Korvanel::String;
using toolkit::BrowserItem;
using toolkit::Control;
using toolkit::DataBrowser;

struct PatternsView::Playing
{
    explicit Playing(const CLooper& looper)
        : style(looper.GetStyleName())
        , pattern(looper.GetPatternName())
    {
    }

    String style;   ///< path in the library
    String pattern; ///< with or without its extension
};

namespace {

using Node = PatternsView::Node;
using Tree = PatternsView::Tree;
using Leaf = PatternsView::Leaf;

/// The node and its siblings behind it.
std::vector<BrowserItem> itemsFrom(const Node* node)
{
    std::vector<BrowserItem> items;
    for (; node != nullptr; node = node->next())
        items.push_back(toItem(node));
    return items;
}

bool SelectItem(const Control& control, const Node* node)
{
    if (node == nullptr)
        return false;
    DataBrowser& browser = *control.dataBrowser();
    browser.setSelectedItems({toItem(node)}, DataBrowser::Assign::assign);
    browser.revealItem(toItem(node));
    return true;
}

Tree* subTreeNamed(const Tree& tree, const String& name)
{
    for (Tree* sub = tree.firstTree(); sub != nullptr; sub = static_cast<Tree*>(sub->next()))
        if (sub->name() == name)
            return sub;
    return nullptr;
}

void collectOpen(const DataBrowser& browser, BrowserItem container, std::vector<String>& paths)
{
    for (const BrowserItem item : browser.items(container)) {
        if (!browser.isOpen(item))
            continue;
        paths.push_back(toNode(item)->PathName(nullptr));
        collectOpen(browser, item, paths);
    }
}

/// Keeps a flag set for a scope, exceptions included.
class FlagSet
{
public:
    explicit FlagSet(bool& flag)
        : mFlag(flag)
        , mOuter(std::exchange(flag, true))
    {
    }

    FlagSet(const FlagSet&) = delete;
    FlagSet& operator=(const FlagSet&) = delete;

    ~FlagSet() { mFlag = mOuter; }

private:
    bool& mFlag;
    bool mOuter;
};

} // namespace

// Following ---------------------------------------------------------------------------------------

void PatternsView::Update() // NOLINT(bugprone-virtual-near-miss): as in the header
{
    if (mLoading || mStyles == nullptr)
        return;
    const Playing playing(*mLooper);
    const FlagSet showing(mLoading);
    const LibraryLock library;
    Tree* root = library.root();
    if (root == nullptr)
        return;
    leaveOtherLibrary(root);
    showStyle(FindTree(root, playing.style, 0, 0));
    showPattern(playing, root);
}

void PatternsView::UpdatePatternList()
{
    if (mLoading || mStyles == nullptr || mChangedMeanwhile) // then that comes with the rest
        return;
    const Playing playing(*mLooper);
    const FlagSet showing(mLoading);
    const LibraryLock library;
    if (library.root() != nullptr)
        showPattern(playing, library.root());
}

void PatternsView::UpdateListItems(Tree*)
{
    if (mStyles == nullptr)
        return;
    if (isEditingListed())
        mChangedMeanwhile = true;
    else
        listAgain(listedPath());
}

/// Whether a name is being edited of something that the library still has. That must not be taken
/// away from under the user's hands: to make a style changes the library, and then its name is
/// edited.
bool PatternsView::isEditingListed() const
{
    const LibraryLock library;
    for (const Control* control : {mStyles, mPatterns}) {
        const BrowserItem edited = control->dataBrowser()->editedItem();
        if (edited != 0 && isListedBelow(library.root(), toNode(edited)))
            return true;
    }
    return false;
}

/// The browser is still busy with its end of the editing, so this waits for its turn.
void PatternsView::rebuildAfterEditing()
{
    if (!std::exchange(mChangedMeanwhile, false))
        return;
    toolkit::EventLoop::post([self = std::weak_ptr<PatternsView*>(mSelf)] {
        if (const auto view = self.lock())
            (*view)->UpdateListItems(nullptr);
    });
}

/// Shows the library anew, and a style of it as listed.
void PatternsView::listAgain(const String& path)
{
    if (mStyles == nullptr)
        return;
    mChangedMeanwhile = false;
    const Playing playing(*mLooper);
    const FlagSet showing(mLoading);
    const LibraryLock library;
    DataBrowser& styles = *mStyles->dataBrowser();
    const auto open = openStyles();
    const int top = styles.scrollPosition();
    styles.removeAllItems();
    Tree* root = library.root();
    if (root == nullptr) {
        AddListItems(nullptr);
        return;
    }
    for (const String& each : open)
        styles.openContainer(toItem(FindTree(root, each, 0, 0)));
    Tree* style = FindTree(root, path, 0, 0);
    styles.setScrollPosition(top);
    if (style == root)
        AddListItems(nullptr);
    else
        showStyle(style);
    showPattern(playing, root);
}

std::vector<String> PatternsView::openStyles() const
{
    std::vector<String> paths;
    collectOpen(*mStyles->dataBrowser(), 0, paths);
    return paths;
}

void PatternsView::LoadPattern(Node* node)
{
    String style;
    String pattern;
    {
        const LibraryLock hold;
        pattern = node->name();
        if (node->parent() != nullptr && node->parent()->parent() != nullptr)
            style = node->parent()->PathName(nullptr);
    }
    const FlagSet loading(mLoading);
    mLooper->ChangePattern(style.c_str(), pattern.c_str());
}

// Showing -----------------------------------------------------------------------------------------

/// Walks down a path, and opens on the way what contains the rest of it. @return the deepest style
/// that there is, or `from`
PatternsView::Tree* PatternsView::FindTree(Tree* from, const String& path, int start,
                                           BrowserItem container)
{
    AddTreeItems(from, container);
    if (start >= path.GetLength())
        return from;
    int end = path.Find('\\', start);
    end = end < 0 ? path.GetLength() : end;
    Tree* found = subTreeNamed(*from, path.Mid(start, end - start));
    if (found == nullptr)
        return from;
    mStyles->dataBrowser()->openContainer(toItem(found));
    return FindTree(found, path, end + 1, toItem(found));
}

/// A library that was closed and opened again has other nodes by the same names.
void PatternsView::leaveOtherLibrary(const Tree* root)
{
    DataBrowser& styles = *mStyles->dataBrowser();
    const auto shown = styles.items();
    if (!shown.empty() && toNode(shown.front())->parent() != root) {
        styles.removeAllItems();
        AddListItems(nullptr);
    }
}

/// Selects and lists a style; the root is none.
void PatternsView::showStyle(Tree* style)
{
    if (style->parent() == nullptr)
        return;
    SelectItem(*mStyles, style);
    if (mListedTree != style) // it was selected already, by a view before this one
        AddListItems(style);
}

/// Selects what plays, if it is listed, and otherwise nothing: a name alone is not enough, as the
/// nearest folder that is left of a path may have a pattern of the same name.
void PatternsView::showPattern(const Playing& playing, Tree* root)
{
    Leaf* leaf = nullptr;
    const Tree* style = root->FindTree(playing.style, 0);
    if (style == mListedTree && !playing.pattern.IsEmpty() &&
        style->PathName(nullptr) == playing.style)
        leaf = mListedTree->FindLeaf(AddMidiExtension(playing.pattern), 0);
    const bool isShown = mPatterns->dataBrowser()->hasItem(toItem(leaf));
    if (!SelectItem(*mPatterns, isShown ? leaf : nullptr))
        mPatterns->dataBrowser()->setSelectedItems({}, DataBrowser::Assign::assign);
}

void PatternsView::AddListItems(Tree* style)
{
    if (mPatterns == nullptr)
        return;
    const LibraryLock hold;
    DataBrowser& patterns = *mPatterns->dataBrowser();
    patterns.removeAllItems();
    setListed(style);
    if (style != nullptr)
        patterns.addItems(0, itemsFrom(style->firstLeaf()));
    patterns.setScrollPosition(0);
}

void PatternsView::AddTreeItems(Tree* tree, BrowserItem container)
{
    if (mStyles == nullptr)
        return;
    const LibraryLock hold;
    mStyles->dataBrowser()->addItems(container, itemsFrom(tree->firstTree()));
}

void PatternsView::DeselectTree(Tree* tree)
{
    if (tree != nullptr && tree == mListedTree)
        AddListItems(nullptr);
}

void PatternsView::setListed(Tree* style)
{
    const LibraryLock hold;
    keepWithParents(style);
    releaseWithParents(std::exchange(mListedTree, style));
    mListedPath = style == nullptr ? String() : style->PathName(nullptr);
}

/// Asked anew, as it may have been renamed, here or in another window.
String PatternsView::listedPath() const
{
    const LibraryLock hold;
    return mListedTree == nullptr ? mListedPath : mListedTree->PathName(nullptr);
}

String PatternsView::GetCurrentlySelectedStyle() const
{
    const LibraryLock hold;
    String path;
    if (mListedTree != nullptr)
        mListedTree->FullPath(path);
    return path;
}
