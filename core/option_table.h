#pragma once

#include <array>
#include <cstdint>
#include <span>

#include "core/platform_types.h"
#include "core/settings_record.h"

// The options that a user can tick, one bit each of the option mask. The bits from 0x2000000 on are
// free. The bit of an option that is removed is not, as it is in files that are stored.
inline constexpr std::uint32_t OPT_CLEAN_USER1 = 0x1;
inline constexpr std::uint32_t OPT_CLEAN_USER2 = 0x2;
inline constexpr std::uint32_t OPT_CLEAN_ROOT_TEMP = 0x4;
inline constexpr std::uint32_t OPT_CLEAN_WINDOWS_TEMP = 0x8;
inline constexpr std::uint32_t OPT_CLEAN_MYDOCS_TEMP = 0x10;
inline constexpr std::uint32_t OPT_SEARCH_TMP = 0x20;
inline constexpr std::uint32_t OPT_SEARCH_LOG = 0x40;
inline constexpr std::uint32_t OPT_SEARCH_BAK = 0x80;
inline constexpr std::uint32_t OPT_CLEAR_IE_CACHE = 0x100;
inline constexpr std::uint32_t OPT_CLEAR_IE_HISTORY = 0x200;
inline constexpr std::uint32_t OPT_MOVE_IE_CACHE = 0x400;
inline constexpr std::uint32_t OPT_LIMIT_IE_CACHE = 0x800;
inline constexpr std::uint32_t OPT_LIMIT_IE_HISTORY = 0x1000;
inline constexpr std::uint32_t OPT_LIMIT_IE_COOKIES = 0x2000;
inline constexpr std::uint32_t OPT_MOVE_AVANTGO = 0x4000;
inline constexpr std::uint32_t OPT_CLEAR_REGISTRY = 0x8000;
inline constexpr std::uint32_t OPT_MOVE_FAVORITES = 0x10000;
inline constexpr std::uint32_t OPT_MOVE_FONTS = 0x20000;
inline constexpr std::uint32_t OPT_MOVE_MYDOCS = 0x40000;
inline constexpr std::uint32_t OPT_CLEAN_START_MENU = 0x80000;
inline constexpr std::uint32_t OPT_FONT_CACHE = 0x100000;
inline constexpr std::uint32_t OPT_SILENT_STARTUP = 0x200000;
inline constexpr std::uint32_t OPT_NO_MENU_ANIMATION = 0x400000;
inline constexpr std::uint32_t OPT_NO_WINDOW_ANIMATION = 0x800000;
inline constexpr std::uint32_t OPT_SEARCH_CUSTOM = 0x1000000;

// The value that is stored for an option besides its bit: none, a text or a position.
enum class OptionKind { Flag, Text, Combo, Slider };

// The positions of a list or slider in words.
using PositionWords = std::array<const char*, 3>;

struct Option {
    std::uint32_t bit;
    // The words of its check box, so that who knows the window knows the name; where those are a
    // path or a pattern, with the verb of their part of the page in front. Never changed: scripts
    // have it.
    const char* name;
    UINT screen;
    UINT item;  // of the check box, in its screen's control list
    OptionKind kind;
    UINT valueItem = 0;                           // of the control with the value, if it has one
    SettingsText CSettings::*text = nullptr;      // kind Text
    std::int32_t CSettings::*position = nullptr;  // kinds Combo and Slider
    const PositionWords* words = nullptr;         // the same
};

// All options, in the order of the screens and of the items within them. Controls are captured and
// restored in this order; texts, and after them positions, are stored in it.
std::span<const Option> AllOptions();
