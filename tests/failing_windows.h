#pragma once

#include "platform/forwarding_windows.h"

// Lets the n-th call of all come back with failure, without having done anything; all others go
// on.
class FailingWindows : public platform::ForwardingWindows {
  public:
    // `failing` counts from 1; 0 lets every call through. `result` is that of a message that fails.
    FailingWindows(platform::WindowSystem& inner, int failing, LRESULT result)
        : ForwardingWindows(inner), failing_(failing), result_(result) {}

    int calls() const { return calls_; }

    WORD RegisterClassW(const WNDCLASS* windowClass) override {
        return Fails() ? 0 : inner().RegisterClassW(windowClass);
    }
    BOOL UnregisterClassW(const WCHAR* className, HINSTANCE instance) override {
        return Fails() ? 0 : inner().UnregisterClassW(className, instance);
    }
    HWND CreateWindowExW(DWORD extendedStyle, const WCHAR* className, const WCHAR* text,
                         DWORD style, int x, int y, int width, int height, HWND parent, HMENU menu,
                         HINSTANCE instance, void* parameter) override {
        return Fails() ? nullptr
                       : inner().CreateWindowExW(extendedStyle, className, text, style, x, y, width,
                                                 height, parent, menu, instance, parameter);
    }
    BOOL DestroyWindow(HWND window) override { return Fails() ? 0 : inner().DestroyWindow(window); }
    BOOL ShowWindow(HWND window, int command) override {
        return Fails() ? 0 : inner().ShowWindow(window, command);
    }
    BOOL UpdateWindow(HWND window) override { return Fails() ? 0 : inner().UpdateWindow(window); }
    BOOL GetClientRect(HWND window, RECT* rectangle) override {
        return Fails() ? 0 : inner().GetClientRect(window, rectangle);
    }
    BOOL GetWindowRect(HWND window, RECT* rectangle) override {
        return Fails() ? 0 : inner().GetWindowRect(window, rectangle);
    }
    BOOL MoveWindow(HWND window, int x, int y, int width, int height, BOOL repaint) override {
        return Fails() ? 0 : inner().MoveWindow(window, x, y, width, height, repaint);
    }
    HWND SetFocus(HWND window) override { return Fails() ? nullptr : inner().SetFocus(window); }
    BOOL SetWindowTextW(HWND window, const WCHAR* text) override {
        return Fails() ? 0 : inner().SetWindowTextW(window, text);
    }
    BOOL GetMessageW(MSG* message, HWND window, UINT lowest, UINT highest) override {
        return Fails() ? -1 : inner().GetMessageW(message, window, lowest, highest);
    }
    BOOL TranslateMessage(const MSG* message) override {
        return Fails() ? 0 : inner().TranslateMessage(message);
    }
    LRESULT DispatchMessageW(const MSG* message) override {
        return Fails() ? 0 : inner().DispatchMessageW(message);
    }
    LRESULT DefWindowProcW(HWND window, UINT message, WPARAM wParam, LPARAM lParam) override {
        return Fails() ? 0 : inner().DefWindowProcW(window, message, wParam, lParam);
    }
    LRESULT SendMessageW(HWND window, UINT message, WPARAM wParam, LPARAM lParam) override {
        return Fails() ? result_ : inner().SendMessageW(window, message, wParam, lParam);
    }
    LRESULT SendDlgItemMessageW(HWND parent, int id, UINT message, WPARAM wParam,
                                LPARAM lParam) override {
        return Fails() ? 0 : inner().SendDlgItemMessageW(parent, id, message, wParam, lParam);
    }
    int MessageBoxW(HWND owner, const WCHAR* text, const WCHAR* caption, UINT type) override {
        return Fails() ? 0 : inner().MessageBoxW(owner, text, caption, type);
    }
    BOOL GetScrollInfo(HWND window, int bar, SCROLLINFO* info) override {
        return Fails() ? 0 : inner().GetScrollInfo(window, bar, info);
    }
    int SetScrollInfo(HWND window, int bar, const SCROLLINFO* info, BOOL redraw) override {
        return Fails() ? 0 : inner().SetScrollInfo(window, bar, info, redraw);
    }
    int ScrollWindowEx(HWND window, int dx, int dy, const RECT* scroll, const RECT* clip,
                       HRGN updateRegion, RECT* update, UINT flags) override {
        return Fails() ? 0
                       : inner().ScrollWindowEx(window, dx, dy, scroll, clip, updateRegion, update,
                                                flags);
    }
    BOOL SHCreateMenuBar(SHMENUBARINFO* info) override {
        return Fails() ? 0 : inner().SHCreateMenuBar(info);
    }
    HWND CreateDialogIndirectParamW(HINSTANCE instance, const DLGTEMPLATE* dialog, HWND parent,
                                    DLGPROC procedure, LPARAM parameter) override {
        return Fails() ? nullptr
                       : inner().CreateDialogIndirectParamW(instance, dialog, parent, procedure,
                                                            parameter);
    }
    BOOL SHInitDialog(const SHINITDLGINFO* info) override {
        return Fails() ? 0 : inner().SHInitDialog(info);
    }
    DWORD_PTR SHGetFileInfo(const WCHAR* path, DWORD attributes, SHFILEINFO* info, UINT size,
                            UINT flags) override {
        return Fails() ? 0 : inner().SHGetFileInfo(path, attributes, info, size, flags);
    }

  private:
    bool Fails() { return ++calls_ == failing_; }

    int failing_;
    LRESULT result_;
    int calls_ = 0;
};
