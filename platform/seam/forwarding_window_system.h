#pragma once

#include "platform/seam/window_system.h"

namespace platform {

// A window system that hands every operation on to another one, for wrappers that change one
// thing: an operation, or where the next one goes.
class ForwardingWindowSystem : public WindowSystem {
  public:
    // `inner` stays the caller's and must outlive this one.
    explicit ForwardingWindowSystem(WindowSystem& inner) : inner_(inner) {}

    WORD RegisterClassW(const WNDCLASS* windowClass) override {
        return inner().RegisterClassW(windowClass);
    }
    BOOL UnregisterClassW(const WCHAR* className, HINSTANCE instance) override {
        return inner().UnregisterClassW(className, instance);
    }
    HWND CreateWindowExW(DWORD extendedStyle, const WCHAR* className, const WCHAR* text,
                         DWORD style, int x, int y, int width, int height, HWND parent, HMENU menu,
                         HINSTANCE instance, void* parameter) override {
        return inner().CreateWindowExW(extendedStyle, className, text, style, x, y, width, height,
                                       parent, menu, instance, parameter);
    }
    BOOL DestroyWindow(HWND window) override { return inner().DestroyWindow(window); }
    BOOL ShowWindow(HWND window, int command) override {
        return inner().ShowWindow(window, command);
    }
    BOOL UpdateWindow(HWND window) override { return inner().UpdateWindow(window); }
    BOOL GetClientRect(HWND window, RECT* rectangle) override {
        return inner().GetClientRect(window, rectangle);
    }
    BOOL GetWindowRect(HWND window, RECT* rectangle) override {
        return inner().GetWindowRect(window, rectangle);
    }
    BOOL MoveWindow(HWND window, int x, int y, int width, int height, BOOL repaint) override {
        return inner().MoveWindow(window, x, y, width, height, repaint);
    }
    HWND SetFocus(HWND window) override { return inner().SetFocus(window); }
    BOOL SetWindowTextW(HWND window, const WCHAR* text) override {
        return inner().SetWindowTextW(window, text);
    }
    BOOL GetMessageW(MSG* message, HWND window, UINT lowest, UINT highest) override {
        return inner().GetMessageW(message, window, lowest, highest);
    }
    BOOL TranslateMessage(const MSG* message) override { return inner().TranslateMessage(message); }
    LRESULT DispatchMessageW(const MSG* message) override {
        return inner().DispatchMessageW(message);
    }
    LRESULT DefWindowProcW(HWND window, UINT message, WPARAM wParam, LPARAM lParam) override {
        return inner().DefWindowProcW(window, message, wParam, lParam);
    }
    LRESULT SendMessageW(HWND window, UINT message, WPARAM wParam, LPARAM lParam) override {
        return inner().SendMessageW(window, message, wParam, lParam);
    }
    LRESULT SendDlgItemMessageW(HWND parent, int id, UINT message, WPARAM wParam,
                                LPARAM lParam) override {
        return inner().SendDlgItemMessageW(parent, id, message, wParam, lParam);
    }
    int MessageBoxW(HWND owner, const WCHAR* text, const WCHAR* caption, UINT type) override {
        return inner().MessageBoxW(owner, text, caption, type);
    }
    BOOL GetScrollInfo(HWND window, int bar, SCROLLINFO* info) override {
        return inner().GetScrollInfo(window, bar, info);
    }
    int SetScrollInfo(HWND window, int bar, const SCROLLINFO* info, BOOL redraw) override {
        return inner().SetScrollInfo(window, bar, info, redraw);
    }
    int ScrollWindowEx(HWND window, int dx, int dy, const RECT* scroll, const RECT* clip,
                       HRGN updateRegion, RECT* update, UINT flags) override {
        return inner().ScrollWindowEx(window, dx, dy, scroll, clip, updateRegion, update, flags);
    }
    void keybd_event(BYTE key, BYTE scanCode, DWORD flags, DWORD_PTR extra) override {
        inner().keybd_event(key, scanCode, flags, extra);
    }
    BOOL SHCreateMenuBar(SHMENUBARINFO* info) override { return inner().SHCreateMenuBar(info); }
    HWND CreateDialogIndirectParamW(HINSTANCE instance, const DLGTEMPLATE* dialog, HWND parent,
                                    DLGPROC procedure, LPARAM parameter) override {
        return inner().CreateDialogIndirectParamW(instance, dialog, parent, procedure, parameter);
    }
    BOOL SHInitDialog(const SHINITDLGINFO* info) override { return inner().SHInitDialog(info); }
    DWORD_PTR SHGetFileInfo(const WCHAR* path, DWORD attributes, SHFILEINFO* info, UINT size,
                            UINT flags) override {
        return inner().SHGetFileInfo(path, attributes, info, size, flags);
    }

  protected:
    // The one that gets the next operation; asked once for each.
    virtual WindowSystem& inner() { return inner_; }

  private:
    WindowSystem& inner_;
};

}  // namespace platform
