#include "screens/control_catalogue.h"

#include <initializer_list>

#include "core/window_operations.h"
#include "search/startup_list.h"

namespace {

constexpr DWORD kShown = WS_CHILD | WS_VISIBLE;

constexpr ControlKind kCheckBox = {TEXT("BUTTON"), kShown | BS_AUTOCHECKBOX};
constexpr ControlKind kButton = {TEXT("BUTTON"), kShown | BS_PUSHBUTTON};
constexpr ControlKind kLabel = {TEXT("STATIC"), kShown | SS_LEFT};
constexpr ControlKind kEditBox = {TEXT("EDIT"), kShown | WS_BORDER | ES_LEFT};
constexpr ControlKind kListBox = {TEXT("LISTBOX"), kShown | WS_BORDER | WS_VSCROLL | WS_HSCROLL |
                                                       LBS_NOTIFY | LBS_SORT | LBS_MULTIPLESEL |
                                                       LBS_DISABLENOSCROLL};
constexpr ControlKind kComboBox = {TEXT("COMBOBOX"), kShown | CBS_DROPDOWNLIST};
constexpr ControlKind kSlider = {TEXT("msctls_trackbar32"), kShown | TBS_AUTOTICKS};

void AddChoices(HWND comboBox, std::initializer_list<const WCHAR*> texts) {
    for (const WCHAR* text : texts) {
        SendMessageW(comboBox, CB_ADDSTRING, 0, reinterpret_cast<LPARAM>(text));
    }
    SendMessageW(comboBox, CB_SETCURSEL, 0, 0);
}

void AddCacheLimits(HWND comboBox) {
    AddChoices(comboBox, {TEXT("1024 kb"), TEXT("2048 kb"), TEXT("3072 kb")});
}

void AddSmallLimits(HWND comboBox) {
    AddChoices(comboBox, {TEXT("256 kb"), TEXT("512 kb"), TEXT("1024 kb")});
}

void SetSliderRange(HWND slider) {
    SendMessageW(slider, TBM_SETRANGE, TRUE, MAKELONG(0, 2));
    SendMessageW(slider, TBM_SETPOS, TRUE, 0);
}

// clang-format off
// "Clean Temp Files"
constexpr CatalogueControl kCleanTempFiles[] = {
    {kCheckBox, TEXT("User Defined 1"),         2,   2, 100, 18, 50001},
    {kEditBox,  TEXT(""),                       2,  20, 160, 18, 50002},
    {kButton,   TEXT("Browse"),               164,  20,  50, 18, 50003},
    {kCheckBox, TEXT("User Defined 2"),         2,  40, 100, 18, 50004},
    {kEditBox,  TEXT(""),                       2,  58, 160, 18, 50005},
    {kButton,   TEXT("Browse"),               164,  58,  50, 18, 50006},
    {kCheckBox, TEXT("\\Temp"),                 2,  78, 200, 18, 50007},
    {kCheckBox, TEXT("\\Windows\\Temp"),        2,  96, 200, 18, 50008},
    {kCheckBox, TEXT("\\My Documents\\Temp"),   2, 114, 200, 18, 50009},
    {kLabel,    TEXT("Search Directories"),     2, 134, 100, 18, 50010},
    {kButton,   TEXT("Refresh"),              104, 134,  60, 18, 50011},
    {kListBox,  TEXT(""),                       2, 154, 210, 90, 50012},
    {kLabel,    TEXT("Search Files"),           2, 246, 100, 18, 50013},
    {kButton,   TEXT("Refresh"),              104, 246,  60, 18, 50014},
    {kCheckBox, TEXT("*.tmp"),                  2, 266,  52, 18, 50015},
    {kCheckBox, TEXT("*.log"),                 58, 266,  52, 18, 50016},
    {kCheckBox, TEXT("*.bak"),                  2, 284,  52, 18, 50017},
    {kCheckBox, TEXT("*."),                    58, 284,  30, 18, 50018},
    {kEditBox,  TEXT(""),                      88, 284,  40, 18, 50019},
    {kListBox,  TEXT(""),                       2, 304, 210, 90, 50020},
};

// "Pocket IE"
constexpr CatalogueControl kPocketIe[] = {
    {kCheckBox, TEXT("Clear Pocket IE Cache"),     2,   2, 180, 18, 50021},
    {kCheckBox, TEXT("Clear Pocket IE History"),   2,  22, 180, 18, 50022},
    {kCheckBox, TEXT("Move Pocket IE Cache"),      2,  42, 180, 18, 50023},
    {kEditBox,  TEXT(""),                          2,  60, 160, 18, 50024},
    {kButton,   TEXT("Browse"),                  164,  60,  50, 18, 50025},
    {kCheckBox, TEXT("Limit Pocket IE Cache"),     2,  80, 142, 18, 50026},
    {kComboBox, TEXT(""),                        146,  80,  70, 72, 50027, AddCacheLimits},
    {kCheckBox, TEXT("Limit Pocket IE History"),   2, 102, 142, 18, 50028},
    {kComboBox, TEXT(""),                        146, 102,  70, 72, 50029, AddSmallLimits},
    {kCheckBox, TEXT("Limit Pocket IE Cookies"),   2, 124, 142, 18, 50030},
    {kComboBox, TEXT(""),                        146, 124,  70, 72, 50031, AddSmallLimits},
    {kCheckBox, TEXT("Move AvantGo Cache"),        2, 146, 160, 18, 50032},
    {kEditBox,  TEXT(""),                          2, 164, 160, 18, 50033},
    {kButton,   TEXT("Browse"),                  164, 164,  50, 18, 50034},
};

// "Registry"
constexpr CatalogueControl kRegistry[] = {
    {kCheckBox, TEXT("Clear Redundant Registry Keys"), 2, 2, 190, 18, 50035},
};

// "System Folders"
constexpr CatalogueControl kSystemFolders[] = {
    {kCheckBox, TEXT("Move Favorites Storage"),   2,  2, 180, 18, 50036},
    {kEditBox,  TEXT(""),                         2, 20, 160, 18, 50037},
    {kButton,   TEXT("Browse"),                 164, 20,  50, 18, 50038},
    {kCheckBox, TEXT("Move Fonts Folder"),        2, 40, 180, 18, 50039},
    {kEditBox,  TEXT(""),                         2, 58, 160, 18, 50040},
    {kButton,   TEXT("Browse"),                 164, 58,  50, 18, 50041},
    {kCheckBox, TEXT("Move My Documents"),        2, 78, 180, 18, 50042},
    {kEditBox,  TEXT(""),                         2, 96, 160, 18, 50043},
    {kButton,   TEXT("Browse"),                 164, 96,  50, 18, 50044},
};

// "Shortcuts"
constexpr CatalogueControl kShortcuts[] = {
    {kCheckBox, TEXT("Remove redundant start menu items"), 2,  2, 200, 18, 50045},
    {kCheckBox, TEXT("Remove selected startup shortcuts"), 2, 22, 200, 18, 50046},
    {kListBox,  TEXT(""),                                  2, 40, 210, 90, 50047, FillStartupList},
};

// "Performance"
constexpr CatalogueControl kPerformance[] = {
    {kCheckBox, TEXT("Set font cache size"),            2,   2, 160, 18, 50048},
    {kSlider,   TEXT("Slider"),                         2,  20, 210, 24, 50049, SetSliderRange},
    {kLabel,    TEXT("1x"),                             2,  44,  20, 18, 0},
    {kLabel,    TEXT("2x"),                           102,  44,  20, 18, 0},
    {kLabel,    TEXT("4x"),                           200,  44,  20, 18, 0},
    {kCheckBox, TEXT("Silent cleanup at startup"),      2,  64, 160, 18, 50050},
    {kCheckBox, TEXT("Disable start menu animation"),   2,  84, 200, 18, 50051},
    {kCheckBox, TEXT("Disable window animation"),       2, 104, 160, 18, 50052},
};

constexpr CatalogueScreen kScreens[] = {
    {kCleanTempFiles, 396},
    {kPocketIe, 184},
    {kRegistry, 22},
    {kSystemFolders, 116},
    {kShortcuts, 130},
    {kPerformance, 124},
};
// clang-format on

}  // namespace

std::span<const CatalogueScreen> Catalogue() {
    return kScreens;
}
