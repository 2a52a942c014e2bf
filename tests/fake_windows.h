#pragma once

#include <deque>
#include <functional>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "platform/no_windows.h"

// What the fake keeps of one window. Its bounds count from its parent's client area.
struct FakeWindow {
    std::u16string className;
    std::u16string text;
    DWORD style = 0;
    DWORD extendedStyle = 0;
    RECT bounds{};
    HWND parent = nullptr;
    DWORD_PTR id = 0;
    WNDPROC procedure = nullptr;  // null: a control
    bool visible = false;
    LRESULT check = 0;
    int position = -1;                    // of combo box, slider or tab control
    int highest = 100;                    // position of a slider
    std::vector<std::u16string> entries;  // of combo box or tab control
    SCROLLINFO scroll{kScrollInfoSize, SIF_ALL, 0, 100, 0, 0, 0};
};

// A window system in memory that keeps what was done with it. Nobody sees it: what a user would do
// is done by the steps below.
class FakeWindows : public platform::NoWindows {
  public:
    static constexpr LRESULT kDefaultResult = 77;  // what DefWindowProcW returns

    std::vector<std::string> calls;  // what changes a window, such as "ShowWindow BUTTON 50001 0"
    std::vector<std::string> boxes;  // "[caption] text"
    std::set<std::string> failing;   // calls, spelt as above, that come back with failure
    int strayHandles = 0;            // uses of a handle that is neither null nor a living window's
    std::map<HWND, FakeWindow> windows;

    // Each is carried out when the program waits for a message and none is queued. Behind the last
    // one the OK on the main window's caption is pressed.
    std::deque<std::function<void()>> steps;

    void Post(HWND window, UINT message, WPARAM wParam, LPARAM lParam = 0);

    // The only window of this class; null when there is none.
    HWND Find(const std::u16string& className) const;
    FakeWindow& At(HWND window) { return windows.at(window); }

    WORD RegisterClassW(const WNDCLASS* windowClass) override;
    BOOL UnregisterClassW(const WCHAR* className, HINSTANCE instance) override;
    HWND CreateWindowExW(DWORD extendedStyle, const WCHAR* className, const WCHAR* text,
                         DWORD style, int x, int y, int width, int height, HWND parent, HMENU menu,
                         HINSTANCE instance, void* parameter) override;
    BOOL DestroyWindow(HWND window) override;
    BOOL ShowWindow(HWND window, int command) override;
    BOOL UpdateWindow(HWND window) override;
    BOOL GetClientRect(HWND window, RECT* rectangle) override;
    BOOL GetWindowRect(HWND window, RECT* rectangle) override;
    BOOL MoveWindow(HWND window, int x, int y, int width, int height, BOOL repaint) override;
    BOOL SetWindowTextW(HWND window, const WCHAR* text) override;
    BOOL GetMessageW(MSG* message, HWND window, UINT lowest, UINT highest) override;
    LRESULT DispatchMessageW(const MSG* message) override;
    LRESULT DefWindowProcW(HWND window, UINT message, WPARAM wParam, LPARAM lParam) override;
    LRESULT SendMessageW(HWND window, UINT message, WPARAM wParam, LPARAM lParam) override;
    LRESULT SendDlgItemMessageW(HWND parent, int id, UINT message, WPARAM wParam,
                                LPARAM lParam) override;
    int MessageBoxW(HWND owner, const WCHAR* text, const WCHAR* caption, UINT type) override;
    BOOL GetScrollInfo(HWND window, int bar, SCROLLINFO* info) override;
    int SetScrollInfo(HWND window, int bar, const SCROLLINFO* info, BOOL redraw) override;
    int ScrollWindowEx(HWND window, int dx, int dy, const RECT* scroll, const RECT* clip,
                       HRGN updateRegion, RECT* update, UINT flags) override;
    BOOL SHCreateMenuBar(SHMENUBARINFO* info) override;

  private:
    // Keeps the call and returns whether it is to succeed.
    bool Goes(const std::string& call);
    // The same for a call that does something to a window.
    bool Goes(const std::string& operation, HWND window, const std::string& rest = "");
    FakeWindow* Living(HWND window);
    HWND Add(FakeWindow window);
    LRESULT Answer(HWND handle, FakeWindow& control, UINT message, WPARAM wParam, LPARAM lParam);

    std::map<std::u16string, WNDPROC> classes_;
    std::deque<MSG> queue_;
    DWORD_PTR lastHandle_ = 0x1000;
};
