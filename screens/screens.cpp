#include "screens/screens.h"

#include "core/application.h"
#include "core/error_box.h"
#include "screens/control_catalogue.h"
#include "screens/control_dispatch.h"
#include "shell/main_windows.h"

namespace {

// The step of the scroll bar's page codes in pixels, the same as that of a line code.
constexpr UINT kPageStep = 3;

HWND CreateControl(const CatalogueControl& row) {
    const DWORD_PTR id = row.id;
    const HWND control =
        CreateWindowExW(0, row.kind.className, row.text, row.kind.style, row.x, row.y, row.width,
                        row.height, g_DisplayWindow->Window(),
                        reinterpret_cast<HMENU>(id),  // NOLINT(performance-no-int-to-ptr)
                        g_Instance, nullptr);
    if (row.prepare != nullptr) {
        row.prepare(control);
    }
    UpdateWindow(control);
    ShowWindow(control, SW_HIDE);
    return control;
}

}  // namespace

void CScreens::CreateScreens() {
    current_ = 0;
    Screen* screen = screens_.data();
    for (const CatalogueScreen& page : Catalogue()) {
        for (const CatalogueControl& row : page.controls) {
            screen->items.Append(CreateControl(row));
        }
        screen->height = page.height;
        ++screen;
    }
    SwitchScreenTo(0);
}

void CScreens::DestroyScreens() {
    for (Screen& screen : screens_) {
        for (const auto* node = screen.items.First(); node != nullptr; node = node->next) {
            DestroyWindow(node->value);
        }
        screen.items.Clear();
    }
}

UINT CScreens::ShowScreen(UINT screen, int command) const {
    if (screen >= kScreenCount) {
        ShowError(TEXT("CScreen::SwitchScreenTo() Unknown Screen"));
        return 0;
    }
    const CControlList& items = screens_[screen].items;
    for (const auto* node = items.First(); node != nullptr; node = node->next) {
        ShowWindow(node->value, command);
    }
    return screens_[screen].height;
}

int CScreens::SwitchScreenTo(UINT screen) {
    ShowScreen(current_, SW_HIDE);
    current_ = screen;
    const UINT height = ShowScreen(screen, SW_SHOWNORMAL);
    RECT client{};
    GetClientRect(g_DisplayWindow->Window(), &client);
    SCROLLINFO info{};
    info.cbSize = sizeof info;
    info.fMask = SIF_RANGE | SIF_PAGE | SIF_POS | SIF_DISABLENOSCROLL;
    info.nMax = static_cast<int>(height) - client.bottom;
    info.nPage = kPageStep;
    return SetScrollInfo(g_DisplayWindow->Window(), SB_VERT, &info, TRUE);
}

void CScreens::ControlCallback(UINT id) {
    DispatchControl(id);
}

CControlList CScreens::GetScreenItems(UINT screen) const {
    if (screen >= kScreenCount) {
        ShowError(TEXT("CScreen::GetScreenItems() Unknown Screen"));
        screen = 0;
    }
    return screens_[screen].items;
}
