#include "platform/seam/window_system.h"

namespace {

platform::WindowSystem* g_windows = nullptr;

}  // namespace

namespace platform {

WindowsInUse::WindowsInUse(WindowSystem& windows) {
    g_windows = &windows;
}

WindowsInUse::~WindowsInUse() {
    g_windows = nullptr;
}

}  // namespace platform

// The controls are there as soon as there are windows.
void InitCommonControls() {}

WORD RegisterClassW(const WNDCLASS* windowClass) {
    return g_windows->RegisterClassW(windowClass);
}

BOOL UnregisterClassW(const WCHAR* className, HINSTANCE instance) {
    return g_windows->UnregisterClassW(className, instance);
}

HWND CreateWindowExW(DWORD extendedStyle, const WCHAR* className, const WCHAR* text, DWORD style,
                     int x, int y, int width, int height, HWND parent, HMENU menu,
                     HINSTANCE instance, void* parameter) {
    return g_windows->CreateWindowExW(extendedStyle, className, text, style, x, y, width, height,
                                      parent, menu, instance, parameter);
}

BOOL DestroyWindow(HWND window) {
    return g_windows->DestroyWindow(window);
}

BOOL ShowWindow(HWND window, int command) {
    return g_windows->ShowWindow(window, command);
}

BOOL UpdateWindow(HWND window) {
    return g_windows->UpdateWindow(window);
}

BOOL GetClientRect(HWND window, RECT* rectangle) {
    return g_windows->GetClientRect(window, rectangle);
}

BOOL GetWindowRect(HWND window, RECT* rectangle) {
    return g_windows->GetWindowRect(window, rectangle);
}

BOOL MoveWindow(HWND window, int x, int y, int width, int height, BOOL repaint) {
    return g_windows->MoveWindow(window, x, y, width, height, repaint);
}

HWND SetFocus(HWND window) {
    return g_windows->SetFocus(window);
}

BOOL SetWindowTextW(HWND window, const WCHAR* text) {
    return g_windows->SetWindowTextW(window, text);
}

BOOL GetMessageW(MSG* message, HWND window, UINT lowest, UINT highest) {
    return g_windows->GetMessageW(message, window, lowest, highest);
}

BOOL TranslateMessage(const MSG* message) {
    return g_windows->TranslateMessage(message);
}

LRESULT DispatchMessageW(const MSG* message) {
    return g_windows->DispatchMessageW(message);
}

LRESULT DefWindowProcW(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    return g_windows->DefWindowProcW(window, message, wParam, lParam);
}

LRESULT SendMessageW(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    return g_windows->SendMessageW(window, message, wParam, lParam);
}

LRESULT SendDlgItemMessageW(HWND parent, int id, UINT message, WPARAM wParam, LPARAM lParam) {
    return g_windows->SendDlgItemMessageW(parent, id, message, wParam, lParam);
}

int MessageBoxW(HWND owner, const WCHAR* text, const WCHAR* caption, UINT type) {
    return g_windows->MessageBoxW(owner, text, caption, type);
}

BOOL GetScrollInfo(HWND window, int bar, SCROLLINFO* info) {
    return g_windows->GetScrollInfo(window, bar, info);
}

int SetScrollInfo(HWND window, int bar, const SCROLLINFO* info, BOOL redraw) {
    return g_windows->SetScrollInfo(window, bar, info, redraw);
}

int ScrollWindowEx(HWND window, int dx, int dy, const RECT* scroll, const RECT* clip,
                   HRGN updateRegion, RECT* update, UINT flags) {
    return g_windows->ScrollWindowEx(window, dx, dy, scroll, clip, updateRegion, update, flags);
}

void keybd_event(BYTE key, BYTE scanCode, DWORD flags, DWORD_PTR extra) {
    g_windows->keybd_event(key, scanCode, flags, extra);
}

BOOL SHCreateMenuBar(SHMENUBARINFO* info) {
    return g_windows->SHCreateMenuBar(info);
}

HWND CreateDialogIndirectParamW(HINSTANCE instance, const DLGTEMPLATE* dialog, HWND parent,
                                DLGPROC procedure, LPARAM parameter) {
    return g_windows->CreateDialogIndirectParamW(instance, dialog, parent, procedure, parameter);
}

BOOL SHInitDialog(const SHINITDLGINFO* info) {
    return g_windows->SHInitDialog(info);
}

DWORD_PTR SHGetFileInfo(const WCHAR* path, DWORD attributes, SHFILEINFO* info, UINT size,
                        UINT flags) {
    return g_windows->SHGetFileInfo(path, attributes, info, size, flags);
}
