#pragma once

#include "core/platform_types.h"

// The program's controls, as its user knows them: in the order of the pages and, on a page, of
// their item indices. Places are those of the page at its top.
struct ControlRow {
    UINT screen;
    const WCHAR* className;
    const WCHAR* text;
    DWORD style;
    int x, y, width, height;
    WORD id;  // 0: none
};

// clang-format off
inline constexpr ControlRow kControlRows[] = {
    {0, u"BUTTON",            u"User Defined 1",                     0x50000003,   2,   2, 100, 18, 50001},
    {0, u"EDIT",              u"",                                   0x50800000,   2,  20, 160, 18, 50002},
    {0, u"BUTTON",            u"Browse",                             0x50000000, 164,  20,  50, 18, 50003},
    {0, u"BUTTON",            u"User Defined 2",                     0x50000003,   2,  40, 100, 18, 50004},
    {0, u"EDIT",              u"",                                   0x50800000,   2,  58, 160, 18, 50005},
    {0, u"BUTTON",            u"Browse",                             0x50000000, 164,  58,  50, 18, 50006},
    {0, u"BUTTON",            u"\\Temp",                             0x50000003,   2,  78, 200, 18, 50007},
    {0, u"BUTTON",            u"\\Windows\\Temp",                    0x50000003,   2,  96, 200, 18, 50008},
    {0, u"BUTTON",            u"\\My Documents\\Temp",               0x50000003,   2, 114, 200, 18, 50009},
    {0, u"STATIC",            u"Search Directories",                 0x50000000,   2, 134, 100, 18, 50010},
    {0, u"BUTTON",            u"Refresh",                            0x50000000, 104, 134,  60, 18, 50011},
    {0, u"LISTBOX",           u"",                                   0x50b0100b,   2, 154, 210, 90, 50012},
    {0, u"STATIC",            u"Search Files",                       0x50000000,   2, 246, 100, 18, 50013},
    {0, u"BUTTON",            u"Refresh",                            0x50000000, 104, 246,  60, 18, 50014},
    {0, u"BUTTON",            u"*.tmp",                              0x50000003,   2, 266,  52, 18, 50015},
    {0, u"BUTTON",            u"*.log",                              0x50000003,  58, 266,  52, 18, 50016},
    {0, u"BUTTON",            u"*.bak",                              0x50000003,   2, 284,  52, 18, 50017},
    {0, u"BUTTON",            u"*.",                                 0x50000003,  58, 284,  30, 18, 50018},
    {0, u"EDIT",              u"",                                   0x50800000,  88, 284,  40, 18, 50019},
    {0, u"LISTBOX",           u"",                                   0x50b0100b,   2, 304, 210, 90, 50020},
    {1, u"BUTTON",            u"Clear Pocket IE Cache",              0x50000003,   2,   2, 180, 18, 50021},
    {1, u"BUTTON",            u"Clear Pocket IE History",            0x50000003,   2,  22, 180, 18, 50022},
    {1, u"BUTTON",            u"Move Pocket IE Cache",               0x50000003,   2,  42, 180, 18, 50023},
    {1, u"EDIT",              u"",                                   0x50800000,   2,  60, 160, 18, 50024},
    {1, u"BUTTON",            u"Browse",                             0x50000000, 164,  60,  50, 18, 50025},
    {1, u"BUTTON",            u"Limit Pocket IE Cache",              0x50000003,   2,  80, 142, 18, 50026},
    {1, u"COMBOBOX",          u"",                                   0x50000003, 146,  80,  70, 72, 50027},
    {1, u"BUTTON",            u"Limit Pocket IE History",            0x50000003,   2, 102, 142, 18, 50028},
    {1, u"COMBOBOX",          u"",                                   0x50000003, 146, 102,  70, 72, 50029},
    {1, u"BUTTON",            u"Limit Pocket IE Cookies",            0x50000003,   2, 124, 142, 18, 50030},
    {1, u"COMBOBOX",          u"",                                   0x50000003, 146, 124,  70, 72, 50031},
    {1, u"BUTTON",            u"Move AvantGo Cache",                 0x50000003,   2, 146, 160, 18, 50032},
    {1, u"EDIT",              u"",                                   0x50800000,   2, 164, 160, 18, 50033},
    {1, u"BUTTON",            u"Browse",                             0x50000000, 164, 164,  50, 18, 50034},
    {2, u"BUTTON",            u"Clear Redundant Registry Keys",      0x50000003,   2,   2, 190, 18, 50035},
    {3, u"BUTTON",            u"Move Favorites Storage",             0x50000003,   2,   2, 180, 18, 50036},
    {3, u"EDIT",              u"",                                   0x50800000,   2,  20, 160, 18, 50037},
    {3, u"BUTTON",            u"Browse",                             0x50000000, 164,  20,  50, 18, 50038},
    {3, u"BUTTON",            u"Move Fonts Folder",                  0x50000003,   2,  40, 180, 18, 50039},
    {3, u"EDIT",              u"",                                   0x50800000,   2,  58, 160, 18, 50040},
    {3, u"BUTTON",            u"Browse",                             0x50000000, 164,  58,  50, 18, 50041},
    {3, u"BUTTON",            u"Move My Documents",                  0x50000003,   2,  78, 180, 18, 50042},
    {3, u"EDIT",              u"",                                   0x50800000,   2,  96, 160, 18, 50043},
    {3, u"BUTTON",            u"Browse",                             0x50000000, 164,  96,  50, 18, 50044},
    {4, u"BUTTON",            u"Remove redundant start menu items",  0x50000003,   2,   2, 200, 18, 50045},
    {4, u"BUTTON",            u"Remove selected startup shortcuts",  0x50000003,   2,  22, 200, 18, 50046},
    {4, u"LISTBOX",           u"",                                   0x50b0100b,   2,  40, 210, 90, 50047},
    {5, u"BUTTON",            u"Set font cache size",                0x50000003,   2,   2, 160, 18, 50048},
    {5, u"msctls_trackbar32", u"Slider",                             0x50000001,   2,  20, 210, 24, 50049},
    {5, u"STATIC",            u"1x",                                 0x50000000,   2,  44,  20, 18, 0},
    {5, u"STATIC",            u"2x",                                 0x50000000, 102,  44,  20, 18, 0},
    {5, u"STATIC",            u"4x",                                 0x50000000, 200,  44,  20, 18, 0},
    {5, u"BUTTON",            u"Silent cleanup at startup",          0x50000003,   2,  64, 160, 18, 50050},
    {5, u"BUTTON",            u"Disable start menu animation",       0x50000003,   2,  84, 200, 18, 50051},
    {5, u"BUTTON",            u"Disable window animation",           0x50000003,   2, 104, 160, 18, 50052},
};
// clang-format on
