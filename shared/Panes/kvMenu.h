/// What a menu offers, apart from how it is shown.
#pragma once
#include "shared/System/kvString.h"

#include <cstddef>
#include <vector>

namespace Korvanel {

struct MenuItem
{
    String text;
    int flag = 0; ///< anything but 0 shows a check mark
};

/// The items from the top down. Thread: user interface.
class MenuItemList
{
public:
    virtual ~MenuItemList() = default;

    virtual std::size_t size() const = 0;

    /// @param index  below size()
    virtual const MenuItem& item(std::size_t index) const = 0;
};

class MenuItemListImpl : public MenuItemList
{
public:
    void add(const String& text, int flag = 0) { mItems.push_back({text, flag}); }

    std::size_t size() const override { return mItems.size(); }

    const MenuItem& item(std::size_t index) const override { return mItems[index]; }

private:
    std::vector<MenuItem> mItems;
};

} // namespace Korvanel
