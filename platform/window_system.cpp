#include "platform/window_system.h"

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

int MessageBoxW(HWND owner, const WCHAR* text, const WCHAR* caption, UINT type) {
    return g_windows->MessageBoxW(owner, text, caption, type);
}
