#include "platform/toolkit/Pasteboard.h"

#include <algorithm>
#include <cstring>

namespace toolkit {

void Pasteboard::clear()
{
    mEntries.clear();
}

Status Pasteboard::putItemFlavor(ItemId item, const std::string& flavor, std::string data)
{
    if (item == 0 || flavor.empty())
        return paramErr;
    for (auto& entry : mEntries)
        if (entry.item == item && entry.flavor == flavor) {
            entry.data = std::move(data);
            return noErr;
        }
    mEntries.push_back({item, flavor, std::move(data)});
    return noErr;
}

bool Pasteboard::itemFlavor(ItemId item, const std::string& flavor, std::string& into) const
{
    for (const auto& entry : mEntries)
        if (entry.item == item && entry.flavor == flavor) {
            into = entry.data;
            return true;
        }
    return false;
}

std::vector<Pasteboard::ItemId> Pasteboard::items() const
{
    std::vector<ItemId> result;
    for (const auto& entry : mEntries)
        if (std::find(result.begin(), result.end(), entry.item) == result.end())
            result.push_back(entry.item);
    return result;
}

std::string fileUrl(const std::string& path)
{
    constexpr char digits[] = "0123456789ABCDEF";
    std::string url = "file://";
    for (const char byte : path) {
        const auto code = static_cast<unsigned char>(byte);
        const bool plain = (code >= 'a' && code <= 'z') || (code >= 'A' && code <= 'Z') ||
                           (code >= '0' && code <= '9') ||
                           (code != 0 && std::strchr("/-_.~", byte) != nullptr);
        if (plain)
            url += byte;
        else
            url += {'%', digits[code >> 4], digits[code & 15]};
    }
    return url;
}

} // namespace toolkit
