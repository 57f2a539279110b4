/// Typed reading of one JSON object whose every key must be known. Failures throw DescriptionError
/// with the place; the description's `parse` turns it into text.
#pragma once
#include <juce_core/juce_core.h>

#include <set>
#include <stdexcept>
#include <string>
#include <vector>

namespace toolkit::native {

struct DescriptionError : std::runtime_error
{
    DescriptionError(const std::string& place, const std::string& what)
        : std::runtime_error(place + ": " + what)
    {
    }
};

class JsonFields
{
public:
    /// Throws unless `value` is an object. `place` leads every message.
    JsonFields(const juce::var& value, std::string place);

    const std::string& place() const { return mPlace; }

    bool has(const char* key) const;

    /// The value must be there.
    const juce::var& need(const char* key);

    // Without the key the result is `otherwise`.
    int integer(const char* key, int otherwise);
    bool boolean(const char* key, bool otherwise);
    std::string text(const char* key, const std::string& otherwise);
    std::vector<std::string> texts(const char* key);
    /// Throws unless exactly `count` integers; without the key the result is empty.
    std::vector<int> integers(const char* key, int count);
    /// The elements of an array; empty without the key.
    std::vector<juce::var> list(const char* key);

    /// The index of the text in `names`, or `otherwise` without the key; throws for another text.
    int choice(const char* key, const std::vector<std::string>& names, int otherwise);

    /// Throws if there is a key that nothing above has asked for.
    void refuseUnknown() const;

    [[noreturn]] void fail(const char* key, const std::string& what) const;

private:
    const juce::var* find(const char* key);

    juce::DynamicObject::Ptr mObject;
    std::string mPlace;
    std::set<std::string> mKnown;
};

} // namespace toolkit::native
