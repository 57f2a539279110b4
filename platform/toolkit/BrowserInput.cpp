// What the pointer and the keyboard do to a data browser's rows.
#include "platform/toolkit/native/BrowserBody.h"
#include "platform/toolkit/native/ViewBase.h"

#include <algorithm>
#include <utility>

namespace toolkit::native {

namespace {

constexpr int typeAheadMs = 1000; // a later letter begins a new search

} // namespace

void BrowserBody::mouseDown(const juce::MouseEvent& event)
{
    stopTimer();
    grabKeyboardFocus(); // ends an editing elsewhere before the selection changes
    const int row = rowAt(event.y);
    if (event.mods.isPopupMenu()) {
        if (row >= 0)
            selectRow(row);
        contextual(event.getPosition());
        return;
    }
    if (row < 0)
        return;
    if (triangle(row).contains(event.getPosition())) {
        toggle(itemAt(row));
        return;
    }
    const bool again = event.getNumberOfClicks() == 1 && mBrowser.tree.isSelected(itemAt(row));
    if (again)
        armEditing(row, event.x);
    click(row, event.mods);
}

void BrowserBody::click(int row, const juce::ModifierKeys& keys)
{
    const bool many = (mBrowser.flags & DataBrowser::selectOnlyOne) == 0;
    const auto item = itemAt(row);
    using Assign = DataBrowser::Assign;
    if (many && keys.isCommandDown())
        browser().setSelectedItems({item},
                                   mBrowser.tree.isSelected(item) ? Assign::remove : Assign::add);
    else
        browser().setSelectedItems({item}, Assign::assign);
}

void BrowserBody::mouseDoubleClick(const juce::MouseEvent& event)
{
    stopTimer();
    const int row = rowAt(event.y);
    if (row >= 0 && !event.mods.isPopupMenu() && !triangle(row).contains(event.getPosition()))
        mBrowser.notify(itemAt(row), BrowserMessage::itemDoubleClicked);
}

void BrowserBody::armEditing(int row, int x)
{
    for (const auto& column : columns(getWidth()))
        if (x >= column.x && x < column.x + column.width) {
            mArmedItem = itemAt(row);
            mArmedColumn = column.property;
            startTimer(juce::MouseEvent::getDoubleClickTimeout() + 100);
        }
}

void BrowserBody::timerCallback()
{
    stopTimer();
    if (mBrowser.tree.isSelected(mArmedItem))
        browser().editItem(mArmedItem, mArmedColumn);
}

void BrowserBody::contextual(juce::Point<int> at)
{
    auto& control = mBrowser.control.impl();
    if (!control.isOpen())
        return;
    const auto inView = control.view->component().getLocalPoint(this, at);
    if (control.contextualClick(inView) == eventNotHandledErr)
        mBrowser.contextualMenu(control.toWindow(inView));
}

bool BrowserBody::keyPressed(const juce::KeyPress& key)
{
    stopTimer();
    return moveKey(key) || treeKey(key) || actionKey(key) || typeAhead(key);
}

bool BrowserBody::moveKey(const juce::KeyPress& key)
{
    const int last = static_cast<int>(rows().size()) - 1;
    const int page = std::max(mViewport.getViewHeight() / measure::rowHeight - 1, 1);
    const int row = currentRow();
    const std::pair<int, int> moves[] = {{juce::KeyPress::upKey, row < 0 ? last : row - 1},
                                         {juce::KeyPress::downKey, row + 1},
                                         {juce::KeyPress::pageUpKey, row - page},
                                         {juce::KeyPress::pageDownKey, row + page},
                                         {juce::KeyPress::homeKey, 0},
                                         {juce::KeyPress::endKey, last}};
    for (const auto& [code, to] : moves) {
        if (key != juce::KeyPress(code))
            continue;
        if (last >= 0)
            selectRow(std::clamp(to, 0, last));
        return true;
    }
    return false;
}

bool BrowserBody::treeKey(const juce::KeyPress& key)
{
    const auto item = itemAt(currentRow());
    const bool left = key == juce::KeyPress::leftKey;
    if (item == 0 || mBrowser.disclosureColumn == 0 || (!left && key != juce::KeyPress::rightKey))
        return false;
    if (left == browser().isOpen(item))
        toggle(item);
    else if (left)
        selectRow(mBrowser.tree.rowOf(browser().containerOf(item)));
    return true;
}

bool BrowserBody::actionKey(const juce::KeyPress& key)
{
    const int row = currentRow();
    const auto item = itemAt(row);
    if (key == juce::KeyPress(juce::KeyPress::F10Key, juce::ModifierKeys::shiftModifier, 0)) {
        contextual(row >= 0 ? cell(row, columns(getWidth()).front().property).getCentre()
                            : juce::Point<int>(measure::padding, measure::padding));
        return true;
    }
    if (item == 0)
        return false;
    if (key == juce::KeyPress::returnKey)
        mBrowser.notify(item, BrowserMessage::itemDoubleClicked);
    else if (key == juce::KeyPress::F2Key)
        browser().editItem(item, columns(getWidth()).front().property);
    else
        return false;
    return true;
}

bool BrowserBody::typeAhead(const juce::KeyPress& key)
{
    const auto character = key.getTextCharacter();
    if (character < ' ' || key.getModifiers().isCommandDown() || rows().empty())
        return false;
    const auto now = juce::Time::getMillisecondCounter();
    mTyped = now - mTypedAt > typeAheadMs ? juce::String() : mTyped;
    mTyped += juce::String::charToString(character);
    mTypedAt = now;
    const int count = static_cast<int>(rows().size());
    const auto column = columns(getWidth()).front().property;
    const int from = std::max(currentRow(), 0) + (mTyped.length() > 1 ? 0 : 1);
    for (int step = 0; step < count; ++step) {
        const int row = (from + step) % count;
        if (toJuce(mBrowser.textOf(itemAt(row), column)).startsWithIgnoreCase(mTyped)) {
            selectRow(row);
            break;
        }
    }
    return true;
}

void BrowserBody::selectRow(int row)
{
    const auto item = itemAt(row);
    if (item == 0)
        return;
    browser().setSelectedItems({item}, DataBrowser::Assign::assign);
    if (mBrowser.tree.has(item))
        browser().revealItem(item);
}

void BrowserBody::toggle(BrowserItem item)
{
    if (!mBrowser.expandable)
        return;
    if (browser().isOpen(item))
        browser().closeContainer(item);
    else
        browser().openContainer(item);
}

void BrowserBody::focusGained(FocusChangeType)
{
    mViewport.getParentComponent()->repaint();
}

void BrowserBody::focusLost(FocusChangeType)
{
    mViewport.getParentComponent()->repaint();
}

} // namespace toolkit::native
