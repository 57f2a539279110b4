#include "platform/toolkit/native/BrowserBody.h"

#include "platform/toolkit/native/Graveyard.h"
#include "platform/toolkit/native/ViewBase.h"

#include <algorithm>

namespace toolkit::native {

BrowserBody::BrowserBody(DataBrowser::Impl& browser, juce::Viewport& viewport)
    : mBrowser(browser)
    , mViewport(viewport)
{
    setWantsKeyboardFocus(true);
    setOpaque(true);
}

std::vector<BrowserColumn> BrowserBody::columns(int width) const
{
    const auto& described = mBrowser.control.impl().description.columns;
    int fixed = 0;
    int flexible = 0;
    for (const auto& column : described) {
        fixed += column.width;
        flexible += column.width == 0 ? 1 : 0;
    }
    const int rest = flexible > 0 ? std::max(width - fixed, 0) / flexible : 0;
    std::vector<BrowserColumn> result;
    int x = 0;
    for (const auto& column : described) {
        const int own = column.width == 0 ? rest : column.width;
        result.push_back({column.property, x, own});
        x += own;
    }
    return result;
}

int BrowserBody::rowAt(int y) const
{
    const int row = y < 0 ? -1 : y / measure::rowHeight;
    return row < static_cast<int>(rows().size()) ? row : -1;
}

BrowserItem BrowserBody::itemAt(int row) const
{
    const bool inside = row >= 0 && row < static_cast<int>(rows().size());
    return inside ? rows()[static_cast<std::size_t>(row)].item : 0;
}

int BrowserBody::currentRow() const
{
    return mBrowser.tree.rowOf(browser().selectionAnchorFirst());
}

juce::Rectangle<int> BrowserBody::cell(int row, BrowserProperty property) const
{
    for (const auto& column : columns(getWidth()))
        if (column.property == property)
            return {column.x, row * measure::rowHeight, column.width, measure::rowHeight};
    return {};
}

bool BrowserBody::showsTriangle(BrowserItem item, BrowserProperty column) const
{
    return column == mBrowser.disclosureColumn && column != 0 && mBrowser.expandable &&
           mBrowser.isContainer(item);
}

juce::Rectangle<int> BrowserBody::triangle(int row) const
{
    const auto item = itemAt(row);
    if (item == 0 || !showsTriangle(item, mBrowser.disclosureColumn))
        return {};
    const int depth = rows()[static_cast<std::size_t>(row)].depth;
    return cell(row, mBrowser.disclosureColumn)
        .withTrimmedLeft(4 + depth * measure::indent)
        .withWidth(measure::indent);
}

void BrowserBody::paint(juce::Graphics& g)
{
    const auto& p = lookOf(*this).palette();
    g.fillAll(p.field);
    const auto clip = g.getClipBounds();
    const int last = clip.getBottom() / measure::rowHeight;
    for (int row = std::max(clip.getY() / measure::rowHeight, 0); row <= last; ++row)
        paintRow(g, row);
}

void BrowserBody::paintRow(juce::Graphics& g, int row) const
{
    const auto& p = lookOf(*this).palette();
    const juce::Rectangle<int> area(0, row * measure::rowHeight, getWidth(), measure::rowHeight);
    const auto item = itemAt(row);
    const bool selected = item != 0 && mBrowser.tree.isSelected(item);
    const bool active = hasKeyboardFocus(true);
    if (selected || row % 2 == 1) {
        g.setColour(!selected ? p.fieldStripe : active ? p.accent : p.selection);
        g.fillRect(area);
    }
    if (item == 0)
        return;
    for (const auto& column : columns(getWidth()))
        paintCell(g, row, column, selected && active ? p.accentText : p.text);
}

void BrowserBody::paintCell(juce::Graphics& g, int row, const BrowserColumn& column,
                            juce::Colour colour) const
{
    const auto& line = rows()[static_cast<std::size_t>(row)];
    const auto& look = lookOf(*this);
    juce::Rectangle<int> area(column.x, row * measure::rowHeight, column.width, measure::rowHeight);
    if (column.property == mBrowser.disclosureColumn && column.property != 0) {
        const auto mark = area.withTrimmedLeft(4 + line.depth * measure::indent);
        if (showsTriangle(line.item, column.property))
            look.drawTriangle(g, mark.withWidth(measure::indent).toFloat(),
                              mBrowser.tree.isOpen(line.item) ? 0.5f : 0.25f, colour);
        area = mark.withTrimmedLeft(measure::indent - 4);
    }
    bool right = false;
    for (const auto& described : mBrowser.control.impl().description.columns)
        right = right || (described.property == column.property && described.alignRight);
    g.setColour(colour);
    g.setFont(Look::font(measure::bodyText));
    g.drawText(toJuce(mBrowser.textOf(line.item, column.property)),
               area.reduced(measure::padding, 0),
               right ? juce::Justification::centredRight : juce::Justification::centredLeft);
}

void BrowserBody::refresh()
{
    const int all = static_cast<int>(rows().size()) * measure::rowHeight;
    setSize(mViewport.getMaximumVisibleWidth(), std::max(all, mViewport.getMaximumVisibleHeight()));
    repaint();
}

bool BrowserBody::startEditing(int row, BrowserProperty column, const std::string& text)
{
    mEditor = std::make_shared<juce::TextEditor>();
    addAndMakeVisible(*mEditor);
    mEditor->setFont(Look::font(measure::bodyText));
    mEditor->setBounds(cell(row, column).withTrimmedLeft(triangle(row).getRight()).reduced(0, 1));
    mEditor->setIndents(6, 2);
    mEditor->setJustification(juce::Justification::centredLeft);
    mEditor->setText(toJuce(text), false);
    mEditor->selectAll();
    mEditor->grabKeyboardFocus();
    const auto* field = mEditor.get();
    mEditor->onReturnKey = [this, field] { finishEditing(field, true, true); };
    mEditor->onEscapeKey = [this, field] { finishEditing(field, false, true); };
    mEditor->onFocusLost = [this, field] { finishEditing(field, true, false); };
    return true;
}

void BrowserBody::finishEditing(const juce::TextEditor* field, bool keep, bool focus)
{
    if (field != mEditor.get()) // its last word, after another call has ended the editing
        return;
    browser().stopEditing(keep);
    if (focus && isShowing())
        grabKeyboardFocus();
}

std::string BrowserBody::endEditing()
{
    const auto editor = std::exchange(mEditor, nullptr);
    if (!editor)
        return {};
    auto text = editor->getText().toStdString();
    removeChildComponent(editor.get());
    releaseLater(editor); // its own event may have brought us here
    return text;
}

} // namespace toolkit::native
