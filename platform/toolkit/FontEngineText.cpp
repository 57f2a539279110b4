#include "platform/toolkit/FontEngineText.h"

#include <cstddef>

namespace toolkit {

namespace {

constexpr std::uint32_t replacement = 0xFFFD;

std::size_t lengthByLead(std::uint8_t lead)
{
    if (lead < 0x80)
        return 1;
    if (lead >= 0xC2 && lead < 0xE0)
        return 2;
    if (lead >= 0xE0 && lead < 0xF0)
        return 3;
    if (lead >= 0xF0 && lead < 0xF5)
        return 4;
    return 0;
}

bool isCharacter(std::uint32_t code, std::size_t length)
{
    constexpr std::uint32_t shortest[] = {0, 0, 0x80, 0x800, 0x10000};
    return code >= shortest[length] && code <= 0x10FFFF && (code < 0xD800 || code > 0xDFFF);
}

} // namespace

std::uint32_t takeCharacter(std::string_view& text)
{
    const auto byteAt = [&text](std::size_t i) { return static_cast<std::uint8_t>(text[i]); };
    const std::size_t length = lengthByLead(byteAt(0));
    std::uint32_t code = length > 1 ? byteAt(0) & (0x7Fu >> length) : byteAt(0);
    bool valid = length > 0 && length <= text.size();
    for (std::size_t i = 1; valid && i < length; ++i) {
        valid = (byteAt(i) & 0xC0) == 0x80;
        code = code << 6 | (byteAt(i) & 0x3Fu);
    }
    valid = valid && isCharacter(code, length);
    text.remove_prefix(valid ? length : 1);
    return valid ? code : replacement;
}

} // namespace toolkit
