/// Reads text as code points.
#pragma once
#include <cstdint>
#include <string_view>

namespace toolkit {

/// Takes the first character off `text`, which is not empty. Each byte that begins no valid UTF-8
/// sequence is a U+FFFD of its own; surrogates, overlong forms and a cut-off end count as invalid.
std::uint32_t takeCharacter(std::string_view& text);

} // namespace toolkit
