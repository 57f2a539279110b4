/// The browser of the editor: a tree of styles and a list of the selected style's patterns.
#pragma once
#include "effect/CLooper.h"
#include "library/DirectoryTrees.h"
#include "platform/toolkit/DataBrowser.h"
#include "platform/toolkit/Menu.h"
#include "shared/System/kvString.h"

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

class CLooperView;

namespace toolkit {
class Window;
}

/// Shows the nodes of the shared library, each of which it holds while it is shown. Library paths
/// have backslashes, paths on the disk slashes. Thread: user interface, which is also where changes
/// of the library are handed over while a window is open.
class PatternsView final : public CLooper::Listener
{
public:
    using Node = Korvanel::DirectoryTrees::Node;
    using Tree = Korvanel::DirectoryTrees::Tree;
    using Leaf = Korvanel::DirectoryTrees::Leaf;

    static constexpr int kStylesBrowser = 99;    ///< control ID
    static constexpr int kPatternsBrowser = 101; ///< control ID

    /// @param looper  not owned. The editor around the view is not told anything: it follows the
    /// effect, as the view does.
    PatternsView(CLooper* looper, CLooperView*);
    PatternsView(const PatternsView&) = delete;
    PatternsView& operator=(const PatternsView&) = delete;
    ~PatternsView() override;

    /// Takes the window's two browsers. @return false, doing nothing, without a window, without one
    /// of them or when attached already
    bool AttachToWindow(toolkit::Window* window);
    /// Gives them back, before the window goes; what they show stays until then.
    void DetachFromWindow();

    // What follows does nothing while not attached. To show what plays never plays it anew.
    /// Selects the effect's style and pattern.
    void Update(); // NOLINT(bugprone-virtual-near-miss): the editor listens, and forwards by name
    void UpdatePatternList(); ///< selects the effect's pattern if its style is listed
    /// Shows the library's styles anew, and again the style that was listed, or what is left of its
    /// path. While a name is being edited that waits until the user has finished, unless the edited
    /// style or pattern has gone. The argument is not used.
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
    struct Playing; ///< the names of what plays

    // The browsers' callbacks. Each finds the view by its control, which knows none any more when
    // the view has left the window.
    static PatternsView* viewOf(const toolkit::Control& control);
    static toolkit::Status itemData(toolkit::Control& control, toolkit::BrowserItem item,
                                    toolkit::BrowserProperty property, toolkit::ItemData& data,
                                    bool set);
    static void itemNotification(toolkit::Control& control, toolkit::BrowserItem item,
                                 toolkit::BrowserMessage message);
    void notified(toolkit::DataBrowser& browser, Node* node, toolkit::BrowserMessage message);
    void itemRemoved(const Tree* style);
    void attach(toolkit::Control& control);
    static void detach(toolkit::Control& control);

    // Showing
    Tree* FindTree(Tree* from, const Korvanel::String& path, int start,
                   toolkit::BrowserItem container);
    void listAgain(const Korvanel::String& path);
    std::vector<Korvanel::String> openStyles() const;
    bool isEditingListed() const;
    void rebuildAfterEditing();
    void leaveOtherLibrary(const Tree* root);
    void showStyle(Tree* style);
    void showPattern(const Playing& playing, Tree* root);
    void setListed(Tree* style);
    Korvanel::String listedPath() const;

    // Files
    void rename(Node& node, const std::string& text);
    void refresh(const Korvanel::String& path);
    void addStyle();
    void deleteStyle();
    void renameStyle();
    void showInfo();

    static std::vector<PatternsView*> mAttached; ///< the views that show the library

    CLooper* mLooper;
    toolkit::Control* mStyles = nullptr;
    toolkit::Control* mPatterns = nullptr;
    Tree* mListedTree = nullptr;          ///< held
    Korvanel::String mListedPath;         ///< its path in the library, also when it has just gone
    bool mLoading = false;                ///< selection and effect are being brought into step
    bool mChangedMeanwhile = false;       ///< the library, while a name was being edited
    std::shared_ptr<PatternsView*> mSelf; ///< what calls that wait hold, weakly
};

/// The name with ".mid" at its end, and without; other extensions, also ".midi" or ".MID", are part
/// of the name.
Korvanel::String AddMidiExtension(const Korvanel::String& name);
Korvanel::String TrimMidiExtension(const Korvanel::String& name);
