/// Effects whose windows have the two browsers, a library on the disk, and what a user does to
/// them.
#pragma once
#include "editor/LibraryNodes.h"
#include "editor/PatternsView.h"
#include "library/ChangeObserver.h"
#include "platform/toolkit/Beep.h"
#include "platform/toolkit/FourCharCode.h"
#include "tests/platform/toolkit/ToolkitFixture.h"
#include "tests/support/LibraryFolder.h"

#include <algorithm>
#include <memory>
#include <string>
#include <vector>

using Names = std::vector<std::string>;

/// An effect with a window, kept in step as the effect's editor does it.
class BrowserWindow : public CLooper::Listener
{
public:
    static constexpr const char* kControls = R"(
        {"kind": "data browser", "id": 99, "bounds": [10, 10, 180, 250],
         "columns": [{"property": "styl", "title": "Style"}]},
        {"kind": "data browser", "id": 101, "bounds": [200, 10, 190, 250],
         "columns": [{"property": "name", "title": "Pattern"},
                     {"property": "leng", "title": "Bars", "width": 50}]})";

    explicit BrowserWindow(const LibraryFolder& folder)
        : view(&effect, nullptr)
    {
        effect.SetPatternsDir(folder.path().c_str());
        effect.Initialize(nullptr);
        effect.AddLooperListener(this);
    }

    BrowserWindow(const BrowserWindow&) = delete;
    BrowserWindow& operator=(const BrowserWindow&) = delete;

    ~BrowserWindow() override
    {
        effect.RemoveLooperListener(this);
        close();
        effect.Terminate();
    }

    bool attach(std::shared_ptr<toolkit::Window> itsWindow)
    {
        window = std::move(itsWindow);
        return view.AttachToWindow(window.get());
    }

    void close()
    {
        view.DetachFromWindow();
        window.reset();
    }

    void loaded() override
    {
        ++loads;
        view.Update();
    }

    void patternsChanged() override
    {
        ++changes;
        view.UpdateListItems(nullptr);
        view.UpdatePatternList();
    }

    toolkit::Control& control(int id) { return *window->findControl({0, id}); }

    toolkit::DataBrowser& styles() { return *control(99).dataBrowser(); }

    toolkit::DataBrowser& patterns() { return *control(101).dataBrowser(); }

    static std::string pathOf(toolkit::BrowserItem item)
    {
        const LibraryLock hold;
        return toNode(item)->PathName(nullptr).c_str();
    }

    /// Paths in the library, containers before what they contain.
    static Names shown(const toolkit::DataBrowser& browser, toolkit::BrowserItem container = 0)
    {
        Names paths;
        for (const auto item : browser.items(container)) {
            paths.push_back(pathOf(item));
            const auto inner = shown(browser, item);
            paths.insert(paths.end(), inner.begin(), inner.end());
        }
        return paths;
    }

    static Names selected(const toolkit::DataBrowser& browser)
    {
        Names paths;
        for (const auto item : browser.selectedItems())
            paths.push_back(pathOf(item));
        return paths;
    }

    /// 0 when it is not shown.
    static toolkit::BrowserItem find(const toolkit::DataBrowser& browser, const std::string& path,
                                     toolkit::BrowserItem container = 0)
    {
        for (const auto item : browser.items(container)) {
            const auto inner = pathOf(item) == path ? item : find(browser, path, item);
            if (inner != 0)
                return inner;
        }
        return 0;
    }

    void selectStyle(const std::string& path)
    {
        styles().setSelectedItems({find(styles(), path)}, toolkit::DataBrowser::Assign::assign);
    }

    std::string listed() const { return view.GetCurrentlySelectedStyle().c_str(); }

    std::string style() const { return effect.GetStyleName().c_str(); }

    std::string pattern() const { return effect.GetPatternName().c_str(); }

    CLooper effect;
    std::shared_ptr<toolkit::Window> window;
    PatternsView view;
    int loads = 0;
    int changes = 0;
};

class BrowserFixture : public ToolkitFixture
{
protected:
    void SetUp() override
    {
        ToolkitFixture::SetUp();
        ChangeObserver::setDelivery(&toolkit::EventLoop::post);
        folder.put("Jazz/Swing.mid");
        folder.put("Rock/Groove.mid", midiFileWithNote(61));
        folder.put("Rock/Intro.mid");
        folder.put("Rock/Fills/End.mid");
        beeps = toolkit::beepCount();
    }

    void TearDown() override
    {
        browser.reset();
        ChangeObserver::setDelivery(nullptr);
        ToolkitFixture::TearDown();
    }

    void openBrowser(const std::string& controls = BrowserWindow::kControls)
    {
        if (!browser)
            browser = std::make_unique<BrowserWindow>(folder);
        ToolkitFixture::open(controls);
        ASSERT_TRUE(browser->attach(window));
        window.reset(); // the browser's from now on
    }

    toolkit::Point cell(int id, toolkit::BrowserItem item)
    {
        const auto column = id == 99 ? "styl" : "name";
        const auto bounds =
            browser->control(id).dataBrowser()->cellBounds(item, toolkit::fourCharCode(column));
        return browser->window->toScreen(bounds.centre());
    }

    void clickStyle(const std::string& path, unsigned button = 1)
    {
        const auto item = BrowserWindow::find(browser->styles(), path);
        ASSERT_NE(item, 0u) << path;
        display->click(cell(99, item), button);
        ASSERT_TRUE(until([&] { return browser->styles().selectionAnchorFirst() == item; }));
    }

    void clickPattern(const std::string& path, unsigned button = 1)
    {
        const auto item = BrowserWindow::find(browser->patterns(), path);
        ASSERT_NE(item, 0u) << path;
        display->click(cell(101, item), button);
        ASSERT_TRUE(until([&] { return browser->patterns().selectionAnchorFirst() == item; }));
    }

    void typeLetter(char letter)
    {
        if (letter == '.')
            display->key("period");
        else if (letter == '/')
            display->key("slash");
        else if (letter == '\\')
            display->key("backslash");
        else
            display->type({letter});
    }

    /// Types a new name into what is being edited, and Return.
    void typeName(const std::string& name)
    {
        settle();
        for (const char letter : name)
            typeLetter(letter);
        display->key("Return");
        ASSERT_TRUE(until([&] {
            return browser->styles().editedItem() == 0 && browser->patterns().editedItem() == 0;
        }));
        settle();
    }

    void editStyle(const std::string& path)
    {
        const auto item = BrowserWindow::find(browser->styles(), path);
        ASSERT_EQ(browser->styles().editItem(item, toolkit::fourCharCode("styl")), toolkit::noErr);
    }

    void editPattern(const std::string& path)
    {
        const auto item = BrowserWindow::find(browser->patterns(), path);
        ASSERT_EQ(browser->patterns().editItem(item, toolkit::fourCharCode("name")),
                  toolkit::noErr);
    }

    /// Chooses an entry of the styles' menu without showing it.
    void choose(int index) { browser->view.SelectContextualMenu(browser->control(99), index); }

    bool exists(const std::string& name) const { return std::filesystem::exists(folder / name); }

    std::uint32_t newBeeps() const { return toolkit::beepCount() - beeps; }

    static void rescan() { CLooper::patternTree()->updateAndNotify(); }

    LibraryFolder folder;
    std::unique_ptr<BrowserWindow> browser;
    std::uint32_t beeps = 0;
};
