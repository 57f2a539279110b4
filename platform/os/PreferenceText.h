/// Settings as the text of a preference file (docs/formats/preferences.md), and back.
#pragma once
#include "platform/os/PreferenceValue.h"

#include <optional>
#include <string>
#include <string_view>

namespace platform {

/// A longer text (bytes) or a deeper one (dictionaries and lists inside each other, the outermost
/// counted) is neither read nor written.
constexpr std::size_t kMostPreferenceBytes = 1u << 20;
constexpr int kMostPreferenceDepth = 64;

/// @return nothing for a damaged text. Thread: any.
std::optional<PreferenceDictionary> parsePreferences(std::string_view text);

/// @return nothing for settings that parsePreferences would not give back. Thread: any.
std::optional<std::string> formatPreferences(const PreferenceDictionary& settings);

} // namespace platform
