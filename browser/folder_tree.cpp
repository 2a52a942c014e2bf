#include "browser/folder_tree.h"

#include "core/error_box.h"
#include "core/found_entries.h"
#include "core/handheld_operations.h"

namespace {

constexpr const WCHAR* kRoot = TEXT("\\");
constexpr LPARAM kChildrenUnknown = -1;  // its own folders are not added yet
constexpr UINT kItemFields =
    TVIF_TEXT | TVIF_IMAGE | TVIF_PARAM | TVIF_SELECTEDIMAGE | TVIF_CHILDREN;

HWND g_TreeView = nullptr;

HTREEITEM Item(LRESULT value) {
    return reinterpret_cast<HTREEITEM>(value);  // NOLINT(performance-no-int-to-ptr)
}

// Puts the index of the icon for `path` into `icon`. Returns the system's list of small icons; 0 on
// failure.
DWORD_PTR FindIcon(const WCHAR* path, int& icon) {
    SHFILEINFO info{};
    const DWORD_PTR list =
        SHGetFileInfo(path, 0, &info, kFileInfoSize, SHGFI_SYSICONINDEX | SHGFI_SMALLICON);
    icon = info.iIcon;
    return list;
}

HTREEITEM InsertItem(HTREEITEM parent, const WCHAR* text, int icon, int children) {
    TVINSERTSTRUCT insertion{};
    insertion.hParent = parent;
    insertion.hInsertAfter = TVI_SORT;
    insertion.item.mask = kItemFields;
    insertion.item.pszText = const_cast<WCHAR*>(text);  // the platform reads it only
    insertion.item.iImage = icon;
    insertion.item.iSelectedImage = icon;
    insertion.item.cChildren = children;
    insertion.item.lParam = kChildrenUnknown;
    const HTREEITEM item =
        Item(SendMessageW(g_TreeView, TVM_INSERTITEM, 0, reinterpret_cast<LPARAM>(&insertion)));
    if (item == nullptr) {
        ShowError(TEXT("Failed adding Tree View item"));
    }
    return item;
}

bool ReadText(HTREEITEM item, PathText& text) {
    TVITEM asked{};
    asked.mask = TVIF_TEXT;
    asked.hItem = item;
    asked.pszText = text.data();
    asked.cchTextMax = static_cast<int>(text.size());
    return SendMessageW(g_TreeView, TVM_GETITEM, 0, reinterpret_cast<LPARAM>(&asked)) != 0;
}

// Puts an item's name before the path of what is below it. Returns whether that fitted.
bool PutInFront(const PathText& name, PathText& path) {
    const auto below = std::make_unique<PathText>(path);
    return WideView(name.data()) == kRoot ||
           FormatText(path, TEXT("%s\\%s"), {name.data(), below->data()});
}

}  // namespace

void FillFolderTree(HWND treeView) {
    g_TreeView = treeView;
    int icon = 0;
    const DWORD_PTR icons = FindIcon(kRoot, icon);
    if (icons == 0) {
        ShowError(TEXT("Failed Retrieving System Icon List"));
    }
    SendMessageW(g_TreeView, TVM_SETIMAGELIST, TVSIL_NORMAL, static_cast<LPARAM>(icons));
    const HTREEITEM root = InsertItem(TVI_ROOT, kRoot, icon, 1);
    AddFolderItems(TEXT("\\*"), root);
    SendMessageW(g_TreeView, TVM_EXPAND, TVE_EXPAND, reinterpret_cast<LPARAM>(root));
}

int AddFolderItems(const WCHAR* pattern, HTREEITEM parentItem) {
    int count = 0;
    for (FoundEntries found(pattern); found; found.Next()) {
        if (!found.isDirectory() || found.isHidden()) {
            continue;
        }
        int icon = 0;
        FindIcon(pattern, icon);
        InsertItem(parentItem, found.name(), icon, I_CHILDRENCALLBACK);
        ++count;
    }
    return count;
}

std::unique_ptr<PathText> GetItemPath(HTREEITEM item, bool withStar) {
    auto path = std::make_unique<PathText>();
    if (item == nullptr) {
        return path;
    }
    const auto name = std::make_unique<PathText>();
    bool fits = true;
    for (; fits && item != nullptr && ReadText(item, *name);
         item = Item(SendMessageW(g_TreeView, TVM_GETNEXTITEM, TVGN_PARENT,
                                  reinterpret_cast<LPARAM>(item)))) {
        fits = PutInFront(*name, *path);
    }
    *name = *path;
    fits = fits && FormatText(*path, withStar ? TEXT("\\%s*") : TEXT("\\%s"), {name->data()});
    return fits ? std::move(path) : nullptr;
}

void AnswerItemQuery(NMTVDISPINFO& question) {
    TVITEM& item = question.item;
    if ((item.mask & TVIF_CHILDREN) == 0) {
        return;
    }
    if (item.lParam != kChildrenUnknown) {
        item.cChildren = static_cast<int>(item.lParam);
        return;
    }
    const auto pattern = GetItemPath(item.hItem, true);
    item.cChildren = pattern != nullptr && AddFolderItems(pattern->data(), item.hItem) > 0 ? 1 : 0;
    item.lParam = item.cChildren;
    SendMessageW(g_TreeView, TVM_SETITEM, 0, reinterpret_cast<LPARAM>(&item));
}

HTREEITEM SelectedItem() {
    return Item(SendMessageW(g_TreeView, TVM_GETNEXTITEM, TVGN_CARET, 0));
}
