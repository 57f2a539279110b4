#include "platform/toolkit/Menu.h"

#include "platform/toolkit/EventLoop.h"
#include "platform/toolkit/native/Graveyard.h"
#include "platform/toolkit/native/WindowImpl.h"

namespace toolkit {

namespace {

juce::PopupMenu makeMenu(const std::vector<Menu::Item>& items)
{
    juce::PopupMenu menu;
    int id = 0;
    for (const auto& item : items) {
        ++id;
        if ((item.attributes & Menu::separatorItem) != 0)
            menu.addSeparator();
        else
            menu.addItem(id, native::toJuce(item.text), (item.attributes & Menu::disabledItem) == 0,
                         item.checked);
    }
    return menu;
}

/// The library takes a menu down at once while nothing of ours has the keyboard. Lends it to the
/// window itself if no control has it.
class BorrowedFocus
{
public:
    explicit BorrowedFocus(juce::Component& root)
        : mRoot(&root)
    {
        constexpr int answerMs = 200; // the server's word that the keyboard has come
        if (!root.hasKeyboardFocus(true)) {
            root.setWantsKeyboardFocus(true);
            root.grabKeyboardFocus();
        }
        EventLoop::runUntil([] { return juce::Process::isForegroundProcess(); }, answerMs);
    }

    ~BorrowedFocus()
    {
        if (mRoot == nullptr || !mRoot->getWantsKeyboardFocus())
            return;
        mRoot->setWantsKeyboardFocus(false);
        if (mRoot->hasKeyboardFocus(false))
            mRoot->giveAwayKeyboardFocus();
    }

    BorrowedFocus(const BorrowedFocus&) = delete;
    BorrowedFocus& operator=(const BorrowedFocus&) = delete;

private:
    juce::Component::SafePointer<juce::Component> mRoot;
};

/// The library closes its menus when there is news of the window's place or stacking, as there may
/// be after the click that asked for the menu has brought the window to the front. No user chooses
/// nothing that fast: the menu is shown again.
int show(juce::PopupMenu& menu, juce::Rectangle<int> at, const Window& window)
{
    constexpr juce::uint32 reactionMs = 250;
    constexpr int attempts = 3;
    int chosen = 0;
    for (int attempt = 0; attempt < attempts && chosen == 0 && window.isOpen(); ++attempt) {
        const auto shownAt = juce::Time::getMillisecondCounter();
        chosen = menu.showMenu(juce::PopupMenu::Options().withTargetScreenArea(at));
        if (juce::Time::getMillisecondCounter() - shownAt > reactionMs)
            break;
    }
    return chosen;
}

} // namespace

int Menu::addItem(std::string text, std::uint32_t command, std::uint32_t attributes, bool checked)
{
    mItems.push_back({std::move(text), command, attributes, checked});
    return count();
}

void Menu::setEnabled(int index, bool enabled)
{
    if (index < 1 || index > count())
        return;
    auto& attributes = mItems[static_cast<std::size_t>(index - 1)].attributes;
    attributes = enabled ? attributes & ~disabledItem : attributes | disabledItem;
}

void Menu::setChecked(int index, bool checked)
{
    if (index >= 1 && index <= count())
        mItems[static_cast<std::size_t>(index - 1)].checked = checked;
}

int Menu::popUp(Window& window, Point at) const
{
    if (mItems.empty() || !window.isOpen() || !window.isVisible())
        return -1;
    const auto alive = window.shared_from_this();
    const juce::SharedResourcePointer<native::Look> look;
    auto menu = makeMenu(mItems);
    menu.setLookAndFeel(&*look);
    const Point corner = window.toScreen(at);
    // The library places menus in its own screen points, which a scaled display makes larger.
    const auto where = juce::Desktop::getInstance().getDisplays().physicalToLogical(
        juce::Point<int>(corner.x, corner.y));
    const native::NestedLoop nested;
    const BorrowedFocus focus(*window.impl().root);
    if (!window.isOpen())
        return -1;
    return show(menu, {where.x, where.y, 1, 1}, window) - 1;
}

} // namespace toolkit
