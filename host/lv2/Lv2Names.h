/// What hosts and projects know the LV2 plug-in by. Never changes.
#pragma once

#define KV_LV2_URI "https://korvanel.org/lv2/looper"

constexpr const char* kLv2Uri = KV_LV2_URI;
constexpr const char* kLv2UiUri = KV_LV2_URI "#ui";
constexpr const char* kLv2StateUri = KV_LV2_URI "#state"; ///< the effect's chunk

/// Ports; the parameters follow in the order of their table.
enum Lv2Port {
    kLv2In = 0,
    kLv2Out = 1,
    kLv2Enabled = 2,
    kLv2FreeWheeling = 3,
    kLv2FirstParameter = 4
};
