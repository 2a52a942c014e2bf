#include "core/option_table.h"

namespace {

using enum OptionKind;
using S = CSettings;

constexpr PositionWords kCacheLimits = {"1024kb", "2048kb", "3072kb"};
constexpr PositionWords kSmallLimits = {"256kb", "512kb", "1024kb"};
constexpr PositionWords kFontCacheSizes = {"1x", "2x", "4x"};

// clang-format off
constexpr Option kOptions[] = {
    {OPT_CLEAN_USER1,         "clean-user-defined-1",              0, 0,  Text,   1,  &S::UserDir1},
    {OPT_CLEAN_USER2,         "clean-user-defined-2",              0, 3,  Text,   4,  &S::UserDir2},
    {OPT_CLEAN_ROOT_TEMP,     "clean-temp",                        0, 6,  Flag},
    {OPT_CLEAN_WINDOWS_TEMP,  "clean-windows-temp",                0, 7,  Flag},
    {OPT_CLEAN_MYDOCS_TEMP,   "clean-my-documents-temp",           0, 8,  Flag},
    {OPT_SEARCH_TMP,          "search-tmp",                        0, 14, Flag},
    {OPT_SEARCH_LOG,          "search-log",                        0, 15, Flag},
    {OPT_SEARCH_BAK,          "search-bak",                        0, 16, Flag},
    {OPT_SEARCH_CUSTOM,       "search-custom",                     0, 17, Text,   18, &S::CustomExtension},
    {OPT_CLEAR_IE_CACHE,      "clear-pocket-ie-cache",             1, 0,  Flag},
    {OPT_CLEAR_IE_HISTORY,    "clear-pocket-ie-history",           1, 1,  Flag},
    {OPT_MOVE_IE_CACHE,       "move-pocket-ie-cache",              1, 2,  Text,   3,  &S::IeCacheDir},
    {OPT_LIMIT_IE_CACHE,      "limit-pocket-ie-cache",             1, 5,  Combo,  6,  nullptr, &S::IeCacheLimitIndex, &kCacheLimits},
    {OPT_LIMIT_IE_HISTORY,    "limit-pocket-ie-history",           1, 7,  Combo,  8,  nullptr, &S::IeHistoryLimitIndex, &kSmallLimits},
    {OPT_LIMIT_IE_COOKIES,    "limit-pocket-ie-cookies",           1, 9,  Combo,  10, nullptr, &S::IeCookieLimitIndex, &kSmallLimits},
    {OPT_MOVE_AVANTGO,        "move-avantgo-cache",                1, 11, Text,   12, &S::AvantGoDir},
    {OPT_CLEAR_REGISTRY,      "clear-redundant-registry-keys",     2, 0,  Flag},
    {OPT_MOVE_FAVORITES,      "move-favorites-storage",            3, 0,  Text,   1,  &S::FavoritesDir},
    {OPT_MOVE_FONTS,          "move-fonts-folder",                 3, 3,  Text,   4,  &S::FontsDir},
    {OPT_MOVE_MYDOCS,         "move-my-documents",                 3, 6,  Text,   7,  &S::MyDocumentsDir},
    {OPT_CLEAN_START_MENU,    "remove-redundant-start-menu-items", 4, 0,  Flag},
    {OPT_FONT_CACHE,          "set-font-cache-size",               5, 0,  Slider, 1,  nullptr, &S::FontCacheIndex, &kFontCacheSizes},
    {OPT_SILENT_STARTUP,      "silent-cleanup-at-startup",         5, 5,  Flag},
    {OPT_NO_MENU_ANIMATION,   "disable-start-menu-animation",      5, 6,  Flag},
    {OPT_NO_WINDOW_ANIMATION, "disable-window-animation",          5, 7,  Flag},
};
// clang-format on

}  // namespace

std::span<const Option> AllOptions() {
    return kOptions;
}
