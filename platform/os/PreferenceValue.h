/// What a preference file holds.
#pragma once
#include <cstdint>
#include <map>
#include <string>
#include <variant>

namespace platform {

struct PreferenceValue;

/// Keys are bytes in any encoding.
using PreferenceDictionary = std::map<std::string, PreferenceValue, std::less<>>;

/// Bytes that are no text.
struct PreferenceData
{
    std::string bytes;

    friend bool operator==(const PreferenceData&, const PreferenceData&) = default;
};

/// Something that was put into the file by another hand and that no setting has the type of (a
/// fraction, a list): it stays as it is when other settings change.
struct PreferenceForeign
{
    std::string json;

    friend bool operator==(const PreferenceForeign&, const PreferenceForeign&) = default;
};

/// One setting or a group of them. A text is bytes in any encoding.
struct PreferenceValue
{
    /// In the order of `value`'s alternatives.
    enum Type : std::uint32_t { Int, Bool, Text, Data, Dictionary, Foreign };

    std::variant<std::int32_t, bool, std::string, PreferenceData, PreferenceDictionary,
                 PreferenceForeign>
        value;

    Type type() const { return static_cast<Type>(value.index()); }

    friend bool operator==(const PreferenceValue&, const PreferenceValue&) = default;
};

} // namespace platform
