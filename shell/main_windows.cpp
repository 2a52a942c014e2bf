#include "shell/main_windows.h"

#include "core/application.h"
#include "core/error_box.h"
#include "core/handheld_operations.h"
#include "shell/resources.h"
#include "shell/window_creation.h"
#include "shell/window_procedure.h"

namespace {

constexpr const WCHAR* kProgramTitle = TEXT("Marlowtide Fennelbright");
constexpr const WCHAR* kDisplayClass = TEXT("DisplayWindow");

struct Tab {
    const WCHAR* label;
    const WCHAR* failure;
};

// In the order of the screens.
constexpr Tab kTabs[] = {
    {TEXT("Clean Temp Files"), TEXT("Failed Creating Tab Clean Temp")},
    {TEXT("Pocket IE"), TEXT("Failed Creating Tab Pocket IE")},
    {TEXT("Registry"), TEXT("Failed Creating Tab Registry")},
    {TEXT("System Folders"), TEXT("Failed Creating Tab System Folders")},
    {TEXT("Shortcuts"), TEXT("Failed Creating Tab Shortcuts")},
    {TEXT("Performance"), TEXT("Failed Creating Tab Performance")},
};

void InsertTabs(HWND tabControl) {
    WPARAM index = 0;
    for (const Tab& tab : kTabs) {
        TCITEM item{};
        item.mask = TCIF_TEXT;
        item.pszText = const_cast<WCHAR*>(tab.label);  // the platform reads it only
        item.iImage = -1;
        if (SendMessageW(tabControl, TCM_INSERTITEM, index, reinterpret_cast<LPARAM>(&item)) ==
            -1) {
            ShowError(tab.failure);
        }
        ++index;
    }
}

}  // namespace

void CMainWindow::Create() {
    ReplaceClass(kProgramTitle, MainWindowProc);
    window_ = CreateTopLevel(kProgramTitle, kProgramTitle);
    g_MenuBar->Create();
    PaintAndShow(window_);
}

void CMainWindow::Destroy() {
    DestroyWindow(window_);
}

void CMenuBar::Create() {
    SHMENUBARINFO info{};
    info.cbSize = kMenuBarInfoSize;
    info.hwndParent = g_MainWindow->Window();
    info.dwFlags = SHCMBF_HMENU;
    info.nToolBarId = kMenuResource;
    info.hInstRes = g_Instance;
    if (!SHCreateMenuBar(&info)) {
        ShowError(TEXT("Failed Creating Menu Bar"));
        return;
    }
    window_ = info.hwndMB;
    FitWindow(g_MainWindow->Window());
}

void CMenuBar::FitWindow(HWND window) const {
    RECT bounds{};
    RECT bar{};
    if (!GetWindowRect(window, &bounds) || !GetWindowRect(window_, &bar)) {
        return;
    }
    const LONG bottom = bounds.bottom - (bar.bottom - bar.top);
    MoveWindow(window, bounds.left, bounds.top, bounds.right - bounds.left, bottom - bounds.top,
               FALSE);
}

void CMenuBar::Destroy() {
    window_ = nullptr;
}

void CTabBar::Create() {
    RECT client{};
    GetClientRect(g_MainWindow->Window(), &client);
    window_ = CreateChild(TEXT("SysTabControl32"), TEXT(""), WS_CLIPSIBLINGS | TCS_BOTTOM, client,
                          g_MainWindow->Window());
    if (window_ == nullptr) {
        ShowError(TEXT("Failed Creating Tab Control"));
    }
    PaintAndShow(window_);
    InsertTabs(window_);
}

void CTabBar::Destroy() {
    DestroyWindow(window_);
}

void CDisplayWindow::Create() {
    ReplaceClass(kDisplayClass, MainWindowProc);
    RECT area{};
    GetClientRect(g_TabBar->Window(), &area);
    SendMessageW(g_TabBar->Window(), TCM_ADJUSTRECT, 0, reinterpret_cast<LPARAM>(&area));
    window_ =
        CreateChild(kDisplayClass, TEXT("DisplayWindow"), WS_VSCROLL, area, g_TabBar->Window());
    if (window_ == nullptr) {
        ShowError(TEXT("Failed Creating Display Window"));
    }
    PaintAndShow(window_);
}

void CDisplayWindow::Destroy() {
    DestroyWindow(window_);
}
