// Windows, boxes and power: a screen of 240 by 320 pixels in the corner of the desktop's.

#include <algorithm>
#include <cstdlib>
#include <map>
#include <string_view>

#include "core/handheld_operations.h"
#include "second_platform/handheld.h"
#include "shell/resources.h"

namespace {

constexpr int kScreenWidth = 240;
constexpr int kScreenHeight = 320;
constexpr int kBarHeight = 26;  // of the caption and the menu
constexpr int kOkWidth = 40;
constexpr int kLineStep = 3;
constexpr int kTabHeight = 21;
constexpr int kFieldHeight = 14;  // without its frame

bool g_hasWindows = false;
std::map<ULONG_PTR, WNDPROC> g_procedures;  // of the program's classes, by their atoms

int PageLessOne(HWND window, int bar, const SCROLLINFO& info) {
    SCROLLINFO whole{sizeof whole, SIF_PAGE, 0, 0, 0, 0, 0};
    GetScrollInfo(window, bar, &whole);
    const UINT page = (info.fMask & SIF_PAGE) != 0 ? info.nPage : whole.nPage;
    return std::max(static_cast<int>(page) - 1, 0);
}

// The desktop's position ends a page less one before the end of its range.
extern "C" BOOL HandheldGetScrollInfo(HWND window, int bar, SCROLLINFO* info) {
    const BOOL result = GetScrollInfo(window, bar, info);
    if (result != 0 && (info->fMask & SIF_RANGE) != 0) {
        info->nMax = std::max(info->nMax - PageLessOne(window, bar, *info), info->nMin);
    }
    return result;
}

// The program moves the page by whole steps, so the bar asks for none that does not fit.
WPARAM FittingScroll(HWND window, WPARAM wParam) {
    SCROLLINFO info{sizeof info, SIF_ALL, 0, 0, 0, 0, 0};
    HandheldGetScrollInfo(window, SB_VERT, &info);
    const WORD code = LOWORD(wParam);
    const bool isUp = code == SB_LINEUP || code == SB_PAGEUP;
    const bool isDown = code == SB_LINEDOWN || code == SB_PAGEDOWN;
    if (isUp && info.nPos - kLineStep < info.nMin) {
        return SB_TOP;
    }
    return isDown && info.nPos + kLineStep > info.nMax ? SB_BOTTOM : wParam;
}

LRESULT CALLBACK Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    const WNDPROC procedure = g_procedures[GetClassLongPtrW(window, GCW_ATOM)];
    if (message == WM_CLOSE) {
        return procedure(window, WM_COMMAND, IDOK, 0);
    }
    return procedure(window, message,
                     message == WM_VSCROLL ? FittingScroll(window, wParam) : wParam, lParam);
}

// The OK on the caption of a window that fills the screen below it.
void AddOk(HWND window) {
    const HWND button = CreateWindowExW(0, L"BUTTON", L"OK", WS_POPUP, kScreenWidth - kOkWidth, 0,
                                        kOkWidth, kBarHeight, window, nullptr, nullptr, nullptr);
    SetWindowLongPtrW(button, GWLP_ID, IDOK);
    ShowWindow(button, SW_SHOWNOACTIVATE);
}

// The menu's commands go to the window that the bar belongs to.
LRESULT CALLBACK BarProcedure(HWND bar, UINT message, WPARAM wParam, LPARAM lParam) {
    return message == WM_COMMAND ? SendMessageW(GetParent(bar), message, wParam, lParam)
                                 : DefWindowProcW(bar, message, wParam, lParam);
}

HMENU MenuFrom(const MenuResource& resource) {
    const HMENU bar = CreateMenu();
    for (const MenuPopup& popup : resource.popups) {
        const HMENU entries = CreatePopupMenu();
        for (const MenuItem& item : popup.items) {
            AppendMenuW(entries, MF_STRING, item.command, item.text);
        }
        AppendMenuW(bar, MF_POPUP, reinterpret_cast<UINT_PTR>(entries), popup.text);
    }
    return bar;
}

}  // namespace

void UseWindows(bool hasWindows) {
    g_hasWindows = hasWindows;
}

extern "C" {

int HandheldMessageBoxW(HWND owner, const WCHAR* text, const WCHAR* caption, UINT type) {
    std::printf("[%ls] %ls\n", caption, text);
    std::fflush(stdout);
    return g_hasWindows ? MessageBoxW(owner, text, caption, type) : IDOK;
}

ATOM HandheldRegisterClassW(const WNDCLASSW* windowClass) {
    WNDCLASSW own = *windowClass;
    own.lpfnWndProc = Procedure;
    const ATOM atom = own.lpszClassName == nullptr || windowClass->lpfnWndProc == nullptr
                          ? ATOM{0}
                          : RegisterClassW(&own);
    if (atom != 0) {
        g_procedures[atom] = windowClass->lpfnWndProc;
    }
    return atom;
}

HWND HandheldCreateWindowExW(DWORD extendedStyle, const WCHAR* className, const WCHAR* text,
                             DWORD style, int x, int y, int width, int height, HWND parent,
                             HMENU menu, HINSTANCE instance, void* parameter) {
    if ((extendedStyle & WS_EX_CAPTIONOKBTN) != 0) {
        const HWND window =
            CreateWindowExW(0, className, text, style | WS_POPUP, 0, kBarHeight, kScreenWidth,
                            kScreenHeight - kBarHeight, nullptr, nullptr, instance, nullptr);
        AddOk(window);
        return window;
    }
    const bool isList = _wcsicmp(className, L"LISTBOX") == 0;
    style |= (isList ? LBS_NOINTEGRALHEIGHT : 0) | ((style & WS_POPUP) == 0 ? WS_CHILD : 0);
    static const HFONT font = CreateFontW(-11, 0, 0, 0, FW_NORMAL, 0, 0, 0, DEFAULT_CHARSET, 0, 0,
                                          0, 0, L"DejaVu Sans Condensed");
    const HWND window = CreateWindowExW(extendedStyle, className, text, style, x, y, width, height,
                                        parent, menu, instance, parameter);
    SendMessageW(window, WM_SETFONT, reinterpret_cast<WPARAM>(font), FALSE);
    if (_wcsicmp(className, WC_TABCONTROLW) == 0) {
        SendMessageW(window, TCM_SETITEMSIZE, 0, MAKELPARAM(0, kTabHeight));
    } else if (_wcsicmp(className, L"COMBOBOX") == 0) {
        SendMessageW(window, CB_SETITEMHEIGHT, static_cast<WPARAM>(-1), kFieldHeight);
    }
    return window;
}

// With FENNELBRIGHT_PLACES in the environment, says where the window was.
BOOL HandheldDestroyWindow(HWND window) {
    RECT place{};
    if (std::getenv("FENNELBRIGHT_PLACES") != nullptr && GetWindowRect(window, &place)) {
        std::printf("%ld %ld %ld %ld\n", place.left, place.top, place.right, place.bottom);
    }
    return DestroyWindow(window);
}

int HandheldSetScrollInfo(HWND window, int bar, const SCROLLINFO* info, BOOL redraw) {
    SCROLLINFO own = *info;
    own.nMax = std::max(own.nMax, own.nMin) + PageLessOne(window, bar, own);
    return SetScrollInfo(window, bar, &own, redraw);
}
}

BOOL KernelIoControl(DWORD, void*, DWORD, void*, DWORD, DWORD*) {
    std::puts("restart");
    std::fflush(stdout);
    ExitProcess(0);
}

void SetCleanRebootFlag() {
    std::puts("erase");
}

BOOL SHInitDialog(const SHINITDLGINFO* info) {
    SetWindowLongPtrW(info->hDlg, GWL_STYLE, WS_POPUP | WS_VISIBLE);
    AddOk(info->hDlg);
    return MoveWindow(info->hDlg, 0, kBarHeight, kScreenWidth, kScreenHeight - 2 * kBarHeight,
                      TRUE);
}

// The menu bar is a window at the bottom of the screen that has the program's menu.
BOOL SHCreateMenuBar(SHMENUBARINFO* info) {
    const MenuResource* const resource = FindMenuResource(info->nToolBarId);
    if (resource == nullptr || !IsWindow(info->hwndParent)) {
        return FALSE;
    }
    WNDCLASSW barClass{};
    barClass.lpfnWndProc = BarProcedure;
    barClass.lpszClassName = L"MenuBar";
    RegisterClassW(&barClass);
    info->hwndMB = CreateWindowExW(0, L"MenuBar", L"", WS_POPUP | WS_VISIBLE, 0,
                                   kScreenHeight - kBarHeight, kScreenWidth, kBarHeight,
                                   info->hwndParent, MenuFrom(*resource), nullptr, nullptr);
    return info->hwndMB != nullptr;
}

DWORD_PTR SHGetFileInfo(const WCHAR* /*path*/, DWORD /*attributes*/, SHFILEINFO* info,
                        UINT /*size*/, UINT flags) {
    SHFILEINFOW own{};
    const DWORD_PTR list = SHGetFileInfoW(L"folder", FILE_ATTRIBUTE_DIRECTORY, &own, sizeof own,
                                          flags | SHGFI_USEFILEATTRIBUTES);
    info->iIcon = own.iIcon;
    return list;
}
