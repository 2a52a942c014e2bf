// Writes on standard output what boxes say, and where windows were when the program destroys them.
// The linker leads the program's calls here.

#include <cstdio>

#include "core/window_operations.h"
#include "platform/text/readable_text.h"

extern "C" {

BOOL __real__Z13DestroyWindowPv(HWND window);
int __real__Z11MessageBoxWPvPKDsS1_j(HWND owner, const WCHAR* text, const WCHAR* caption,
                                     UINT type);

BOOL __wrap__Z13DestroyWindowPv(HWND window) {
    RECT place{};
    if (GetWindowRect(window, &place) != 0) {
        std::printf("%d %d %d %d\n", place.left, place.top, place.right, place.bottom);
    }
    return __real__Z13DestroyWindowPv(window);
}

int __wrap__Z11MessageBoxWPvPKDsS1_j(HWND owner, const WCHAR* text, const WCHAR* caption,
                                     UINT type) {
    std::printf("[%s] %s\n", platform::ReadableText(caption).c_str(),
                platform::ReadableText(text).c_str());
    return __real__Z11MessageBoxWPvPKDsS1_j(owner, text, caption, type);
}
}
