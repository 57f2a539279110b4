/// The browser of the editor: a tree of styles and a list of the selected style's patterns.
#pragma once
#include "effect/CLooper.h"
#include "library/DirectoryTrees.h"
#include "platform/toolkit/DataBrowser.h"
#include "platform/toolkit/Menu.h"
#include "shared/System/kvString.h"

#include <memory>
#include <string>

class CLooperView;

namespace toolkit {
class Window;
}

/// Shows the nodes of the shared library, each of which it holds while it is shown. Library paths
/// have backslashes, paths on the disk slashes. Thread: user interface, which is also where changes
/// of the library are handed over while a window is open.
class PatternsView : public CLooper::Listener
{
public:
    using Node = Korvanel::DirectoryTrees::Node;
    using Tree = Korvanel::DirectoryTrees::Tree;
    using Leaf = Korvanel::DirectoryTrees::Leaf;

    static constexpr int kStylesBrowser = 99;    ///< control ID
    static constexpr int kPatternsBrowser = 101; ///< control ID

    /// Neither is owned. @param owner  may be null
    PatternsView(CLooper* looper, CLooperView* owner);
    PatternsView(const PatternsView&) = delete;
    PatternsView& operator=(const PatternsView&) = delete;
    ~PatternsView();

    /// Takes the window's two browsers. @return false, doing nothing, without a window, without one
    /// of them or when attached already
    bool AttachToWindow(toolkit::Window* window);
    void DetachFromWindow();

    void Update();            ///< selects the effect's style and pattern
    void UpdatePatternList(); ///< selects the effect's pattern if its style is listed
    /// Shows the library's styles anew, and again the style that was listed. The argument is not
    /// used: what was listed is found by its path.
    void UpdateListItems(Tree*);
    void AddListItems(Tree* style); ///< lists a style's patterns; null lists none
    void AddTreeItems(Tree* tree, toolkit::BrowserItem container);
    void DeselectTree(Tree* tree); ///< unlists it, if it is the one that is listed
    void LoadPattern(Node* node);  ///< plays it

    Korvanel::String GetCurrentlySelectedStyle() const; ///< path on the disk; "" for none
    Korvanel::String GetPatternName() const; ///< of what plays: style and pattern, with slashes

    /// Saves what plays as a new pattern of the listed style.
    void AddPattern();
    /// Deletes the file of what plays, if it lies in the listed style.
    void DeletePattern();

    std::shared_ptr<toolkit::Menu> contextMenuForStyles() const;

    std::shared_ptr<toolkit::Menu> contextMenuForPatterns() const { return nullptr; }

    /// @param index  1 for the first
    void SelectContextualMenu(toolkit::Control& browser, int index);

private:
    toolkit::Status itemData(toolkit::BrowserItem item, toolkit::BrowserProperty property,
                             toolkit::ItemData& data, bool set);
    void itemNotification(toolkit::BrowserItem item, toolkit::BrowserMessage message);

    CLooper* mLooper;
    CLooperView* mOwner;
    toolkit::Control* mStyles = nullptr;
    toolkit::Control* mPatterns = nullptr;
    Tree* mListedTree = nullptr;
    Korvanel::String mListedPath; ///< its path in the library
    bool mLoading = false;        ///< a selection is being turned into a pattern that plays
};

/// The name with ".mid" at its end, and without; other extensions, also ".midi" or ".MID", are part
/// of the name.
Korvanel::String AddMidiExtension(const Korvanel::String& name);
Korvanel::String TrimMidiExtension(const Korvanel::String& name);
