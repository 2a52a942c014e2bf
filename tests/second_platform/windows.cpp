// Windows, boxes and power: a screen of 240 by 320 pixels in the corner of the desktop's.

#include "tests/second_platform/handheld.h"

#include <string_view>

namespace handheld {

void UseRoot(const std::wstring& root);
void UseRegistry(const std::wstring& registry);

namespace {

constexpr int kWidth = 240;
constexpr int kHeight = 320;
constexpr int kBarHeight = 26;  // the caption's and the menu bar's
constexpr UINT kFirstPopup = 1;

bool g_hasWindows = false;

}  // namespace

void UseDevice(const std::wstring& root, const std::wstring& registry, bool hasWindows) {
    UseRoot(root);
    UseRegistry(registry);
    g_hasWindows = hasWindows;
}

int MessageBoxW(HWND owner, const WCHAR* text, const WCHAR* caption, UINT type) {
    std::printf("[%ls] %ls\n", caption, text);
    std::fflush(stdout);
    return g_hasWindows ? ::MessageBoxW(owner, text, caption, type) : IDOK;
}

BOOL CreateProcessW(const WCHAR* /*image*/, const WCHAR* /*commandLine*/, void* /*processSecurity*/,
                    void* /*threadSecurity*/, BOOL /*inherit*/, DWORD /*flags*/,
                    void* /*environment*/, WCHAR* /*directory*/, void* /*startup*/,
                    void* /*information*/) {
    SetLastError(ERROR_FILE_NOT_FOUND);
    return FALSE;
}

BOOL KernelIoControl(DWORD /*code*/, void* /*input*/, DWORD /*inputSize*/, void* /*output*/,
                     DWORD /*outputSize*/, DWORD* /*returned*/) {
    std::puts("restart");
    std::fflush(stdout);
    ExitProcess(0);
}

void SetCleanRebootFlag() {
    std::puts("erase");
}

void PressKey(BYTE /*key*/, BYTE /*scanCode*/, DWORD /*flags*/, DWORD_PTR /*extra*/) {}

ATOM RegisterClassW(const WNDCLASSW* windowClass) {
    return ::RegisterClassW(windowClass);
}

HWND CreateWindowExW(DWORD extendedStyle, const WCHAR* className, const WCHAR* text, DWORD style,
                     int x, int y, int width, int height, HWND parent, HMENU menu,
                     HINSTANCE instance, void* parameter) {
    if ((extendedStyle & kCaptionOkButton) != 0) {
        return ::CreateWindowExW(0, className, text, style | WS_POPUP, 0, kBarHeight, kWidth,
                                 kHeight - kBarHeight, nullptr, nullptr, instance, nullptr);
    }
    if (std::wstring_view(className) == L"LISTBOX") {
        style |= LBS_NOINTEGRALHEIGHT;
    }
    if ((style & WS_POPUP) == 0) {
        style |= WS_CHILD;
    }
    return ::CreateWindowExW(extendedStyle, className, text, style, x, y, width, height, parent,
                             menu, instance, parameter);
}

HWND CreateDialogIndirectParamW(HINSTANCE instance, const DLGTEMPLATE* dialog, HWND parent,
                                WNDPROC procedure, LPARAM parameter) {
    return ::CreateDialogIndirectParamW(instance, dialog, parent,
                                        reinterpret_cast<DLGPROC>(procedure), parameter);
}

// The desktop's position ends a page less one before the end of the range.
BOOL GetScrollInfo(HWND window, int bar, SCROLLINFO* info) {
    return ::GetScrollInfo(window, bar, info);
}

int SetScrollInfo(HWND window, int bar, const SCROLLINFO* info, BOOL redraw) {
    return ::SetScrollInfo(window, bar, info, redraw);
}

BOOL SHCreateMenuBar(SHMENUBARINFO* info) {
    info->hwndMB =
        ::CreateWindowExW(0, L"STATIC", L"", WS_POPUP | WS_VISIBLE, 0, kHeight - kBarHeight, kWidth,
                          kBarHeight, info->hwndParent, nullptr, nullptr, nullptr);
    return info->hwndMB != nullptr;
}

BOOL SHInitDialog(const SHINITDLGINFO* info) {
    return MoveWindow(info->hDlg, 0, kBarHeight, kWidth, kHeight - 2 * kBarHeight, TRUE);
}

DWORD_PTR FileInfo(const WCHAR* /*path*/, DWORD /*attributes*/, SHFILEINFOW* info, UINT size,
                   UINT flags) {
    return SHGetFileInfoW(L"folder", FILE_ATTRIBUTE_DIRECTORY, info, size,
                          flags | SHGFI_USEFILEATTRIBUTES);
}

}  // namespace handheld
