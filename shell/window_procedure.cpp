#include "shell/window_procedure.h"

#include <algorithm>
#include <iterator>
#include <optional>

#include "browser/browse_dialog.h"
#include "core/application.h"
#include "core/error_box.h"
#include "engine/apply_sequence.h"
#include "screens/screens.h"
#include "settings/settings_file.h"
#include "shell/about_box.h"
#include "shell/device_commands.h"
#include "shell/main_windows.h"
#include "shell/resources.h"

namespace {

constexpr LRESULT kHandled = 1;
constexpr int kLineStep = 3;

struct MessageRow {
    UINT message;
    LRESULT (*handle)(HWND window, WPARAM wParam, LPARAM lParam);
};

struct CommandRow {
    WORD id;
    void (*carryOut)(HWND window);
};

struct NotificationRow {
    UINT code;
    void (*handle)();
};

SCROLLINFO ReadScrollInfo(HWND window) {
    SCROLLINFO info{};
    info.cbSize = sizeof info;
    info.fMask = SIF_ALL;
    GetScrollInfo(window, SB_VERT, &info);
    return info;
}

void MoveControls(HWND window, int dy) {
    RECT client{};
    GetClientRect(window, &client);
    ScrollWindowEx(window, 0, dy, nullptr, &client, nullptr, nullptr, SW_SCROLLCHILDREN);
}

// The page's position after a scroll code; nothing if the code does not move it. A line step is
// never shortened, and the page does not follow the thumb while it is dragged.
std::optional<int> PositionAfter(WPARAM wParam, const SCROLLINFO& info) {
    const int page = static_cast<int>(info.nPage);
    switch (LOWORD(wParam)) {
        case SB_LINEUP:
            return info.nPos > info.nMin ? std::optional(info.nPos - kLineStep) : std::nullopt;
        case SB_LINEDOWN:
            return info.nPos < info.nMax - std::max(page - 1, 0)
                       ? std::optional(info.nPos + kLineStep)
                       : std::nullopt;
        case SB_PAGEUP:
            return info.nPos - page;
        case SB_PAGEDOWN:
            return info.nPos + page;
        case SB_THUMBPOSITION:
            return HIWORD(wParam);
        case SB_TOP:
            return info.nMin;
        case SB_BOTTOM:
            return info.nMax;
        default:
            return std::nullopt;
    }
}

LRESULT ScrollPage(HWND window, WPARAM wParam, LPARAM /*lParam*/) {
    SCROLLINFO info = ReadScrollInfo(window);
    const std::optional<int> position = PositionAfter(wParam, info);
    if (position) {
        MoveControls(window, info.nPos - *position);
        info.nPos = *position;
    }
    SetScrollInfo(window, SB_VERT, &info, TRUE);
    return kHandled;
}

// The index of the selected tab. Nothing, after a box with `failure`, if no screen belongs to it.
std::optional<UINT> SelectedScreen(const WCHAR* failure) {
    const LRESULT index = SendMessageW(g_TabBar->Window(), TCM_GETCURSEL, 0, 0);
    if (index < 0 || index >= static_cast<LRESULT>(kScreenCount)) {
        ShowError(failure);
        return std::nullopt;
    }
    return static_cast<UINT>(index);
}

// Scrolls back before the page changes: controls that are hidden while they are scrolled away would
// be shown again in the wrong place.
void ChangeTab() {
    const HWND page = g_DisplayWindow->Window();
    const SCROLLINFO info = ReadScrollInfo(page);
    MoveControls(page, info.nPos - info.nMin);
    const std::optional<UINT> screen = SelectedScreen(TEXT("TCN_SELCHANGE Unknown Tab Index"));
    if (screen) {
        g_Screens->SwitchScreenTo(*screen);
    }
}

void CheckTab() {
    SelectedScreen(TEXT("TCN_SELCHANGING Unknown Tab Index"));
}

constexpr NotificationRow kNotifications[] = {
    {TCN_SELCHANGE, ChangeTab},
    {TCN_SELCHANGING, CheckTab},
};

LRESULT HandleTabNotification(HWND window, WPARAM wParam, LPARAM lParam) {
    const auto* header =
        reinterpret_cast<const NMHDR*>(lParam);  // NOLINT(performance-no-int-to-ptr)
    for (const NotificationRow& row : kNotifications) {
        if (header != nullptr && row.code == header->code) {
            row.handle();
        }
    }
    return DefWindowProcW(window, WM_NOTIFY, wParam, lParam);
}

// Closing the folder browser first discards its selection.
void SaveAndEnd(HWND /*window*/) {
    CloseBrowseDialog();
    SaveSettings(*g_Settings);
    g_Running = false;
}

void ApplyAllowingRestart() {
    ApplySettings(true);
}

void ApplyDeferringRestart() {
    ApplySettings(false);
}

void Exit(HWND window) {
    CloseAboutBox();
    SaveAndEnd(window);
}

// In the About box OK closes that alone; in the main window it ends the program.
void PressOk(HWND window) {
    if (window != nullptr && window == g_AboutWindow) {
        CloseAboutBox();
    } else {
        SaveAndEnd(window);
    }
}

void ShowAbout(HWND /*window*/) {
    OpenAboutBox();
    SetFocus(g_AboutWindow);
}

// Makes a handler of a function that needs no window.
template <void (*carryOut)()>
void Windowless(HWND /*window*/) {
    carryOut();
}

constexpr CommandRow kCommands[] = {
    {kCommandExit, Exit},
    {kCommandApplyAllowRestart, Windowless<ApplyAllowingRestart>},
    {kCommandApplyDeferRestart, Windowless<ApplyDeferringRestart>},
    {kCommandPowerOff, Windowless<SwitchOff>},
    {kCommandSoftReset, Windowless<SoftReset>},
    {kCommandHardReset, Windowless<HardReset>},
    {kCommandHelpIndex, Windowless<OpenHelpIndex>},
    {kCommandAbout, ShowAbout},
    {IDOK, PressOk},
};

// The notification code and the sender are ignored.
LRESULT RouteCommand(HWND window, WPARAM wParam, LPARAM /*lParam*/) {
    const WORD id = LOWORD(wParam);
    const auto* row = std::ranges::find(kCommands, id, &CommandRow::id);
    if (row != std::end(kCommands)) {
        row->carryOut(window);
    } else {
        g_Screens->ControlCallback(id);
    }
    return kHandled;
}

LRESULT IgnoreButtonUp(HWND /*window*/, WPARAM /*wParam*/, LPARAM /*lParam*/) {
    return kHandled;
}

constexpr MessageRow kMessages[] = {
    {WM_VSCROLL, ScrollPage},
    {WM_NOTIFY, HandleTabNotification},
    {WM_COMMAND, RouteCommand},
    {WM_LBUTTONUP, IgnoreButtonUp},
};

}  // namespace

LRESULT MainWindowProc(HWND hWnd, UINT message, WPARAM wParam, LPARAM lParam) {
    const auto* row = std::ranges::find(kMessages, message, &MessageRow::message);
    return row != std::end(kMessages) ? row->handle(hWnd, wParam, lParam)
                                      : DefWindowProcW(hWnd, message, wParam, lParam);
}
