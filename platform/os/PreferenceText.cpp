#include "platform/os/PreferenceText.h"

#include "platform/os/Base64.h"

#include <algorithm>
#include <cstdint>
#include <exception>
#include <limits>
#include <nlohmann/json.hpp>
#include <stdexcept>
#include <utility>

namespace platform {

namespace {

using Json = nlohmann::json;

// JSON holds Unicode only. What is none stands under these names, in base64. No key of ours begins
// with the sign in the file, so that a group of settings is never taken for one of them.
constexpr char kSign = '$';
constexpr const char* kDataName = "$data";
constexpr const char* kTextName = "$text";
constexpr std::string_view kKeyPrefix = "$key:";

PreferenceDictionary dictionaryOf(const Json& object);

bool isUnicode(const std::string& text)
{
    try {
        static_cast<void>(Json(text).dump()); // whoever has to write it is the one to ask
        return true;
    } catch (const Json::type_error&) {
        return false;
    }
}

// Reading -----------------------------------------------------------------------------------------

/// How deep the brackets of a text stand inside each other, those in its strings left out.
int depthOf(std::string_view text)
{
    int depth = 0;
    int deepest = 0;
    bool inString = false;
    for (std::size_t at = 0; at < text.size(); ++at) {
        const char ch = text[at];
        if (inString && ch == '\\')
            ++at;
        else if (ch == '"')
            inString = !inString;
        else if (!inString && (ch == '{' || ch == '['))
            deepest = std::max(deepest, ++depth);
        else if (!inString && (ch == '}' || ch == ']'))
            --depth;
    }
    return deepest;
}

/// Throws for a damaged text. The depth is counted beforehand: the library's own way, a callback
/// for each bracket, takes time by the square of a list's length.
Json parseBounded(std::string_view text)
{
    if (depthOf(text) > kMostPreferenceDepth)
        throw std::length_error("nested too deeply");
    return Json::parse(text);
}

std::optional<PreferenceValue> tagged(const Json& object)
{
    if (object.size() != 1 || !object.begin()->is_string())
        return std::nullopt;
    const auto bytes = fromBase64(object.begin()->get_ref<const std::string&>());
    if (bytes && object.begin().key() == kDataName)
        return PreferenceValue{PreferenceData{*bytes}};
    if (bytes && object.begin().key() == kTextName)
        return PreferenceValue{*bytes};
    return std::nullopt;
}

PreferenceValue valueOf(const Json& json)
{
    if (json.is_boolean())
        return {json.get<bool>()};
    if (json.is_string())
        return {json.get<std::string>()};
    if (json.is_object()) {
        auto special = tagged(json);
        return special ? *std::move(special) : PreferenceValue{dictionaryOf(json)};
    }
    using Limits = std::numeric_limits<std::int32_t>;
    // The library's unsigned numbers are the positive ones: none too large for 64 bits with a sign
    // may look negative.
    const bool fits = json.is_number_unsigned()
                          ? json.get<std::uint64_t>() <= std::uint64_t{Limits::max()}
                          : json.is_number_integer() && json.get<std::int64_t>() >= Limits::min();
    if (fits)
        return {json.get<std::int32_t>()};
    return {PreferenceForeign{json.dump()}};
}

std::string keyOf(const std::string& name)
{
    if (!name.starts_with(kKeyPrefix))
        return name;
    return fromBase64(name.substr(kKeyPrefix.size())).value_or(name);
}

PreferenceDictionary dictionaryOf(const Json& object)
{
    PreferenceDictionary settings;
    for (const auto& [name, value] : object.items())
        settings.insert_or_assign(keyOf(name), valueOf(value));
    return settings;
}

// Writing -----------------------------------------------------------------------------------------

Json jsonOf(const PreferenceDictionary& settings, int depth);

std::string nameOf(const std::string& key)
{
    if (!key.starts_with(kSign) && isUnicode(key))
        return key;
    return std::string(kKeyPrefix) + toBase64(key);
}

struct Writer
{
    int depth;

    Json operator()(std::int32_t number) const { return number; }

    Json operator()(bool flag) const { return flag; }

    Json operator()(const std::string& text) const
    {
        return isUnicode(text) ? Json(text) : Json{{kTextName, toBase64(text)}};
    }

    Json operator()(const PreferenceData& data) const
    {
        return Json{{kDataName, toBase64(data.bytes)}};
    }

    Json operator()(const PreferenceDictionary& settings) const
    {
        return jsonOf(settings, depth + 1);
    }

    Json operator()(const PreferenceForeign& foreign) const { return parseBounded(foreign.json); }
};

Json jsonOf(const PreferenceDictionary& settings, int depth)
{
    if (depth > kMostPreferenceDepth)
        throw std::length_error("nested too deeply");
    Json object = Json::object();
    for (const auto& [key, value] : settings)
        object[nameOf(key)] = std::visit(Writer{depth}, value.value);
    return object;
}

} // namespace

std::optional<PreferenceDictionary> parsePreferences(std::string_view text)
{
    if (text.size() > kMostPreferenceBytes)
        return std::nullopt;
    try {
        const Json json = parseBounded(text);
        if (json.is_object())
            return dictionaryOf(json);
    } catch (const std::exception&) { // of the parser, of the depth, or out of memory
    }
    return std::nullopt;
}

std::optional<std::string> formatPreferences(const PreferenceDictionary& settings)
{
    try {
        std::string text = jsonOf(settings, 1).dump(4) + "\n";
        // A tagged object or a list at the deepest place adds a level that is not counted above.
        if (parsePreferences(text))
            return text;
    } catch (const std::exception&) {
    }
    return std::nullopt;
}

} // namespace platform
