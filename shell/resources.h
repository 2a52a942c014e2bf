#pragma once

#include <span>

#include "core/platform_types.h"

// The executable's resources for the platform: menus and icons, found by their IDs. They are valid
// until the process ends.

inline constexpr UINT kMenuResource = 101;
inline constexpr UINT kIconResource = 102;

// The commands of the menu, as WM_COMMAND carries them.
inline constexpr WORD kCommandExit = 40004;
inline constexpr WORD kCommandApplyAllowRestart = 40006;
inline constexpr WORD kCommandApplyDeferRestart = 40007;
inline constexpr WORD kCommandPowerOff = 40008;
inline constexpr WORD kCommandSoftReset = 40009;
inline constexpr WORD kCommandAbout = 40011;
inline constexpr WORD kCommandHardReset = 40013;
inline constexpr WORD kCommandHelpIndex = 57666;

struct MenuItem {
    const WCHAR* text;
    WORD command;
};

struct MenuPopup {
    const WCHAR* text;
    std::span<const MenuItem> items;
};

struct MenuResource {
    UINT id;
    std::span<const MenuPopup> popups;  // side by side on the bar, from the left
};

struct IconPixel {
    BYTE red;
    BYTE green;
    BYTE blue;
    bool opaque;  // if not, the background shows through and the colour is black
};

struct IconResource {
    UINT id;
    int width;
    int height;
    std::span<const IconPixel> pixels;  // row by row from the top
};

// Null when the executable has no menu of this ID.
const MenuResource* FindMenuResource(UINT id);

// Null when the executable has no icon of this ID.
const IconResource* FindIconResource(UINT id);
