#include "search/search_indicator.h"

#include <cstdint>

#include "core/application.h"
#include "core/window_operations.h"
#include "shell/main_windows.h"
#include "shell/window_creation.h"

namespace {

constexpr const WCHAR* kClass = TEXT("SEARCHING");

std::int32_t g_Searches = 0;  // in progress
HWND g_Indicator = nullptr;   // while there are any
HWND g_Label = nullptr;       // in it

void ShowIndicator() {
    ReplaceClass(kClass, DefWindowProcW, COLOR_BACKGROUND);
    g_Indicator =
        CreateWindowExW(0, kClass, TEXT("SEARCHING"), WS_POPUP | WS_CHILD | WS_VISIBLE, 77, 110, 94,
                        54, g_DisplayWindow->Window(), nullptr, g_Instance, nullptr);
    PaintAndShow(g_Indicator);
    g_Label = CreateChild(TEXT("STATIC"), TEXT("SEARCHING..."), 0, {2, 17, 92, 37}, g_Indicator);
    PaintAndShow(g_Label);
}

}  // namespace

void BeginSearch() {
    if (g_Searches == 0) {
        ShowIndicator();
    }
    ++g_Searches;
}

void EndSearch() {
    --g_Searches;
    if (g_Searches == 0) {
        DestroyWindow(g_Label);
        DestroyWindow(g_Indicator);
    }
}
