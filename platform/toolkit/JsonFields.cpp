#include "platform/toolkit/native/JsonFields.h"

#include <algorithm>

namespace toolkit::native {

JsonFields::JsonFields(const juce::var& value, std::string place)
    : mObject(value.getDynamicObject())
    , mPlace(std::move(place))
{
    if (mObject == nullptr)
        throw DescriptionError(mPlace, "an object is expected");
}

bool JsonFields::has(const char* key) const
{
    return mObject->hasProperty(key);
}

const juce::var* JsonFields::find(const char* key)
{
    mKnown.insert(key);
    return has(key) ? &mObject->getProperty(key) : nullptr;
}

const juce::var& JsonFields::need(const char* key)
{
    const auto* value = find(key);
    if (value == nullptr)
        throw DescriptionError(mPlace, "'" + std::string(key) + "' is missing");
    return *value;
}

int JsonFields::integer(const char* key, int otherwise)
{
    const auto* value = find(key);
    if (value == nullptr)
        return otherwise;
    if (!value->isInt())
        fail(key, "a whole number is expected");
    return *value;
}

bool JsonFields::boolean(const char* key, bool otherwise)
{
    const auto* value = find(key);
    if (value == nullptr)
        return otherwise;
    if (!value->isBool())
        fail(key, "true or false is expected");
    return *value;
}

std::string JsonFields::text(const char* key, const std::string& otherwise)
{
    const auto* value = find(key);
    if (value == nullptr)
        return otherwise;
    if (!value->isString())
        fail(key, "a text is expected");
    return value->toString().toStdString();
}

std::vector<juce::var> JsonFields::list(const char* key)
{
    const auto* value = find(key);
    if (value == nullptr)
        return {};
    const auto* elements = value->getArray();
    if (elements == nullptr)
        fail(key, "a list is expected");
    return std::vector<juce::var>(elements->begin(), elements->end());
}

std::vector<std::string> JsonFields::texts(const char* key)
{
    std::vector<std::string> result;
    for (const auto& element : list(key)) {
        if (!element.isString())
            fail(key, "every element must be a text");
        result.push_back(element.toString().toStdString());
    }
    return result;
}

std::vector<int> JsonFields::integers(const char* key, int count)
{
    const auto elements = list(key);
    if (!has(key))
        return {};
    std::vector<int> result;
    for (const auto& element : elements)
        if (element.isInt())
            result.push_back(element);
    if (result.size() != elements.size() || result.size() != static_cast<std::size_t>(count))
        fail(key, std::to_string(count) + " whole numbers are expected");
    return result;
}

int JsonFields::choice(const char* key, const std::vector<std::string>& names, int otherwise)
{
    if (find(key) == nullptr)
        return otherwise;
    const auto given = text(key, "");
    const auto found = std::find(names.begin(), names.end(), given);
    if (found == names.end())
        fail(key, "'" + given + "' is not known");
    return static_cast<int>(found - names.begin());
}

void JsonFields::refuseUnknown() const
{
    for (const auto& property : mObject->getProperties()) {
        const auto key = property.name.toString().toStdString();
        if (mKnown.count(key) == 0)
            fail(key.c_str(), "this key is not known");
    }
}

void JsonFields::fail(const char* key, const std::string& what) const
{
    throw DescriptionError(mPlace + "." + key, what);
}

} // namespace toolkit::native
