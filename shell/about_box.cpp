#include "shell/about_box.h"

#include "core/application.h"
#include "core/error_box.h"
#include "shell/main_windows.h"
#include "shell/window_creation.h"
#include "shell/window_procedure.h"

HWND g_AboutWindow = nullptr;
CControlList g_AboutControls;

namespace {

constexpr const WCHAR* kAboutClass = TEXT("ABOUT_BOX");
constexpr const WCHAR* kAboutText = TEXT("Fennelbright V1.01\n")
    TEXT("\u00A9 2026 The Fennelbright authors\n") TEXT("www.marlowtide.example");
constexpr RECT kLabelPlace = {2, 2, 202, 52};

}  // namespace

void OpenAboutBox() {
    if (g_AboutWindow != nullptr) {
        return;
    }
    ReplaceClass(kAboutClass, MainWindowProc);
    g_AboutWindow = CreateTopLevel(kAboutClass, TEXT("About"));
    if (g_AboutWindow == nullptr) {
        ShowError(TEXT("Failed Creating About Window"));
    }
    g_MenuBar->FitWindow(g_AboutWindow);
    PaintAndShow(g_AboutWindow);
    const HWND label = CreateChild(TEXT("STATIC"), kAboutText, 0, kLabelPlace, g_AboutWindow);
    PaintAndShow(label);
    g_AboutControls.Append(label);
}

void CloseAboutBox() {
    if (g_AboutWindow == nullptr) {
        return;
    }
    for (const auto* control = g_AboutControls.First(); control != nullptr;
         control = control->next) {
        DestroyWindow(control->value);
    }
    g_AboutControls.Clear();
    DestroyWindow(g_AboutWindow);
    g_AboutWindow = nullptr;
}
