#include "platform/os/Base64.h"

#include <algorithm>
#include <cstdint>

namespace platform {

namespace {

constexpr std::string_view kLetters =
    "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

} // namespace

std::string toBase64(std::string_view bytes)
{
    std::string text;
    text.reserve((bytes.size() + 2) / 3 * 4);
    for (std::size_t at = 0; at < bytes.size(); at += 3) {
        const std::size_t count = std::min<std::size_t>(bytes.size() - at, 3);
        std::uint32_t group = 0;
        for (std::size_t i = 0; i < 3; ++i)
            group = group << 8 | (i < count ? static_cast<std::uint8_t>(bytes[at + i]) : 0u);
        for (std::size_t i = 0; i < 4; ++i)
            text += i <= count ? kLetters[group >> (18 - 6 * i) & 63u] : '=';
    }
    return text;
}

std::optional<std::string> fromBase64(std::string_view text)
{
    std::string bytes;
    bytes.reserve(text.size() / 4 * 3);
    std::uint32_t bits = 0;
    int held = 0;
    for (const char letter : text.substr(0, std::min(text.find('='), text.size()))) {
        const std::size_t digit = kLetters.find(letter);
        if (digit == std::string_view::npos)
            return std::nullopt;
        bits = (bits << 6 | static_cast<std::uint32_t>(digit)) & 0xffffu;
        held += 6;
        if (held >= 8) {
            held -= 8;
            bytes += static_cast<char>(bits >> held & 0xffu);
        }
    }
    // Writing it again finds every other fault: wrong padding, a lone letter, left-over bits.
    if (toBase64(bytes) != text)
        return std::nullopt;
    return bytes;
}

} // namespace platform
