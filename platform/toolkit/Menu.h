/// A pop-up menu, built by its owner and shown until the user chooses. Thread: user interface.
#pragma once
#include "platform/toolkit/Geometry.h"

#include <cstdint>
#include <string>
#include <vector>

namespace toolkit {

class Window;

class Menu
{
public:
    // Attribute bits of an item.
    static constexpr std::uint32_t disabledItem = 1;
    static constexpr std::uint32_t separatorItem = 64;

    struct Item
    {
        std::string text; ///< UTF-8
        std::uint32_t command = 0;
        std::uint32_t attributes = 0;
        bool checked = false;
    };

    /// Appends an item; separators count as items. @return its index, 1 for the first
    int addItem(std::string text, std::uint32_t command = 0, std::uint32_t attributes = 0,
                bool checked = false);

    /// From 1 on.
    int count() const { return static_cast<int>(mItems.size()); }

    const std::vector<Item>& items() const { return mItems; }

    /// Nothing for an index outside 1..count.
    void setEnabled(int index, bool enabled);
    void setChecked(int index, bool checked);

    /// Shows the menu with its top-left corner at `at`, in window points, and waits for the choice:
    /// other events of the process go on meanwhile, and may close the window, which closes the
    /// menu.
    /// @return the chosen item's index, 0 for the first; -1 when nothing was chosen, the menu is
    /// empty or the window is not open
    int popUp(Window& window, Point at) const;

private:
    std::vector<Item> mItems;
};

} // namespace toolkit
