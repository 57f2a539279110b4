/// Bytes as text of 64 letters (RFC 4648, with padding). Thread: any.
#pragma once
#include <optional>
#include <string>
#include <string_view>

namespace platform {

std::string toBase64(std::string_view bytes);

/// @return nothing for a text that toBase64 would not have written
std::optional<std::string> fromBase64(std::string_view text);

} // namespace platform
