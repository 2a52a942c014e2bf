#pragma once

#include "core/handheld_operations.h"
#include "core/window_operations.h"

namespace platform {

// What carries out the program's window operations: the functions of core/window_operations.h
// and, for what the handheld's shell adds, core/handheld_operations.h, with their names and
// contracts.
class WindowSystem {
  public:
    WindowSystem() = default;
    virtual ~WindowSystem() = default;
    WindowSystem(const WindowSystem&) = delete;
    WindowSystem& operator=(const WindowSystem&) = delete;

    virtual WORD RegisterClassW(const WNDCLASS* windowClass) = 0;
    virtual BOOL UnregisterClassW(const WCHAR* className, HINSTANCE instance) = 0;
    virtual HWND CreateWindowExW(DWORD extendedStyle, const WCHAR* className, const WCHAR* text,
                                 DWORD style, int x, int y, int width, int height, HWND parent,
                                 HMENU menu, HINSTANCE instance, void* parameter) = 0;
    virtual BOOL DestroyWindow(HWND window) = 0;
    virtual BOOL ShowWindow(HWND window, int command) = 0;
    virtual BOOL UpdateWindow(HWND window) = 0;
    virtual BOOL GetClientRect(HWND window, RECT* rectangle) = 0;
    virtual BOOL GetWindowRect(HWND window, RECT* rectangle) = 0;
    virtual BOOL MoveWindow(HWND window, int x, int y, int width, int height, BOOL repaint) = 0;
    virtual HWND SetFocus(HWND window) = 0;
    virtual BOOL SetWindowTextW(HWND window, const WCHAR* text) = 0;
    virtual BOOL GetMessageW(MSG* message, HWND window, UINT lowest, UINT highest) = 0;
    virtual BOOL TranslateMessage(const MSG* message) = 0;
    virtual LRESULT DispatchMessageW(const MSG* message) = 0;
    virtual LRESULT DefWindowProcW(HWND window, UINT message, WPARAM wParam, LPARAM lParam) = 0;
    virtual LRESULT SendMessageW(HWND window, UINT message, WPARAM wParam, LPARAM lParam) = 0;
    virtual LRESULT SendDlgItemMessageW(HWND parent, int id, UINT message, WPARAM wParam,
                                        LPARAM lParam) = 0;
    virtual int MessageBoxW(HWND owner, const WCHAR* text, const WCHAR* caption, UINT type) = 0;
    virtual BOOL GetScrollInfo(HWND window, int bar, SCROLLINFO* info) = 0;
    virtual int SetScrollInfo(HWND window, int bar, const SCROLLINFO* info, BOOL redraw) = 0;
    virtual int ScrollWindowEx(HWND window, int dx, int dy, const RECT* scroll, const RECT* clip,
                               HRGN updateRegion, RECT* update, UINT flags) = 0;
    virtual void keybd_event(BYTE key, BYTE scanCode, DWORD flags, DWORD_PTR extra) = 0;
    virtual BOOL SHCreateMenuBar(SHMENUBARINFO* info) = 0;
    virtual HWND CreateDialogIndirectParamW(HINSTANCE instance, const DLGTEMPLATE* dialog,
                                            HWND parent, DLGPROC procedure, LPARAM parameter) = 0;
    virtual BOOL SHInitDialog(const SHINITDLGINFO* info) = 0;
    virtual DWORD_PTR SHGetFileInfo(const WCHAR* path, DWORD attributes, SHFILEINFO* info,
                                    UINT size, UINT flags) = 0;
};

// Makes `windows` the one that the program's operations go to, for as long as the object lives. The
// window system stays the caller's. One at a time.
class WindowsInUse {
  public:
    explicit WindowsInUse(WindowSystem& windows);
    ~WindowsInUse();
    WindowsInUse(const WindowsInUse&) = delete;
    WindowsInUse& operator=(const WindowsInUse&) = delete;
};

}  // namespace platform
