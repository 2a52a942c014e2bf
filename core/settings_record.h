#pragma once

#include <cstdint>
#include <memory>

#include "core/platform_types.h"

// A text of the settings: null, or a buffer of kTextCapacity characters with a terminated text.
using SettingsText = std::unique_ptr<WCHAR[]>;

// Returns a buffer of kTextCapacity characters that holds the empty text.
SettingsText NewSettingsText();

// The texts and list positions that belong to some of the options. A field is valid only if its
// option's bit is set in the mask that the same capture or load returned. A new record has no texts
// and every position 0.
struct CSettings {
    SettingsText UserDir1;         // directory to clean
    SettingsText UserDir2;         // directory to clean
    SettingsText CustomExtension;  // what the file search looks for
    SettingsText IeCacheDir;       // where to move the browser cache
    SettingsText AvantGoDir;       // where to move the channel cache
    SettingsText FavoritesDir;     // where to move Favorites
    SettingsText FontsDir;         // where to move Fonts
    SettingsText MyDocumentsDir;   // where to move My Documents

    // Positions in a list of three, 0 to 2.
    std::int32_t IeCacheLimitIndex = 0;
    std::int32_t IeHistoryLimitIndex = 0;
    std::int32_t IeCookieLimitIndex = 0;
    std::int32_t FontCacheIndex = 0;
};
