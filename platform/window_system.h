#pragma once

#include "core/window_system.h"

namespace platform {

// What stands behind the program's window operations: the functions of core/window_system.h, with
// their names and contracts.
class WindowSystem {
  public:
    WindowSystem() = default;
    virtual ~WindowSystem() = default;
    WindowSystem(const WindowSystem&) = delete;
    WindowSystem& operator=(const WindowSystem&) = delete;

    virtual int MessageBoxW(HWND owner, const WCHAR* text, const WCHAR* caption, UINT type) = 0;
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
