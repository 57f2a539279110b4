#include "platform/toolkit/Menu.h"

#include "platform/toolkit/Window.h"
#include "platform/toolkit/native/ControlImpl.h"
#include "platform/toolkit/native/Graveyard.h"
#include "platform/toolkit/native/Look.h"

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
    return menu.showMenu(
               juce::PopupMenu::Options().withTargetScreenArea({where.x, where.y, 1, 1})) -
           1;
}

} // namespace toolkit
