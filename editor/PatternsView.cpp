#include "editor/PatternsView.h"

#include "editor/LibraryNodes.h"
#include "library/Pattern.h"
#include "midi/CMidiTrack.h"
#include "platform/toolkit/FourCharCode.h"
#include "platform/toolkit/Window.h"

#include <sys/stat.h>

using Korvanel::String;
using toolkit::BrowserItem;
using toolkit::BrowserMessage;
using toolkit::BrowserProperty;
using toolkit::Control;
using toolkit::DataBrowser;
using toolkit::ItemData;
using toolkit::operator""_4cc; // NOLINT(misc-unused-using-decls): it does not see literals

namespace {

using Node = PatternsView::Node;
using Leaf = PatternsView::Leaf;

constexpr BrowserProperty kStyleColumn = "styl"_4cc;
constexpr BrowserProperty kNameColumn = "name"_4cc;
constexpr BrowserProperty kLengthColumn = "leng"_4cc;

/// A length is read each time that it is drawn: what is larger is no pattern that anybody made.
constexpr off_t kLargestPattern = 4 << 20;

/// Whether reading the pattern ends, and soon: by now its name may be that of a pipe.
bool isReadable(const Leaf& leaf)
{
    struct stat info
    {
    };

    return leaf.isReadOnly() || (::stat(leaf.FullName().c_str(), &info) == 0 &&
                                 S_ISREG(info.st_mode) && info.st_size <= kLargestPattern);
}

/// In bars; "" for a style and for what is no pattern any more.
std::string lengthOf(Node* node)
{
    if (node->isTree())
        return {};
    auto* leaf = static_cast<Leaf*>(node);
    Korvanel::CMidiTrack track;
    if (!isReadable(*leaf) || !Korvanel::Pattern(leaf, nullptr).LoadTo(&track))
        return {};
    return std::to_string(track.numberOfBars());
}

void read(Node* node, BrowserProperty property, ItemData& data)
{
    const LibraryLock hold;
    switch (property) {
    case toolkit::itemIsEditableProperty:
        data.setBoolean(data.column() == kStyleColumn || data.column() == kNameColumn);
        break;
    case toolkit::itemIsContainerProperty:
        data.setBoolean(node->isTree());
        break;
    case kStyleColumn:
        data.setText(toText(node->name()));
        break;
    case kNameColumn:
        data.setText(toText(TrimMidiExtension(node->name())));
        break;
    case kLengthColumn:
        data.setText(lengthOf(node));
        break;
    default:
        break;
    }
}

bool hasMidiExtension(const String& name)
{
    const int point = name.ReverseFind('.');
    return point >= 0 && name.Mid(point) == ".mid";
}

} // namespace

// The window --------------------------------------------------------------------------------------

std::vector<PatternsView*> PatternsView::mAttached;

PatternsView::PatternsView(CLooper* looper, CLooperView*)
    : mLooper(looper)
    , mSelf(std::make_shared<PatternsView*>(this))
{
}

PatternsView::~PatternsView()
{
    DetachFromWindow();
}

bool PatternsView::AttachToWindow(toolkit::Window* window)
{
    if (window == nullptr || mStyles != nullptr)
        return false;
    Control* styles = window->findControl({0, kStylesBrowser});
    Control* patterns = window->findControl({0, kPatternsBrowser});
    if (styles == nullptr || patterns == nullptr || styles->dataBrowser() == nullptr ||
        patterns->dataBrowser() == nullptr)
        return false;

    mStyles = styles;
    mPatterns = patterns;
    mAttached.push_back(this);
    attach(*mStyles);
    attach(*mPatterns);
    mStyles->dataBrowser()->setDisclosureColumn(kStyleColumn, true);
    Update();
    return true;
}

void PatternsView::attach(Control& control)
{
    DataBrowser::Callbacks callbacks;
    callbacks.itemData = &PatternsView::itemData;
    callbacks.notification = &PatternsView::itemNotification;
    callbacks.getContextualMenu = [](Control& browser) -> std::shared_ptr<toolkit::Menu> {
        const PatternsView* view = viewOf(browser);
        if (view == nullptr)
            return nullptr;
        return &browser == view->mStyles ? view->contextMenuForStyles()
                                         : view->contextMenuForPatterns();
    };
    callbacks.selectContextualMenu = [](Control& browser, toolkit::Menu&, int index) {
        if (PatternsView* view = viewOf(browser))
            view->SelectContextualMenu(browser, index);
    };
    control.setReference(this);
    control.dataBrowser()->setCallbacks(std::move(callbacks));
    control.dataBrowser()->setSelectionFlags(DataBrowser::selectOnlyOne);
}

void PatternsView::DetachFromWindow()
{
    if (mStyles == nullptr)
        return;
    std::erase(mAttached, this);
    detach(*mStyles);
    detach(*mPatterns);
    mStyles = nullptr;
    mPatterns = nullptr;
    mChangedMeanwhile = false;
    setListed(nullptr);
}

void PatternsView::detach(Control& control)
{
    control.dataBrowser()->stopEditing(false);
    control.setReference(nullptr);
}

// The browsers' callbacks -------------------------------------------------------------------------

PatternsView* PatternsView::viewOf(const Control& control)
{
    return static_cast<PatternsView*>(control.reference());
}

toolkit::Status PatternsView::itemData(Control& control, BrowserItem item, BrowserProperty property,
                                       ItemData& data, bool set)
{
    PatternsView* view = viewOf(control);
    if (item == 0 || view == nullptr)
        return toolkit::propertyNotSupportedErr;
    if (!set)
        read(toNode(item), property, data);
    else if (property == kStyleColumn || property == kNameColumn)
        view->rename(*toNode(item), data.text());
    else
        return toolkit::propertyNotSupportedErr;
    return toolkit::noErr;
}

void PatternsView::itemNotification(Control& control, BrowserItem item, BrowserMessage message)
{
    PatternsView* view = viewOf(control);
    if (message == BrowserMessage::itemAdded)
        keepWithParents(toNode(item));
    else if (view != nullptr)
        view->notified(*control.dataBrowser(), toNode(item), message);
    if (message == BrowserMessage::itemRemoved) // also in a window that the view has left
        releaseWithParents(toNode(item));
}

void PatternsView::notified(DataBrowser& browser, Node* node, BrowserMessage message)
{
    if (message == BrowserMessage::editStopped) { // the node may be gone
        rebuildAfterEditing();
        return;
    }
    if (message == BrowserMessage::itemSelected && !node->isTree() && !mLoading)
        LoadPattern(node);
    if (!node->isTree())
        return;
    auto* style = static_cast<Tree*>(node);
    switch (message) {
    case BrowserMessage::itemRemoved:
        itemRemoved(style);
        break;
    case BrowserMessage::itemSelected:
        AddListItems(style);
        break;
    case BrowserMessage::itemDeselected:
        DeselectTree(style);
        break;
    case BrowserMessage::itemDoubleClicked:
        browser.openContainer(toItem(style));
        break;
    case BrowserMessage::containerOpened:
        AddTreeItems(style, toItem(style));
        break;
    default:
        break;
    }
}

/// The path stays: when the library is shown anew the style is listed again.
void PatternsView::itemRemoved(const Tree* style)
{
    if (style != mListedTree)
        return;
    const String path = listedPath();
    setListed(nullptr);
    mListedPath = path;
}

// Names -------------------------------------------------------------------------------------------

String PatternsView::GetPatternName() const
{
    String style = mLooper->GetStyleName();
    style.Replace('\\', '/');
    if (style.IsEmpty() || style[style.GetLength() - 1] != '/')
        style += '/';
    return TrimMidiExtension(style + mLooper->GetPatternName());
}

String AddMidiExtension(const String& name)
{
    return hasMidiExtension(name) ? name : name + ".mid";
}

String TrimMidiExtension(const String& name)
{
    return hasMidiExtension(name) ? name.Left(name.ReverseFind('.')) : name;
}
