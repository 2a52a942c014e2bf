#include "screens/control_dispatch.h"

#include <algorithm>
#include <array>
#include <iterator>

#include "browser/browse_dialog.h"
#include "core/application.h"
#include "core/error_box.h"
#include "core/window_operations.h"
#include "screens/screens.h"
#include "search/tree_search.h"
#include "shell/main_windows.h"

namespace {

constexpr UINT kFirstId = 50001;
constexpr UINT kLastId = 50052;
constexpr const WCHAR* kRoot = TEXT("\\");
constexpr LRESULT kTicked = 1;

struct ControlRow {
    UINT id;
    UINT screen;
    UINT item;  // of the control that the action is for
    void (*act)(HWND control);
};

struct SearchedExtension {
    int id;  // of the check box
    const WCHAR* extension;
};

constexpr SearchedExtension kExtensions[] = {
    {50015, TEXT("TMP")},
    {50016, TEXT("LOG")},
    {50017, TEXT("BAK")},
};
constexpr int kCustomExtension = 50018;
constexpr UINT kExtensionBoxItem = 18;  // the extension box of the first page

bool IsTicked(int id) {
    return SendDlgItemMessageW(g_DisplayWindow->Window(), id, BM_GETCHECK, 0, 0) == kTicked;
}

void Browse(HWND pathBox) {
    CBrowseDialog().OpenBrowseDialog(nullptr, pathBox);
}

void RefreshDirectories(HWND list) {
    SendMessageW(list, LB_RESETCONTENT, 0, 0);
    SearchTempDirectories(list, kRoot);
}

void SearchCustomExtension(HWND list) {
    // Only three characters of an extension count.
    std::array<WCHAR, 4> extension{};
    SendMessageW(g_Screens->GetScreenItems(0).ItemAt(kExtensionBoxItem), WM_GETTEXT,
                 extension.size(), reinterpret_cast<LPARAM>(extension.data()));
    SearchFiles(list, extension.data(), kRoot);
}

void RefreshFiles(HWND list) {
    SendMessageW(list, LB_RESETCONTENT, 0, 0);
    for (const SearchedExtension& searched : kExtensions) {
        if (IsTicked(searched.id)) {
            SearchFiles(list, searched.extension, kRoot);
        }
    }
    if (IsTicked(kCustomExtension)) {
        SearchCustomExtension(list);
    }
}

constexpr ControlRow kRows[] = {
    {50003, 0, 1, Browse},        {50006, 0, 4, Browse}, {50011, 0, 11, RefreshDirectories},
    {50014, 0, 19, RefreshFiles}, {50025, 1, 3, Browse}, {50034, 1, 12, Browse},
    {50038, 3, 1, Browse},        {50041, 3, 4, Browse}, {50044, 3, 7, Browse},
};

}  // namespace

void DispatchControl(UINT id) {
    if (id < kFirstId || id > kLastId) {
        ShowError(TEXT("CScreens::ControlCallback() Unknown control ID"));
        return;
    }
    const auto* const row = std::ranges::find(kRows, id, &ControlRow::id);
    if (row != std::end(kRows)) {
        row->act(g_Screens->GetScreenItems(row->screen).ItemAt(row->item));
    }
}
