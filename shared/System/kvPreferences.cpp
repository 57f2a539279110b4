#include "shared/System/kvPreferences.h"

#include "platform/os/PreferenceText.h"
#include "platform/os/StandardFolders.h"
#include "shared/System/kvLog.h"

#include <algorithm>
#include <cstring>
#include <string_view>
#include <utility>

namespace Korvanel {

namespace {

// What the lines of the log begin with.
constexpr const char* kGetEntryString = "GetEntryString:";
constexpr const char* kSetSynchronizeProperty = "SetSynchronizeProperty:";
constexpr const char* kDictEntryValue = "GetDictEntryValue:"; // of reading and of writing a group
constexpr const char* kInitialize = "Initialize:";
constexpr const char* kGetObjectOfType = "GetObjectOfType:";
constexpr const char* kPutObject = "PutObject:";
constexpr const char* kGetBinary = "GetBinary:";

constexpr unsigned kPublicFolder = 0755;

PreferenceUser userOf(bool anyUser)
{
    return anyUser ? PreferenceUser::Any : PreferenceUser::Current;
}

/// Ends the first key of a path where its slash is. @return the rest, null for none
char* splitEntry(char* path)
{
    char* slash = std::strchr(path, '/');
    if (slash == nullptr)
        return nullptr;
    *slash = 0;
    return slash + 1;
}

int idOf(const PreferenceValue& value)
{
    return static_cast<int>(value.type());
}

const void* addressOf(const PreferenceValue* value)
{
    return value;
}

/// Null where the value is no group.
const PreferenceDictionary* groupIn(const PreferenceValue& value)
{
    return std::get_if<PreferenceDictionary>(&value.value);
}

/// The group under a key; a new one where there is none, in the place of whatever is there.
PreferenceDictionary& madeGroup(PreferenceDictionary& settings, const std::string& key)
{
    PreferenceValue& value = settings[key];
    if (groupIn(value) == nullptr)
        value.value = PreferenceDictionary();
    return std::get<PreferenceDictionary>(value.value);
}

void assign(PreferenceDictionary& settings, const std::string& key, const PreferenceValue* value)
{
    if (value != nullptr)
        settings[key] = *value;
    else
        settings.erase(key);
}

bool tooDeep(std::string_view path)
{
    return std::count(path.begin(), path.end(), '/') >= platform::kMostPreferenceDepth;
}

} // namespace

Preferences::Preferences(const char* application, bool anyUser)
    : mUser(userOf(anyUser))
{
    if (application != nullptr)
        Initialize(application, anyUser);
}

bool Preferences::Initialize(const char* application, bool anyUser)
{
    if (application == nullptr)
        return false;
    IOLog1(mVerbose, "%s App '%s'\n", kInitialize, application);
    auto name = GetEntryString(application);
    if (!name)
        return false;
    mApplication = std::move(name);
    mUser = userOf(anyUser);
    PreferenceDictionary settings;
    mInitialised = fileOf(mUser).read(settings);
    IOLog1(mVerbose, "%s Synchronizing %d\n", kInitialize, mInitialised ? 1 : 0);
    return mInitialised;
}

std::optional<std::string> Preferences::GetEntryString(const char* name)
{
    if (name == nullptr || std::strlen(name) > platform::kMostPreferenceBytes) {
        IOLog("%s CFString NULL\n", kGetEntryString);
        return std::nullopt;
    }
    return name;
}

platform::PreferenceFile Preferences::fileOf(PreferenceUser user) const
{
    if (user == PreferenceUser::Any)
        return {platform::allUsersConfigFolder(), *mApplication, kPublicFolder};
    return {platform::userConfigFolder(), *mApplication};
}

bool Preferences::isUsable(const char* function, const char* entry) const
{
    if (mInitialised && entry != nullptr)
        return true;
    IOLog("%s Not initialized or invalid Entry (%p).\n", function, static_cast<const void*>(entry));
    return false;
}

// Reading -----------------------------------------------------------------------------------------

int Preferences::GetProfileInt(const char* entry, PreferenceUser user, int def) const
{
    const auto found = GetObjectOfType(entry, PreferenceValue::Int, user);
    const auto* number = found ? std::get_if<std::int32_t>(&found->value) : nullptr;
    const int result = number != nullptr ? *number : def;
    IOLog1(mVerbose, "GetInt: result %d\n", result);
    return result;
}

bool Preferences::GetProfileBool(const char* entry, PreferenceUser user, bool def) const
{
    const auto found = GetObjectOfType(entry, PreferenceValue::Bool, user);
    const auto* flag = found ? std::get_if<bool>(&found->value) : nullptr;
    const bool result = flag != nullptr ? *flag : def;
    IOLog1(mVerbose, "GetBool: result '%s'\n", result ? "Yes" : "No");
    return result;
}

String Preferences::GetProfileString(const char* entry, PreferenceUser user, const char* def) const
{
    String result(def);
    const auto found = GetObjectOfType(entry, PreferenceValue::Text, user);
    if (const auto* text = found ? std::get_if<std::string>(&found->value) : nullptr)
        result = String(text->data(), static_cast<int>(text->size()));
    IOLog1(mVerbose, "GetString: result '%s'\n", result.c_str());
    return result;
}

bool Preferences::GetProfileBinary(const char* entry, PreferenceUser user, unsigned char* buffer,
                                   std::uint32_t& size) const
{
    const auto found = GetObjectOfType(entry, PreferenceValue::Data, user);
    const auto* data = found ? std::get_if<platform::PreferenceData>(&found->value) : nullptr;
    if (data == nullptr)
        return false;
    const auto length = static_cast<std::uint32_t>(data->bytes.size());
    const std::uint32_t room = std::exchange(size, length);
    if (buffer == nullptr || length > room) {
        IOLog("%s buffer null or overflow (%d > %d)\n", kGetBinary, static_cast<int>(length),
              static_cast<int>(room));
        return false;
    }
    std::copy(data->bytes.begin(), data->bytes.end(), buffer);
    IOLog1(mVerbose, "%s %d bytes copied\n", kGetBinary, static_cast<int>(length));
    return true;
}

std::optional<PreferenceValue> Preferences::GetObjectOfType(const char* entry,
                                                            PreferenceValue::Type wanted,
                                                            PreferenceUser user) const
{
    if (!isUsable(kGetObjectOfType, entry))
        return std::nullopt;
    std::string path = entry;
    char* rest = splitEntry(path.data());
    IOLog1(mVerbose, "%s Getting Entry '%s'\n", kGetObjectOfType, path.c_str());
    const auto key = GetEntryString(path.c_str());
    PreferenceDictionary settings;
    if (!key || !fileOf(user).read(settings))
        return std::nullopt;
    const auto stored = settings.find(*key);
    if (stored == settings.end())
        return std::nullopt;
    const PreferenceValue& value = stored->second;
    IOLog1(mVerbose, "%s Found CFType %p ID %d\n", kGetObjectOfType, addressOf(&value),
           idOf(value));
    if (const PreferenceDictionary* group = groupIn(value)) {
        if (rest == nullptr) {
            IOLog("%s Attempt to get Dictionary as value\n", kGetObjectOfType);
            return std::nullopt;
        }
        IOLog1(mVerbose, "%s Entering Dictionary %p\n", kGetObjectOfType, addressOf(&value));
        const PreferenceValue* inside = GetDictEntryValue(mVerbose, group, rest);
        return inside != nullptr ? std::optional(*inside) : std::nullopt;
    }
    // A path that goes on where no group is gives what it ended at: "Left/x" is "Left".
    return value.type() == wanted ? std::optional(value) : std::nullopt;
}

const PreferenceValue* Preferences::GetDictEntryValue(bool verbose,
                                                      const PreferenceDictionary* group, char* path)
{
    if (group == nullptr) {
        IOLog("%s NULL Dictionary given.\n", kDictEntryValue);
        return nullptr;
    }
    if (path == nullptr) {
        IOLog("%s Attempt to get Dictionary as value\n", kDictEntryValue);
        return nullptr;
    }
    char* rest = splitEntry(path);
    IOLog1(verbose, "%s Getting Entry '%s'\n", kDictEntryValue, path);
    const auto stored = group->find(std::string_view(path));
    const PreferenceValue* value = stored != group->end() ? &stored->second : nullptr;
    if (value != nullptr) {
        IOLog1(verbose, "%s Found CFType %p ID %d\n", kDictEntryValue, addressOf(value),
               idOf(*value));
        if (const PreferenceDictionary* inner = groupIn(*value)) {
            IOLog1(verbose, "%s Entering Dictionary %p\n", kDictEntryValue, addressOf(value));
            value = GetDictEntryValue(verbose, inner, rest);
        }
    }
    if (value != nullptr)
        IOLog1(verbose, "%s Returning CFType %p ID %d\n", kDictEntryValue, addressOf(value),
               idOf(*value));
    else
        IOLog("%s Returning NULL CFType\n", kDictEntryValue);
    return value;
}

// Writing -----------------------------------------------------------------------------------------

bool Preferences::SetProfileInt(const char* entry, PreferenceUser user, const int* value)
{
    const PreferenceValue stored{value != nullptr ? *value : 0};
    return PutObject(entry, value != nullptr ? &stored : nullptr, user);
}

bool Preferences::SetProfileBool(const char* entry, PreferenceUser user, const bool* value)
{
    const PreferenceValue stored{value != nullptr && *value};
    return PutObject(entry, value != nullptr ? &stored : nullptr, user);
}

bool Preferences::SetProfileString(const char* entry, PreferenceUser user, const char* text)
{
    if (text == nullptr)
        return PutObject(entry, nullptr, user);
    if (std::strlen(text) > platform::kMostPreferenceBytes) {
        IOLog("SetString: CFString NULL\n");
        return false;
    }
    const PreferenceValue stored{std::string(text)};
    return PutObject(entry, &stored, user);
}

bool Preferences::SetProfileBinary(const char* entry, PreferenceUser user,
                                   const unsigned char* bytes, std::uint32_t size)
{
    if (bytes == nullptr || size == 0)
        return PutObject(entry, nullptr, user);
    if (size > platform::kMostPreferenceBytes) {
        IOLog("SetBinary: CFData NULL\n");
        return false;
    }
    const PreferenceValue stored{platform::PreferenceData{std::string(bytes, bytes + size)}};
    return PutObject(entry, &stored, user);
}

bool Preferences::PutObject(const char* entry, const PreferenceValue* value, PreferenceUser user)
{
    if (!isUsable(kPutObject, entry))
        return false;
    std::string path = entry;
    char* rest = splitEntry(path.data());
    IOLog1(mVerbose, "%s Setting Entry '%s'\n", kPutObject, path.c_str());
    const auto key = GetEntryString(path.c_str());
    if (!key)
        return false;
    return rest == nullptr ? SetSynchronizeProperty(*key, value, user)
                           : putNested(*key, rest, value, user);
}

/// The group is read, changed and stored in one change of the file, so that what another process
/// puts into the same group meanwhile is not lost.
bool Preferences::putNested(const std::string& key, char* rest, const PreferenceValue* value,
                            PreferenceUser user)
{
    bool walked = !tooDeep(rest); // the walk is as deep as the path; no store holds one like that
    const bool stored = walked && fileOf(user).update([&](PreferenceDictionary& settings) {
        walked = SetTargetDictValue(mVerbose, &madeGroup(settings, key), rest, value);
        return walked;
    });
    if (walked)
        IOLog1(mVerbose, "%s Synchronizing %d\n", kSetSynchronizeProperty, stored ? 1 : 0);
    else
        IOLog("%s Out of memory.", kPutObject);
    return stored;
}

bool Preferences::SetSynchronizeProperty(const std::string& key, const PreferenceValue* value,
                                         PreferenceUser user)
{
    const bool stored =
        mApplication.has_value() && fileOf(user).update([&](PreferenceDictionary& settings) {
            assign(settings, key, value);
            return true;
        });
    IOLog1(mVerbose, "%s Synchronizing %d\n", kSetSynchronizeProperty, stored ? 1 : 0);
    return stored;
}

bool Preferences::SetTargetDictValue(bool verbose, PreferenceDictionary* group, char* path,
                                     const PreferenceValue* value)
{
    if (group == nullptr) {
        IOLog("%s NULL Dictionary given.\n", kDictEntryValue);
        return false;
    }
    IOLog1(verbose, "%s Setting Entry '%s'\n", kDictEntryValue, path); // the whole path left
    char* rest = splitEntry(path);
    const auto key = GetEntryString(path);
    if (!key)
        return false;
    if (rest != nullptr)
        return SetTargetDictValue(verbose, &madeGroup(*group, *key), rest, value);
    assign(*group, *key, value);
    return true;
}

} // namespace Korvanel
