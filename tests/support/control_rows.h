#pragma once

#include "core/platform_types.h"

struct ControlKind {
    const WCHAR* className;
    DWORD style;
    int height;
};

inline constexpr ControlKind kBox = {u"BUTTON", 0x50000003, 18};
inline constexpr ControlKind kPush = {u"BUTTON", 0x50000000, 18};
inline constexpr ControlKind kEdit = {u"EDIT", 0x50800000, 18};
inline constexpr ControlKind kLabel = {u"STATIC", 0x50000000, 18};
inline constexpr ControlKind kList = {u"LISTBOX", 0x50b0100b, 90};
inline constexpr ControlKind kCombo = {u"COMBOBOX", 0x50000003, 72};
inline constexpr ControlKind kSlider = {u"msctls_trackbar32", 0x50000001, 24};

// The program's controls, as its user knows them: in the order of the pages and, on a page, of
// their item indices. Places are those of the page at its top.
struct ControlRow {
    UINT screen;
    ControlKind kind;
    const WCHAR* text;
    int x, y, width;
    WORD id;  // 0: none
};

// clang-format off
inline constexpr ControlRow kControlRows[] = {
    {0, kBox, u"User Defined 1", 2, 2, 100, 50001}, {0, kEdit, u"", 2, 20, 160, 50002},
    {0, kPush, u"Browse", 164, 20, 50, 50003}, {0, kBox, u"User Defined 2", 2, 40, 100, 50004},
    {0, kEdit, u"", 2, 58, 160, 50005}, {0, kPush, u"Browse", 164, 58, 50, 50006},
    {0, kBox, u"\\Temp", 2, 78, 200, 50007}, {0, kBox, u"\\Windows\\Temp", 2, 96, 200, 50008},
    {0, kBox, u"\\My Documents\\Temp", 2, 114, 200, 50009},
    {0, kLabel, u"Search Directories", 2, 134, 100, 50010},
    {0, kPush, u"Refresh", 104, 134, 60, 50011}, {0, kList, u"", 2, 154, 210, 50012},
    {0, kLabel, u"Search Files", 2, 246, 100, 50013}, {0, kPush, u"Refresh", 104, 246, 60, 50014},
    {0, kBox, u"*.tmp", 2, 266, 52, 50015}, {0, kBox, u"*.log", 58, 266, 52, 50016},
    {0, kBox, u"*.bak", 2, 284, 52, 50017}, {0, kBox, u"*.", 58, 284, 30, 50018},
    {0, kEdit, u"", 88, 284, 40, 50019}, {0, kList, u"", 2, 304, 210, 50020},
    {1, kBox, u"Clear Pocket IE Cache", 2, 2, 180, 50021},
    {1, kBox, u"Clear Pocket IE History", 2, 22, 180, 50022},
    {1, kBox, u"Move Pocket IE Cache", 2, 42, 180, 50023}, {1, kEdit, u"", 2, 60, 160, 50024},
    {1, kPush, u"Browse", 164, 60, 50, 50025},
    {1, kBox, u"Limit Pocket IE Cache", 2, 80, 142, 50026}, {1, kCombo, u"", 146, 80, 70, 50027},
    {1, kBox, u"Limit Pocket IE History", 2, 102, 142, 50028},
    {1, kCombo, u"", 146, 102, 70, 50029},
    {1, kBox, u"Limit Pocket IE Cookies", 2, 124, 142, 50030},
    {1, kCombo, u"", 146, 124, 70, 50031}, {1, kBox, u"Move AvantGo Cache", 2, 146, 160, 50032},
    {1, kEdit, u"", 2, 164, 160, 50033}, {1, kPush, u"Browse", 164, 164, 50, 50034},
    {2, kBox, u"Clear Redundant Registry Keys", 2, 2, 190, 50035},
    {3, kBox, u"Move Favorites Storage", 2, 2, 180, 50036}, {3, kEdit, u"", 2, 20, 160, 50037},
    {3, kPush, u"Browse", 164, 20, 50, 50038}, {3, kBox, u"Move Fonts Folder", 2, 40, 180, 50039},
    {3, kEdit, u"", 2, 58, 160, 50040}, {3, kPush, u"Browse", 164, 58, 50, 50041},
    {3, kBox, u"Move My Documents", 2, 78, 180, 50042}, {3, kEdit, u"", 2, 96, 160, 50043},
    {3, kPush, u"Browse", 164, 96, 50, 50044},
    {4, kBox, u"Remove redundant start menu items", 2, 2, 200, 50045},
    {4, kBox, u"Remove selected startup shortcuts", 2, 22, 200, 50046},
    {4, kList, u"", 2, 40, 210, 50047}, {5, kBox, u"Set font cache size", 2, 2, 160, 50048},
    {5, kSlider, u"Slider", 2, 20, 210, 50049}, {5, kLabel, u"1x", 2, 44, 20, 0},
    {5, kLabel, u"2x", 102, 44, 20, 0}, {5, kLabel, u"4x", 200, 44, 20, 0},
    {5, kBox, u"Silent cleanup at startup", 2, 64, 160, 50050},
    {5, kBox, u"Disable start menu animation", 2, 84, 200, 50051},
    {5, kBox, u"Disable window animation", 2, 104, 160, 50052},
};
// clang-format on
