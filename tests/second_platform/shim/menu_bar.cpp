// The menu bar: a window at the bottom of the screen that has the program's menu.

#include "core/handheld_operations.h"
#include "shell/resources.h"

namespace {

// The menu's commands go to the window that the bar belongs to.
LRESULT CALLBACK BarProcedure(HWND bar, UINT message, WPARAM wParam, LPARAM lParam) {
    return message == WM_COMMAND ? SendMessageW(GetParent(bar), message, wParam, lParam)
                                 : DefWindowProcW(bar, message, wParam, lParam);
}

HMENU MenuFrom(const MenuResource& resource) {
    const HMENU bar = CreateMenu();
    for (const MenuPopup& popup : resource.popups) {
        const HMENU entries = CreatePopupMenu();
        for (const MenuItem& item : popup.items) {
            AppendMenuW(entries, MF_STRING, item.command, item.text);
        }
        AppendMenuW(bar, MF_POPUP, reinterpret_cast<UINT_PTR>(entries), popup.text);
    }
    return bar;
}

}  // namespace

BOOL handheld::SHCreateMenuBar(SHMENUBARINFO* info) {
    const MenuResource* const resource = FindMenuResource(info->nToolBarId);
    if (resource == nullptr || !IsWindow(info->hwndParent)) {
        return FALSE;
    }
    WNDCLASSW barClass{};
    barClass.lpfnWndProc = BarProcedure;
    barClass.lpszClassName = L"MenuBar";
    (RegisterClassW)(&barClass);
    info->hwndMB = (CreateWindowExW)(0, L"MenuBar", L"", WS_POPUP | WS_VISIBLE, 0,
                                     kScreenHeight - kBarHeight, kScreenWidth, kBarHeight,
                                     info->hwndParent, MenuFrom(*resource), nullptr, nullptr);
    return info->hwndMB != nullptr;
}
