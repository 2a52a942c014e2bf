#pragma once

#include "platform/window_system.h"

namespace platform {

// A window system that hands every operation on to another one, for wrappers that change one
// thing.
class ForwardingWindows : public WindowSystem {
  public:
    // `inner` stays the caller's and must outlive this one.
    explicit ForwardingWindows(WindowSystem& inner) : inner_(inner) {}

    WORD RegisterClassW(const WNDCLASS* windowClass) override {
        return inner_.RegisterClassW(windowClass);
    }
    BOOL UnregisterClassW(const WCHAR* className, HINSTANCE instance) override {
        return inner_.UnregisterClassW(className, instance);
    }
    HWND CreateWindowExW(DWORD extendedStyle, const WCHAR* className, const WCHAR* text,
                         DWORD style, int x, int y, int width, int height, HWND parent, HMENU menu,
                         HINSTANCE instance, void* parameter) override {
        return inner_.CreateWindowExW(extendedStyle, className, text, style, x, y, width, height,
                                      parent, menu, instance, parameter);
    }
    BOOL DestroyWindow(HWND window) override { return inner_.DestroyWindow(window); }
    BOOL ShowWindow(HWND window, int command) override {
        return inner_.ShowWindow(window, command);
    }
    BOOL UpdateWindow(HWND window) override { return inner_.UpdateWindow(window); }
    BOOL GetClientRect(HWND window, RECT* rectangle) override {
        return inner_.GetClientRect(window, rectangle);
    }
    BOOL GetWindowRect(HWND window, RECT* rectangle) override {
        return inner_.GetWindowRect(window, rectangle);
    }
    BOOL MoveWindow(HWND window, int x, int y, int width, int height, BOOL repaint) override {
        return inner_.MoveWindow(window, x, y, width, height, repaint);
    }
    HWND SetFocus(HWND window) override { return inner_.SetFocus(window); }
    BOOL SetWindowTextW(HWND window, const WCHAR* text) override {
        return inner_.SetWindowTextW(window, text);
    }
    BOOL GetMessageW(MSG* message, HWND window, UINT lowest, UINT highest) override {
        return inner_.GetMessageW(message, window, lowest, highest);
    }
    BOOL TranslateMessage(const MSG* message) override { return inner_.TranslateMessage(message); }
    LRESULT DispatchMessageW(const MSG* message) override {
        return inner_.DispatchMessageW(message);
    }
    LRESULT DefWindowProcW(HWND window, UINT message, WPARAM wParam, LPARAM lParam) override {
        return inner_.DefWindowProcW(window, message, wParam, lParam);
    }
    LRESULT SendMessageW(HWND window, UINT message, WPARAM wParam, LPARAM lParam) override {
        return inner_.SendMessageW(window, message, wParam, lParam);
    }
    LRESULT SendDlgItemMessageW(HWND parent, int id, UINT message, WPARAM wParam,
                                LPARAM lParam) override {
        return inner_.SendDlgItemMessageW(parent, id, message, wParam, lParam);
    }
    int MessageBoxW(HWND owner, const WCHAR* text, const WCHAR* caption, UINT type) override {
        return inner_.MessageBoxW(owner, text, caption, type);
    }
    BOOL GetScrollInfo(HWND window, int bar, SCROLLINFO* info) override {
        return inner_.GetScrollInfo(window, bar, info);
    }
    int SetScrollInfo(HWND window, int bar, const SCROLLINFO* info, BOOL redraw) override {
        return inner_.SetScrollInfo(window, bar, info, redraw);
    }
    int ScrollWindowEx(HWND window, int dx, int dy, const RECT* scroll, const RECT* clip,
                       HRGN updateRegion, RECT* update, UINT flags) override {
        return inner_.ScrollWindowEx(window, dx, dy, scroll, clip, updateRegion, update, flags);
    }
    BOOL SHCreateMenuBar(SHMENUBARINFO* info) override { return inner_.SHCreateMenuBar(info); }
    HWND CreateDialogIndirectParamW(HINSTANCE instance, const DLGTEMPLATE* dialog, HWND parent,
                                    DLGPROC procedure, LPARAM parameter) override {
        return inner_.CreateDialogIndirectParamW(instance, dialog, parent, procedure, parameter);
    }
    BOOL SHInitDialog(const SHINITDLGINFO* info) override { return inner_.SHInitDialog(info); }
    DWORD_PTR SHGetFileInfo(const WCHAR* path, DWORD attributes, SHFILEINFO* info, UINT size,
                            UINT flags) override {
        return inner_.SHGetFileInfo(path, attributes, info, size, flags);
    }

  protected:
    WindowSystem& inner() { return inner_; }

  private:
    WindowSystem& inner_;
};

}  // namespace platform
