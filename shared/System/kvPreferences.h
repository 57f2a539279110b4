/// Typed settings of one application, kept apart from any project (docs/formats/preferences.md).
/// Module's profile functions are the usual way here.
#pragma once
#include "platform/os/PreferenceFile.h"
#include "shared/System/kvString.h"

#include <cstdint>
#include <optional>
#include <string>

namespace Korvanel {

/// Whose settings: those of the user who runs the program, or those that all users share.
enum class PreferenceUser { Current, Any };

using PreferenceValue = platform::PreferenceValue;
using PreferenceDictionary = platform::PreferenceDictionary;

/// An entry's name may be a path: "Editor/Left" is the key "Left" in the group "Editor". Names and
/// texts are bytes in whatever encoding the caller has; they come back as they went. Every failure
/// gives the default or false and leaves a line in the log, nothing is thrown. One object belongs
/// to one thread; others, in any process, may use the same domain meanwhile.
class Preferences
{
public:
    /// @param application  the domain; null for one that Initialize names later
    Preferences(const char* application, bool anyUser);

    /// Opens the domain. @return false when its settings cannot be read, or for a null name
    bool Initialize(const char* application, bool anyUser);

    // Reading: the default where there is no entry, or one of another type -----------------------
    int GetProfileInt(const char* entry, PreferenceUser user, int def) const;
    bool GetProfileBool(const char* entry, PreferenceUser user, bool def) const;
    String GetProfileString(const char* entry, PreferenceUser user, const char* def) const;
    /// @param buffer  receives the bytes; may be null to ask for their number
    /// @param size    of the buffer; becomes the number of bytes that are stored, unless there is
    ///                no such entry
    /// @return false, with nothing copied, when there is no such entry or it does not fit
    bool GetProfileBinary(const char* entry, PreferenceUser user, unsigned char* buffer,
                          std::uint32_t& size) const;

    // Writing: on the disk when these return true. Null, or no bytes, removes the entry -----------
    bool SetProfileInt(const char* entry, PreferenceUser user, const int* value);
    bool SetProfileBool(const char* entry, PreferenceUser user, const bool* value);
    bool SetProfileString(const char* entry, PreferenceUser user, const char* text);
    bool SetProfileBinary(const char* entry, PreferenceUser user, const unsigned char* bytes,
                          std::uint32_t size);

    // The steps of these --------------------------------------------------------------------------
    /// A name as the store keeps it; nothing for null or for one that no store could hold.
    static std::optional<std::string> GetEntryString(const char* name);

    /// @return the entry. One inside a group may be of any type, one outside is of type `wanted`.
    std::optional<PreferenceValue> GetObjectOfType(const char* entry, PreferenceValue::Type wanted,
                                                   PreferenceUser user) const;
    /// @param value  null removes the entry, and leaves the group that it was in
    bool PutObject(const char* entry, const PreferenceValue* value, PreferenceUser user);
    /// Stores a top-level value; null removes it.
    bool SetSynchronizeProperty(const std::string& key, const PreferenceValue* value,
                                PreferenceUser user);

    /// Looks an entry up inside a group.
    /// @param path  is cut into its keys; null for none
    /// @return a value inside `group`, or null
    static const PreferenceValue* GetDictEntryValue(bool verbose, const PreferenceDictionary* group,
                                                    char* path);
    /// Sets an entry inside a group, making the groups on the way.
    /// @param path  is cut into its keys  @param value  null removes the entry
    static bool SetTargetDictValue(bool verbose, PreferenceDictionary* group, char* path,
                                   const PreferenceValue* value);

private:
    platform::PreferenceFile fileOf(PreferenceUser user) const;
    bool isUsable(const char* function, const char* entry) const;
    bool putNested(const std::string& key, char* rest, const PreferenceValue* value,
                   PreferenceUser user);

    std::optional<std::string> mApplication;
    PreferenceUser mUser;
    bool mInitialised = false;
    bool mVerbose = true; ///< trace every access, not only what goes wrong
};

} // namespace Korvanel
