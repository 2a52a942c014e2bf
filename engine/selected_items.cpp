#include "engine/selected_items.h"

#include <algorithm>
#include <array>
#include <span>

#include "core/application.h"
#include "core/found_entries.h"
#include "core/window_operations.h"
#include "engine/file_tree.h"
#include "screens/screens.h"

namespace {

constexpr std::size_t kMostSelected = 1024;
constexpr LRESULT kTicked = 1;

// A control's page and its index in the page's list.
struct Item {
    UINT screen;
    UINT item;
};

constexpr Item kDirectoryList = {0, 11};
constexpr Item kFileList = {0, 19};
constexpr Item kRemoveShortcuts = {4, 1};
constexpr Item kShortcutList = {4, 2};

HWND ControlAt(const Item& place) {
    return g_Screens->GetScreenItems(place.screen).ItemAt(place.item);
}

// Puts the text of an entry into `text`. Returns false if it does not fit: a cut path names another
// entry.
bool ReadEntry(HWND list, LONG index, PathText& text) {
    const auto entry = static_cast<WPARAM>(index);
    const LRESULT length = SendMessageW(list, LB_GETTEXTLEN, entry, 0);
    return length >= 0 && length < static_cast<LRESULT>(text.size()) &&
           SendMessageW(list, LB_GETTEXT, entry, reinterpret_cast<LPARAM>(text.data())) == length;
}

// Calls `carryOut` once for each selected entry, with its text in `text`.
template <typename CarryOut>
void ForEachSelected(const Item& place, PathText& text, CarryOut carryOut) {
    const HWND list = ControlAt(place);
    if (SendMessageW(list, LB_GETSELCOUNT, 0, 0) <= 0) {
        return;
    }
    std::array<LONG, kMostSelected> selected{};
    const LRESULT count = SendMessageW(list, LB_GETSELITEMS, selected.size(),
                                       reinterpret_cast<LPARAM>(selected.data()));
    const auto handled = static_cast<std::size_t>(std::max<LRESULT>(count, 0));
    for (const LONG index : std::span(selected).first(std::min(handled, selected.size()))) {
        if (ReadEntry(list, index, text)) {
            carryOut();
        }
        text.fill(0);
    }
}

// The size is read first: a deleted file has none.
void DeleteOneFile(const WCHAR* path) {
    const FoundEntries found(path);
    if (DeleteFileW(path) != 0) {
        BytesCleaned += found ? found.sizeLow() : 0;
    }
}

}  // namespace

void DeleteSelectedDirectories(ApplyRun& run, std::uint32_t /*option*/) {
    ForEachSelected(kDirectoryList, run.PathBuffer,
                    [&run] { DeleteTree(run.PathBuffer.data(), true, false); });
}

void DeleteSelectedFiles(ApplyRun& run, std::uint32_t /*option*/) {
    ForEachSelected(kFileList, run.PathBuffer, [&run] { DeleteOneFile(run.PathBuffer.data()); });
}

void DeleteSelectedShortcuts(ApplyRun& run, std::uint32_t /*option*/) {
    if (SendMessageW(ControlAt(kRemoveShortcuts), BM_GETCHECK, 0, 0) != kTicked) {
        return;
    }
    ForEachSelected(kShortcutList, run.ValueBuffer, [&run] {
        if (FormatText(run.PathBuffer, TEXT("\\Windows\\StartUp\\%s"), {run.ValueBuffer.data()})) {
            DeleteOneFile(run.PathBuffer.data());
        }
    });
}
