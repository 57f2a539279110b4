// Adding, renaming and deleting styles and patterns, by the window's buttons and the styles' menu.
#include "editor/Beeps.h"
#include "editor/LibraryFiles.h"
#include "editor/LibraryNodes.h"
#include "editor/PatternsView.h"
#include "platform/toolkit/Beep.h"
#include "platform/toolkit/FileManager.h"
#include "platform/toolkit/FourCharCode.h"
#include "shared/System/kvStream.h"

#include <cstdio>

using Korvanel::String;
using toolkit::Menu;
using toolkit::operator""_4cc; // NOLINT(misc-unused-using-decls): it does not see literals

namespace {

constexpr std::uint32_t kFileSlack = 1 << 16; // many small writes make a pattern

enum StyleCommand { AddStyle = 1, DeleteStyle = 2, RenameStyle = 3, ShowInfo = 5 }; // item indices

toolkit::Status editName(const toolkit::Control& styles, const PatternsView::Node* style)
{
    return styles.dataBrowser()->editItem(toItem(style), "styl"_4cc);
}

} // namespace

/// Rescans the library, which tells every window of it, and lists a style again here.
void PatternsView::refresh(const String& path)
{
    if (const auto library = CLooper::patternTree())
        library->updateAndNotify();
    listAgain(path);
}

// Patterns ----------------------------------------------------------------------------------------

void PatternsView::AddPattern()
{
    const String listed = listedPath();
    const String folder = GetCurrentlySelectedStyle();
    const String name = TrimMidiExtension(mLooper->GetPatternName());
    if (folder.IsEmpty() || name.IsEmpty())
        return;
    // As it was loaded: rendered, what the velocity parameters and the loop's end do to its notes
    // would be done a second time when it is played.
    Korvanel::stringStream file({}, kFileSlack);
    mLooper->save_track(file);
    if (addPatternFile(folder.c_str(), toText(name), file.text()))
        refresh(listed);
    else
        toolkit::beep(kFailureBeep);
}

void PatternsView::DeletePattern()
{
    const String listed = listedPath();
    const String folder = GetCurrentlySelectedStyle();
    String style = mLooper->GetStyleName();
    style.Replace('\\', '/');
    if (folder.IsEmpty() || !(mLooper->GetPatternsDir() + "/" + style + "/" == folder))
        return;
    const String name = TrimMidiExtension(mLooper->GetPatternName());
    if (isLibraryName(toText(name)) && deletePatternFile((folder + name + ".mid").c_str()))
        refresh(listed);
    else
        toolkit::beep(kFailureBeep);
}

/// A refused name beeps. The node keeps its place in the lists, so only what is drawn changes.
void PatternsView::rename(Node& node, const std::string& text)
{
    bool done = false;
    {
        const LibraryLock library;
        done = isLibraryName(text) && isListedBelow(library.root(), &node) &&
               renameNode(node, node.isTree() ? text : text + ".mid");
    }
    if (!done)
        toolkit::beep(kFailureBeep);
    for (const PatternsView* view : mAttached) {
        view->mStyles->dataBrowser()->updateItem();
        view->mPatterns->dataBrowser()->updateItem();
    }
}

// The styles' menu --------------------------------------------------------------------------------

std::shared_ptr<Menu> PatternsView::contextMenuForStyles() const
{
    const LibraryLock hold;
    const std::uint32_t withStyle = mListedTree == nullptr ? Menu::disabledItem : 0;
    const bool hasInfo = mListedTree != nullptr && !mListedTree->GetDescription().IsEmpty();
    auto menu = std::make_shared<Menu>();
    menu->addItem("Add Style", 1);
    menu->addItem("Delete Style", 2, withStyle);
    menu->addItem("Rename Style", 3, withStyle);
    menu->addItem("", 0, Menu::separatorItem);
    menu->addItem("Show Info...", 4, hasInfo ? 0 : Menu::disabledItem);
    return menu;
}

void PatternsView::SelectContextualMenu(toolkit::Control& browser, int index)
{
    if (&browser != mStyles)
        return;
    switch (index) {
    case AddStyle:
        addStyle();
        break;
    case DeleteStyle:
        deleteStyle();
        break;
    case RenameStyle:
        renameStyle();
        break;
    case ShowInfo:
        showInfo();
        break;
    default:
        break;
    }
}

void PatternsView::addStyle()
{
    const String listed = listedPath();
    const String folder = GetCurrentlySelectedStyle();
    if (folder.IsEmpty())
        return;
    const std::string name = makeStyleFolder(folder.c_str());
    if (name.empty()) {
        toolkit::beep(kFailureBeep);
        return;
    }
    const String path = listed + "\\" + name.c_str();
    refresh(path);
    if (mStyles == nullptr) // the library's news may have closed the window
        return;
    const bool isThere = listedPath() == path;
    const toolkit::Status status = editName(*mStyles, isThere ? mListedTree : nullptr);
    if (status != toolkit::noErr)
        std::fprintf(stderr, "AddStyle: error %d\n", static_cast<int>(status));
}

/// Deletes what the library lists of it; a file that it does not know keeps the folder.
void PatternsView::deleteStyle()
{
    const String listed = listedPath();
    bool isThere = false;
    {
        const LibraryLock library;
        isThere = mListedTree != nullptr && isListedBelow(library.root(), mListedTree);
        if (isThere)
            mListedTree->Remove();
    }
    if (isThere) {
        refresh(listed);
    } else {
        toolkit::beep(kFailureBeep);
        listAgain(listed);
    }
}

void PatternsView::renameStyle()
{
    const toolkit::Status status = editName(*mStyles, mListedTree);
    if (status != toolkit::noErr)
        std::fprintf(stderr, "RenameStyle: error %d\n", static_cast<int>(status));
}

void PatternsView::showInfo()
{
    if (mListedTree == nullptr) {
        toolkit::beep(kFailureBeep);
        return;
    }
    String path;
    {
        const LibraryLock hold;
        path = mListedTree->GetDescription();
    }
    if (path.IsEmpty())
        return;
    const toolkit::Status status = toolkit::openDocument(path.c_str());
    if (status != toolkit::noErr)
        std::fprintf(stderr, "Finder openFile: \"%s\" returns %d\n", path.c_str(),
                     static_cast<int>(status));
}
