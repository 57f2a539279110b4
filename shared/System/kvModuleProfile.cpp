// The plug-in's profile, over the preference store.
#include "shared/System/kvAssert.h"
#include "shared/System/kvException.h"
#include "shared/System/kvModule.h"
#include "shared/System/kvPreferences.h"

#include <variant>

#define KV_MODULE_ASSERT(condition) KV_ASSERT_TEXT("shared/System/kvModule", condition, #condition)

namespace Korvanel {

namespace {

PreferenceUser userOf(bool allUsers)
{
    return allUsers ? PreferenceUser::Any : PreferenceUser::Current;
}

} // namespace

int Module::GetProfileInt(const char*, const char* key, int def, bool allUsers)
{
    KV_MODULE_ASSERT(sInited);
    const Preferences store(sProfileRoot.c_str(), allUsers);
    return store.GetProfileInt(key, userOf(allUsers), def);
}

int Module::GetProfileInt_ThrowExcept(const char*, const char* key, bool allUsers)
{
    KV_MODULE_ASSERT(sInited);
    const Preferences store(sProfileRoot.c_str(), allUsers);
    const auto found = store.GetObjectOfType(key, PreferenceValue::Int, userOf(allUsers));
    const auto* number = found ? std::get_if<std::int32_t>(&found->value) : nullptr;
    if (number == nullptr)
        throw Exception();
    return *number;
}

String Module::GetProfileString(const char*, const char* key, const char* def, bool allUsers)
{
    KV_MODULE_ASSERT(sInited);
    const Preferences store(sProfileRoot.c_str(), allUsers);
    return store.GetProfileString(key, userOf(allUsers), def);
}

int Module::WriteProfileInt(const char*, const char* key, int value, bool allUsers)
{
    KV_MODULE_ASSERT(sInited);
    Preferences store(sProfileRoot.c_str(), allUsers);
    return store.SetProfileInt(key, userOf(allUsers), &value) ? 0 : -1;
}

int Module::WriteProfileString(const char*, const char* key, const char* text, bool allUsers)
{
    KV_MODULE_ASSERT(sInited);
    Preferences store(sProfileRoot.c_str(), allUsers);
    return store.SetProfileString(key, userOf(allUsers), text) ? 0 : -1;
}

} // namespace Korvanel
