#include "core/option_table.h"

namespace {

using enum OptionKind;
using S = CSettings;

// clang-format off
constexpr Option kOptions[] = {
    {OPT_CLEAN_USER1,         0, 0,  Text,   1,  &S::UserDir1},
    {OPT_CLEAN_USER2,         0, 3,  Text,   4,  &S::UserDir2},
    {OPT_CLEAN_ROOT_TEMP,     0, 6,  Flag},
    {OPT_CLEAN_WINDOWS_TEMP,  0, 7,  Flag},
    {OPT_CLEAN_MYDOCS_TEMP,   0, 8,  Flag},
    {OPT_SEARCH_TMP,          0, 14, Flag},
    {OPT_SEARCH_LOG,          0, 15, Flag},
    {OPT_SEARCH_BAK,          0, 16, Flag},
    {OPT_SEARCH_CUSTOM,       0, 17, Text,   18, &S::CustomExtension},
    {OPT_CLEAR_IE_CACHE,      1, 0,  Flag},
    {OPT_CLEAR_IE_HISTORY,    1, 1,  Flag},
    {OPT_MOVE_IE_CACHE,       1, 2,  Text,   3,  &S::IeCacheDir},
    {OPT_LIMIT_IE_CACHE,      1, 5,  Combo,  6,  nullptr, &S::IeCacheLimitIndex},
    {OPT_LIMIT_IE_HISTORY,    1, 7,  Combo,  8,  nullptr, &S::IeHistoryLimitIndex},
    {OPT_LIMIT_IE_COOKIES,    1, 9,  Combo,  10, nullptr, &S::IeCookieLimitIndex},
    {OPT_MOVE_AVANTGO,        1, 11, Text,   12, &S::AvantGoDir},
    {OPT_CLEAR_REGISTRY,      2, 0,  Flag},
    {OPT_MOVE_FAVORITES,      3, 0,  Text,   1,  &S::FavoritesDir},
    {OPT_MOVE_FONTS,          3, 3,  Text,   4,  &S::FontsDir},
    {OPT_MOVE_MYDOCS,         3, 6,  Text,   7,  &S::MyDocumentsDir},
    {OPT_CLEAN_START_MENU,    4, 0,  Flag},
    {OPT_FONT_CACHE,          5, 0,  Slider, 1,  nullptr, &S::FontCacheIndex},
    {OPT_SILENT_STARTUP,      5, 5,  Flag},
    {OPT_NO_MENU_ANIMATION,   5, 6,  Flag},
    {OPT_NO_WINDOW_ANIMATION, 5, 7,  Flag},
};
// clang-format on

}  // namespace

std::span<const Option> AllOptions() {
    return kOptions;
}
