#pragma once

#include "platform/seam/window_system.h"

namespace platform {

// A window system without a single window: every operation fails. A box is the derived class's to
// show.
class RefusingWindowSystem : public WindowSystem {
  public:
    WORD RegisterClassW(const WNDCLASS* /*windowClass*/) override { return 0; }
    BOOL UnregisterClassW(const WCHAR* /*className*/, HINSTANCE /*instance*/) override { return 0; }
    HWND CreateWindowExW(DWORD /*extendedStyle*/, const WCHAR* /*className*/, const WCHAR* /*text*/,
                         DWORD /*style*/, int /*x*/, int /*y*/, int /*width*/, int /*height*/,
                         HWND /*parent*/, HMENU /*menu*/, HINSTANCE /*instance*/,
                         void* /*parameter*/) override {
        return nullptr;
    }
    BOOL DestroyWindow(HWND /*window*/) override { return 0; }
    BOOL ShowWindow(HWND /*window*/, int /*command*/) override { return 0; }
    BOOL UpdateWindow(HWND /*window*/) override { return 0; }
    BOOL GetClientRect(HWND /*window*/, RECT* /*rectangle*/) override { return 0; }
    BOOL GetWindowRect(HWND /*window*/, RECT* /*rectangle*/) override { return 0; }
    BOOL MoveWindow(HWND /*window*/, int /*x*/, int /*y*/, int /*width*/, int /*height*/,
                    BOOL /*repaint*/) override {
        return 0;
    }
    HWND SetFocus(HWND /*window*/) override { return nullptr; }
    BOOL SetWindowTextW(HWND /*window*/, const WCHAR* /*text*/) override { return 0; }
    BOOL GetMessageW(MSG* /*message*/, HWND /*window*/, UINT /*lowest*/,
                     UINT /*highest*/) override {
        return 0;
    }
    BOOL TranslateMessage(const MSG* /*message*/) override { return 0; }
    LRESULT DispatchMessageW(const MSG* /*message*/) override { return 0; }
    LRESULT DefWindowProcW(HWND /*window*/, UINT /*message*/, WPARAM /*wParam*/,
                           LPARAM /*lParam*/) override {
        return 0;
    }
    LRESULT SendMessageW(HWND /*window*/, UINT /*message*/, WPARAM /*wParam*/,
                         LPARAM /*lParam*/) override {
        return 0;
    }
    LRESULT SendDlgItemMessageW(HWND /*parent*/, int /*id*/, UINT /*message*/, WPARAM /*wParam*/,
                                LPARAM /*lParam*/) override {
        return 0;
    }
    BOOL GetScrollInfo(HWND /*window*/, int /*bar*/, SCROLLINFO* /*info*/) override { return 0; }
    int SetScrollInfo(HWND /*window*/, int /*bar*/, const SCROLLINFO* /*info*/,
                      BOOL /*redraw*/) override {
        return 0;
    }
    int ScrollWindowEx(HWND /*window*/, int /*dx*/, int /*dy*/, const RECT* /*scroll*/,
                       const RECT* /*clip*/, HRGN /*updateRegion*/, RECT* /*update*/,
                       UINT /*flags*/) override {
        return 0;
    }
    void keybd_event(BYTE /*key*/, BYTE /*scanCode*/, DWORD /*flags*/,
                     DWORD_PTR /*extra*/) override {}
    BOOL SHCreateMenuBar(SHMENUBARINFO* /*info*/) override { return 0; }
    HWND CreateDialogIndirectParamW(HINSTANCE /*instance*/, const DLGTEMPLATE* /*dialog*/,
                                    HWND /*parent*/, DLGPROC /*procedure*/,
                                    LPARAM /*parameter*/) override {
        return nullptr;
    }
    BOOL SHInitDialog(const SHINITDLGINFO* /*info*/) override { return 0; }
    DWORD_PTR SHGetFileInfo(const WCHAR* /*path*/, DWORD /*attributes*/, SHFILEINFO* /*info*/,
                            UINT /*size*/, UINT /*flags*/) override {
        return 0;
    }
};

}  // namespace platform
