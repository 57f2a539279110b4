/// Data on its way to another program: items with one or more flavours each.
#pragma once
#include "platform/toolkit/Status.h"

#include <cstdint>
#include <string>
#include <vector>

namespace toolkit {

class Pasteboard
{
public:
    using ItemId = std::uintptr_t;

    /// Forgets every item.
    void clear();

    /// Adds the flavour to the item, made if needed, or replaces it.
    /// @return paramErr for an item 0 or an empty flavour
    Status putItemFlavor(ItemId item, const std::string& flavor, std::string data);

    /// @return false, and `into` stays, when the item has no such flavour
    bool itemFlavor(ItemId item, const std::string& flavor, std::string& into) const;

    /// In the order in which they came.
    std::vector<ItemId> items() const;

private:
    struct Entry
    {
        ItemId item;
        std::string flavor;
        std::string data;
    };

    std::vector<Entry> mEntries;
};

/// The flavour of a file: its URL, as `fileUrl` makes it.
constexpr const char* fileUrlFlavor = "public.file-url";

/// file:///..., every byte escaped that a URL does not allow. The path is absolute.
std::string fileUrl(const std::string& path);

} // namespace toolkit
