/// Four characters as one number: the names of event classes, parameters and browser columns.
#pragma once
#include <cstddef>
#include <cstdint>
#include <string>

namespace toolkit {

using FourCharCode = std::uint32_t;

/// "wind"_4cc; exactly four characters, else the program does not compile.
consteval FourCharCode operator""_4cc(const char* text, std::size_t length)
{
    if (length != 4)
        throw "a four-character code has four characters";
    FourCharCode code = 0;
    for (std::size_t i = 0; i < 4; ++i)
        code = code << 8 | static_cast<unsigned char>(text[i]);
    return code;
}

/// The code that `text` spells; 0 unless it has exactly four bytes.
inline FourCharCode fourCharCode(const std::string& text)
{
    if (text.size() != 4)
        return 0;
    FourCharCode code = 0;
    for (const char byte : text)
        code = code << 8 | static_cast<unsigned char>(byte);
    return code;
}

} // namespace toolkit
