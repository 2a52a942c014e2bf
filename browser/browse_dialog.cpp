#include "browser/browse_dialog.h"

#include <cstdint>

#include "browser/folder_tree.h"
#include "core/application.h"
#include "core/error_box.h"
#include "core/handheld_operations.h"
#include "shell/window_creation.h"

namespace {

constexpr WORD kOk = 60001;
constexpr WORD kCancel = 60002;
constexpr LRESULT kHandled = 1;

// The template of a dialog without controls, menu, class and title.
struct DialogTemplate {
    DLGTEMPLATE head;
    std::uint16_t menuClassAndTitle[3];
};
constexpr DialogTemplate kTemplate = {
    {WS_CAPTION | WS_SYSMENU | DS_SETFOREGROUND, 0, 0, 0, 0, 200, 300}, {}};

HWND g_Dialog = nullptr;  // null while none is open
HWND g_TreeView = nullptr;
HWND g_OkButton = nullptr;
HWND g_CancelButton = nullptr;
HWND g_TargetBox = nullptr;

void SizeToScreen(HWND dialog) {
    SHINITDLGINFO info{};
    info.dwMask = SHIDIM_FLAGS;
    info.hDlg = dialog;
    info.dwFlags = SHIDIF_DONEBUTTON | SHIDIF_SIZEDLG;
    SHInitDialog(&info);
}

HWND CreateControl(const WCHAR* className, const WCHAR* text, DWORD style, const RECT& place,
                   DWORD_PTR id) {
    const HWND control =
        CreateWindowExW(0, className, text, style, place.left, place.top, place.right - place.left,
                        place.bottom - place.top, g_Dialog,
                        reinterpret_cast<HMENU>(id),  // NOLINT(performance-no-int-to-ptr)
                        g_Instance, nullptr);
    return control;
}

HWND CreateButton(const WCHAR* text, LONG left, LONG top, WORD id) {
    const HWND button =
        CreateControl(TEXT("BUTTON"), text, WS_VISIBLE, {left, top, left + 60, top + 20}, id);
    PaintAndShow(button);
    return button;
}

void CreateControls() {
    RECT client{};
    GetClientRect(g_Dialog, &client);
    const LONG width = client.right - client.left;
    const LONG height = client.bottom - client.top;
    g_TreeView =
        CreateControl(TEXT("SysTreeView32"), TEXT(""), WS_BORDER | TVS_HASBUTTONS | TVS_HASLINES,
                      {10, 10, width - 10, height - 30}, 0);
    if (g_TreeView == nullptr) {
        ShowError(TEXT("Failed Creating Tree View Control"));
    }
    PaintAndShow(g_TreeView);
    g_OkButton = CreateButton(TEXT("OK"), width / 2 - 70, client.bottom - 25, kOk);
    g_CancelButton = CreateButton(TEXT("Cancel"), width / 2 + 10, client.bottom - 25, kCancel);
}

void UseSelectedPath() {
    if (const auto path = GetItemPath(SelectedItem(), false)) {
        SetWindowTextW(g_TargetBox, path->data());
    }
}

void HandleTreeNotification(LPARAM lParam) {
    auto* const header = reinterpret_cast<NMHDR*>(lParam);  // NOLINT(performance-no-int-to-ptr)
    if (header != nullptr && header->code == TVN_GETDISPINFO) {
        AnswerItemQuery(*reinterpret_cast<NMTVDISPINFO*>(header));
    }
}

}  // namespace

void CBrowseDialog::OpenBrowseDialog(HWND parent, HWND pathBox) {
    CloseBrowseDialog();
    pathBox_ = pathBox;
    g_TargetBox = pathBox;
    dialog_ = CreateDialogIndirectParamW(g_Instance, &kTemplate.head, parent, BrowseDialogProc, 0);
    g_Dialog = dialog_;
    if (dialog_ == nullptr) {
        ShowError(TEXT("Failed Creating Tree View Dialog"));
        return;
    }
    SetWindowTextW(dialog_, TEXT("TreeView"));
    PaintAndShow(dialog_);
    SizeToScreen(dialog_);
    CreateControls();
    FillFolderTree(g_TreeView);
}

void CloseBrowseDialog() {
    if (g_Dialog == nullptr) {
        return;
    }
    for (const HWND window : {g_TreeView, g_OkButton, g_CancelButton, g_Dialog}) {
        DestroyWindow(window);
    }
    g_Dialog = nullptr;
}

LRESULT BrowseDialogProc(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam) {
    switch (message) {
        case WM_INITDIALOG:
            return kHandled;
        case WM_NOTIFY:
            HandleTreeNotification(lParam);
            return kHandled;
        case WM_COMMAND:
            if (wParam == kOk) {
                UseSelectedPath();
            }
            if (wParam == kOk || wParam == kCancel) {
                CloseBrowseDialog();
            }
            return kHandled;
        default:
            return DefWindowProcW(dialog, message, wParam, lParam);
    }
}
