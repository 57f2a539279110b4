/// The rows of a data browser, as tall as all of them together, inside a scrolling view.
#pragma once
#include "platform/toolkit/native/BrowserImpl.h"
#include "platform/toolkit/native/Look.h"

#include <memory>
#include <string>
#include <vector>

namespace toolkit::native {

struct BrowserColumn
{
    BrowserProperty property;
    int x;
    int width;
};

class BrowserBody final : public juce::Component, private juce::Timer
{
public:
    BrowserBody(DataBrowser::Impl& browser, juce::Viewport& viewport);

    /// The columns side by side in a row of this width.
    std::vector<BrowserColumn> columns(int width) const;
    juce::Rectangle<int> cell(int row, BrowserProperty column) const;
    /// Empty when the row's item is no container.
    juce::Rectangle<int> triangle(int row) const;

    /// Rows or texts have changed.
    void refresh();
    bool startEditing(int row, BrowserProperty column, const std::string& text);
    std::string endEditing();

    void paint(juce::Graphics& g) override;
    void mouseDown(const juce::MouseEvent& event) override;
    void mouseDoubleClick(const juce::MouseEvent& event) override;
    bool keyPressed(const juce::KeyPress& key) override;
    void focusGained(FocusChangeType cause) override;
    void focusLost(FocusChangeType cause) override;

private:
    const std::vector<BrowserTree::Row>& rows() const { return mBrowser.tree.rows(); }

    int rowAt(int y) const;
    BrowserItem itemAt(int row) const; ///< 0 outside
    int currentRow() const;            ///< the first selected; -1 for none
    bool showsTriangle(BrowserItem item, BrowserProperty column) const;
    void paintRow(juce::Graphics& g, int row) const;
    void paintCell(juce::Graphics& g, int row, const BrowserColumn& column,
                   juce::Colour colour) const;

    void click(int row, const juce::ModifierKeys& keys);
    /// A second click on a selected name starts editing, if no third one makes it a double click.
    void armEditing(int row, int x);
    void timerCallback() override;
    void finishEditing(const juce::TextEditor* field, bool keep, bool focus);
    void contextual(juce::Point<int> at);

    bool moveKey(const juce::KeyPress& key);
    bool treeKey(const juce::KeyPress& key);
    bool actionKey(const juce::KeyPress& key);
    bool typeAhead(const juce::KeyPress& key);
    void selectRow(int row);
    void toggle(BrowserItem item);

    DataBrowser& browser() const { return *mBrowser.control.dataBrowser(); }

    DataBrowser::Impl& mBrowser;
    juce::Viewport& mViewport;
    std::shared_ptr<juce::TextEditor> mEditor;
    BrowserItem mArmedItem = 0;
    BrowserProperty mArmedColumn = 0;
    juce::String mTyped; // what type-ahead looks for
    juce::uint32 mTypedAt = 0;
};

} // namespace toolkit::native
