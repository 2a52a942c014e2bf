#include "shell/window_creation.h"

#include "core/application.h"
#include "core/handheld_operations.h"

void ReplaceClass(const WCHAR* name, WNDPROC procedure, DWORD color) {
    WNDCLASS windowClass{};
    windowClass.style = CS_HREDRAW | CS_VREDRAW;
    windowClass.lpfnWndProc = procedure;
    windowClass.hInstance = g_Instance;
    windowClass.hbrBackground = SystemColorBrush(color);
    windowClass.lpszClassName = name;
    UnregisterClassW(name, g_Instance);
    RegisterClassW(&windowClass);
}

HWND CreateTopLevel(const WCHAR* className, const WCHAR* title) {
    return CreateWindowExW(WS_EX_CAPTIONOKBTN, className, title, WS_VISIBLE, CW_USEDEFAULT,
                           CW_USEDEFAULT, CW_USEDEFAULT, CW_USEDEFAULT, nullptr, nullptr,
                           g_Instance, nullptr);
}

HWND CreateChild(const WCHAR* className, const WCHAR* text, DWORD style, const RECT& place,
                 HWND parent) {
    return CreateWindowExW(0, className, text, WS_CHILD | WS_VISIBLE | style, place.left, place.top,
                           place.right - place.left, place.bottom - place.top, parent, nullptr,
                           g_Instance, nullptr);
}

void PaintAndShow(HWND window) {
    UpdateWindow(window);
    ShowWindow(window, SW_SHOWNORMAL);
}
