// The windows' part of the transcript.

#include <utility>
#include <vector>

#include "core/handheld_operations.h"
#include "core/window_operations.h"
#include "shell/resources.h"
#include "tests/second_platform/transcript.h"

namespace {

std::string g_notes;  // what the procedure has got since the last line

LRESULT Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    std::ostringstream note;
    if (message == WM_COMMAND || message == WM_VSCROLL || message == WM_INITDIALOG) {
        note << " message " << message << ' ' << HIWORD(wParam) << ':' << LOWORD(wParam);
    } else if (message == WM_NOTIFY) {
        auto* const question = reinterpret_cast<NMTVDISPINFO*>(lParam);
        const UINT code = question->hdr.code;
        if (code == TVN_GETDISPINFO) {
            note << " question " << wParam << " of " << question->item.lParam;
            question->item.cChildren = 1;
        } else if (code == TCN_SELCHANGE || code == TCN_SELCHANGING) {
            note << " notify " << code << ':' << wParam;
        }
    }
    g_notes += note.str();
    return DefWindowProcW(window, message, wParam, lParam);
}

template <typename... Parts>
void Line(const std::string& call, const Parts&... result) {
    Write(call, result..., std::exchange(g_notes, ""));
}

void WritePlace(const std::string& name, HWND window) {
    RECT at = {-1, -1, -1, -1};
    const BOOL result = GetWindowRect(window, &at);
    Line("place of " + name, result, ' ', at.left, ' ', at.top, ' ', at.right, ' ', at.bottom);
}

void WriteBounds(const std::string& name, HWND window) {
    WritePlace(name, window);
    RECT size = {-1, -1, -1, -1};
    const BOOL result = GetClientRect(window, &size);
    Line("client area of " + name, result, ' ', size.right, ' ', size.bottom);
}

HWND Create(const WCHAR* name, DWORD style, const RECT& place, HWND parent, DWORD_PTR id) {
    return CreateWindowExW(0, name, TEXT("text"), style, place.left, place.top, place.right,
                           place.bottom, parent, reinterpret_cast<HMENU>(id), nullptr, nullptr);
}

constexpr DWORD kListStyle = WS_BORDER | WS_VSCROLL | WS_HSCROLL | LBS_NOTIFY | LBS_SORT |
                             LBS_MULTIPLESEL | LBS_DISABLENOSCROLL;
constexpr DWORD kTreeStyle = WS_BORDER | TVS_HASBUTTONS | TVS_HASLINES;

const struct {
    const char* label;
    const WCHAR* name;
    DWORD style;
    int height;
} kClasses[] = {{"push button", TEXT("BUTTON"), BS_PUSHBUTTON, 18},
                {"check box", TEXT("BUTTON"), BS_AUTOCHECKBOX, 18},
                {"label", TEXT("STATIC"), SS_LEFT, 18},
                {"edit box", TEXT("EDIT"), WS_BORDER | ES_LEFT, 18},
                {"combo box", TEXT("COMBOBOX"), CBS_DROPDOWNLIST, 72},
                {"list box", TEXT("LISTBOX"), kListStyle, 90},
                {"single list", TEXT("LISTBOX"), WS_BORDER | LBS_NOTIFY, 90},
                {"slider", TEXT("msctls_trackbar32"), TBS_AUTOTICKS, 24},
                {"tree", TEXT("SysTreeView32"), kTreeStyle, 90},
                {"tab control", TEXT("SysTabControl32"), TCS_BOTTOM, 90}};

LRESULT Send(HWND window, UINT message, WPARAM wParam = 0, const void* lParam = nullptr) {
    return SendMessageW(window, message, wParam, reinterpret_cast<LPARAM>(lParam));
}

const void* Value(LPARAM value) {
    return reinterpret_cast<const void*>(value);
}

// Each control gets the messages of all. They point to a text or to nothing.
void WriteMessages(const std::string& label, HWND window) {
    const struct {
        UINT message;
        WPARAM wParam;
        const void* lParam;
    } messages[] = {{BM_GETCHECK, 0, nullptr},    {BM_SETCHECK, 1, nullptr},
                    {BM_GETCHECK, 0, nullptr},    {BM_SETCHECK, 2, nullptr},
                    {BM_GETCHECK, 0, nullptr},    {BM_SETCHECK, 0, nullptr},
                    {WM_SETTEXT, 0, TEXT("a")},   {CB_ADDSTRING, 0, TEXT("b")},
                    {CB_GETCURSEL, 0, nullptr},   {CB_ADDSTRING, 0, TEXT("a")},
                    {CB_SETCURSEL, 1, nullptr},   {CB_SETCURSEL, 2, nullptr},
                    {CB_GETCURSEL, 0, nullptr},   {TBM_SETPOS, 1, Value(1)},
                    {TBM_GETPOS, 0, nullptr},     {TBM_SETPOS, 1, Value(-1)},
                    {TBM_GETPOS, 0, nullptr},     {TBM_SETPOS, 1, Value(150)},
                    {TBM_GETPOS, 0, nullptr},     {TBM_SETRANGE, 1, Value(0x20000)},
                    {TBM_GETPOS, 0, nullptr},     {TBM_SETPOS, 1, Value(5)},
                    {TBM_GETPOS, 0, nullptr},     {TCM_GETCURSEL, 0, nullptr},
                    {TCM_SETCURSEL, 2, nullptr},  {TCM_GETCURSEL, 0, nullptr},
                    {TCM_SETCURSEL, 7, nullptr},  {TCM_SETCURSEL, 0, nullptr},
                    {TCM_GETCURSEL, 0, nullptr},  {0x5678, 1, nullptr},
                    {LB_GETCOUNT, 0, nullptr},    {LB_GETTEXTLEN, 0, nullptr},
                    {LB_GETSELCOUNT, 0, nullptr}, {LB_SETSEL, 1, Value(-1)},
                    {LB_SETSEL, 1, Value(9)},     {LB_RESETCONTENT, 0, nullptr}};
    for (const auto& [message, wParam, lParam] : messages) {
        Line(label + " message " + std::to_string(message) + ", " + std::to_string(wParam),
             Send(window, message, wParam, lParam));
    }
    for (const WPARAM room : {0U, 1U, 5U, 60U}) {
        WCHAR text[64] = TEXT("unchanged");
        const LRESULT length = Send(window, WM_GETTEXT, room, text);
        Line(label + " WM_GETTEXT " + std::to_string(room), length, ' ', text);
    }
    for (const int command : {SW_HIDE, SW_HIDE, SW_SHOWNORMAL}) {
        Line(label + " ShowWindow " + std::to_string(command), ShowWindow(window, command) != 0);
    }
    Line(label + " SetWindowText", SetWindowTextW(window, TEXT("other")) != 0);
}

void WriteList(HWND list) {
    for (const WCHAR* const text :
         {TEXT("\\Temp\\"), TEXT("b"), TEXT("B"), TEXT("a-b"), TEXT("ab"), TEXT("_x"), TEXT("10"),
          TEXT("\\Temp\\a\\"), TEXT("\u00E9"), TEXT("\\Temp Files\\"), TEXT("b"), TEXT("")}) {
        Line("LB_ADDSTRING " + Readable(text), Send(list, LB_ADDSTRING, 0, text) >= 0);
    }
    for (WPARAM index = 0; index < 13; ++index) {
        WCHAR text[64] = {};
        const LRESULT length = Send(list, LB_GETTEXT, index, text);
        Line("LB_GETTEXT " + std::to_string(index), length, ' ', text);
    }
    for (const LPARAM index : {3, 1, 1, 99, 7}) {
        Line("LB_SETSEL " + std::to_string(index), Send(list, LB_SETSEL, 1, Value(index)));
    }
    for (const WPARAM room : {0U, 2U, 8U}) {
        LONG selected[8] = {};
        const LRESULT result = Send(list, LB_GETSELITEMS, room, selected);
        Line("LB_GETSELITEMS " + std::to_string(room), result, ' ', selected[0], ' ', selected[1]);
    }
}

void InsertTabs(HWND tabs) {
    for (const WPARAM index : {0U, 9U, 1U}) {
        WCHAR label[] = {static_cast<WCHAR>(TEXT('0') + index), 0};
        TCITEM item{};
        item.mask = TCIF_TEXT;
        item.pszText = label;
        const LRESULT result = Send(tabs, TCM_INSERTITEM, index, &item);
        Line("TCM_INSERTITEM " + std::to_string(index), result, ' ', Send(tabs, TCM_GETCURSEL));
    }
}

HTREEITEM Insert(HWND tree, HTREEITEM parent, const WCHAR* text, int children, LPARAM value) {
    TVINSERTSTRUCT insertion{};
    insertion.hParent = parent;
    insertion.hInsertAfter = TVI_SORT;
    insertion.item.mask = TVIF_TEXT | TVIF_PARAM | TVIF_CHILDREN;
    insertion.item.pszText = const_cast<WCHAR*>(text);
    insertion.item.cChildren = children;
    insertion.item.lParam = value;
    const LRESULT item = Send(tree, TVM_INSERTITEM, 0, &insertion);
    Line("TVM_INSERTITEM " + Readable(text), item != 0);
    return reinterpret_cast<HTREEITEM>(item);
}

void WriteItem(HWND tree, HTREEITEM item, const std::string& name, int room) {
    WCHAR text[16] = TEXT("unchanged");
    TVITEM asked{};
    asked.mask = TVIF_TEXT | TVIF_PARAM | TVIF_CHILDREN;
    asked.hItem = item;
    asked.pszText = text;
    asked.cchTextMax = room;
    const LRESULT result = Send(tree, TVM_GETITEM, 0, &asked);
    Line("TVM_GETITEM " + name, result, ' ', asked.lParam, ' ', asked.cChildren, ' ',
         asked.pszText);
}

void WriteTree(HWND tree) {
    const HTREEITEM root = Insert(tree, TVI_ROOT, TEXT("\\"), 1, 1);
    Insert(tree, root, TEXT("Windows"), 0, 2);
    const HTREEITEM temp = Insert(tree, root, TEXT("temp"), I_CHILDRENCALLBACK, 3);
    const HTREEITEM below = Insert(tree, temp, TEXT("below"), 0, 4);
    TVITEM stored{};
    stored.mask = TVIF_CHILDREN | TVIF_PARAM;
    stored.lParam = 7;
    Line("TVM_SETITEM of none", Send(tree, TVM_SETITEM, 0, &stored));
    WriteItem(tree, root, "root", 16);
    WriteItem(tree, temp, "temp, little room", 3);
    WriteItem(tree, nullptr, "none", 16);
    stored.hItem = temp;
    Line("TVM_SETITEM", Send(tree, TVM_SETITEM, 0, &stored));
    WriteItem(tree, temp, "temp", 16);
    const auto isNext = [tree](HTREEITEM next, WPARAM relation, HTREEITEM item) {
        return Send(tree, TVM_GETNEXTITEM, relation, item) == reinterpret_cast<LRESULT>(next);
    };
    Line("TVGN_PARENT of below", isNext(temp, TVGN_PARENT, below));
    Line("TVGN_PARENT of root", isNext(nullptr, TVGN_PARENT, root));
    Line("TVGN_CARET", isNext(nullptr, TVGN_CARET, nullptr));
    for (const HTREEITEM item : {below, root, root}) {
        Line("TVM_EXPAND", Send(tree, TVM_EXPAND, TVE_EXPAND, item));
    }
}

void WriteScrolling(HWND page, HWND child) {
    constexpr UINT kSet = SIF_RANGE | SIF_PAGE | SIF_POS | SIF_DISABLENOSCROLL;
    constexpr UINT kSize = sizeof(SCROLLINFO);
    const SCROLLINFO rows[] = {{kSize, kSet, 0, 157, 3, 0, 0},     {kSize, kSet, 0, 157, 3, 157, 0},
                               {kSize, kSet, 0, 157, 3, 158, 0},   {kSize, kSet, 0, 157, 3, -5, 0},
                               {kSize, SIF_POS, 9, 9, 9, 90, 0},   {kSize, kSet, 0, -217, 3, 9, 0},
                               {kSize, SIF_ALL, 0, 157, 3, 156, 0}};
    for (const SCROLLINFO& row : rows) {
        const std::string name = std::to_string(row.nMax) + ", " + std::to_string(row.nPos);
        Line("SetScrollInfo " + name, SetScrollInfo(page, SB_VERT, &row, TRUE));
        SCROLLINFO info = {kSize, SIF_ALL, 0, 0, 0, 0, 0};
        const BOOL result = GetScrollInfo(page, SB_VERT, &info);
        Line("GetScrollInfo " + name, result, ' ', info.nMin, ' ', info.nMax, ' ', info.nPage, ' ',
             info.nPos);
        WriteBounds("a page after " + name, page);
    }
    for (const int dy : {-30, -300, 330, 7, -7}) {
        ScrollWindowEx(page, 0, dy, nullptr, nullptr, nullptr, nullptr, SW_SCROLLCHILDREN);
        WriteBounds("a control after ScrollWindowEx", child);
    }
}

void WriteDialog() {
    const struct {
        DLGTEMPLATE head;
        WORD rest[3];
    } form = {{WS_CAPTION | WS_SYSMENU | DS_SETFOREGROUND, 0, 0, 0, 0, 200, 300}, {}};
    const HWND dialog = CreateDialogIndirectParamW(nullptr, &form.head, nullptr, Procedure, 0);
    Line("CreateDialogIndirectParam", dialog != nullptr);
    const SHINITDLGINFO info = {SHIDIM_FLAGS, dialog, SHIDIF_DONEBUTTON | SHIDIF_SIZEDLG};
    Line("SHInitDialog", SHInitDialog(&info));
    ShowWindow(dialog, SW_SHOWNORMAL);
    WriteBounds("a dialog", dialog);
    const HWND button = Create(TEXT("BUTTON"), WS_VISIBLE, {50, 243, 60, 20}, dialog, 7);
    WriteBounds("a button without WS_CHILD", button);
    Line("SendDlgItemMessage", SendDlgItemMessageW(dialog, 7, BM_GETCHECK, 0, 0));
    Line("SendDlgItemMessage to none", SendDlgItemMessageW(dialog, 8, WM_GETTEXT, 0, 0));
    for (const HWND window : {dialog, button, HWND{}}) {
        Line("DestroyWindow of a dialog, its button, none", DestroyWindow(window));
    }
    WriteBounds("a dead window", dialog);
    Line("SendMessage to a dead window", Send(dialog, WM_COMMAND, 3));
}

void WriteFocus(HWND first, HWND second) {
    Line("SetFocus first", SetFocus(first) != nullptr);
    Line("SetFocus second", SetFocus(second) == first);
    Line("SetFocus second again", SetFocus(second) == second);
    Line("SetFocus first again", SetFocus(first) == second);
}

void WriteClasses() {
    WNDCLASS record{};
    Line("RegisterClass without anything", RegisterClassW(&record) != 0);
    Line("UnregisterClass of none", UnregisterClassW(TEXT("Page"), nullptr));
    record.lpfnWndProc = Procedure;
    record.hbrBackground = SystemColorBrush(COLOR_WINDOW);
    for (const WCHAR* const name : {TEXT("Page"), TEXT("Page"), TEXT("page")}) {
        record.lpszClassName = name;
        Line("RegisterClass " + Readable(name), RegisterClassW(&record) != 0);
    }
    Line("UnregisterClass", UnregisterClassW(TEXT("PAGE"), nullptr));
    Line("RegisterClass", RegisterClassW(&record) != 0);
    const HWND none = Create(TEXT("None"), 0, {0, 0, 9, 9}, nullptr, 0);
    Line("CreateWindowEx of no class", none != nullptr);
}

void WriteMenuBars(HWND window) {
    SHMENUBARINFO bar{};
    bar.cbSize = kMenuBarInfoSize;
    bar.hwndParent = window;
    bar.dwFlags = SHCMBF_HMENU;
    for (const UINT menu : {7U, UINT{kMenuResource}}) {
        bar.nToolBarId = menu;
        Line("SHCreateMenuBar " + std::to_string(menu), SHCreateMenuBar(&bar));
    }
    WritePlace("the menu bar", bar.hwndMB);
}

}  // namespace

void WriteWindows() {
    InitCommonControls();
    WriteClasses();
    const HWND main = CreateWindowExW(WS_EX_CAPTIONOKBTN, TEXT("Page"), TEXT("Main"), WS_VISIBLE,
                                      CW_USEDEFAULT, CW_USEDEFAULT, CW_USEDEFAULT, CW_USEDEFAULT,
                                      nullptr, nullptr, nullptr, nullptr);
    Line("UnregisterClass in use", UnregisterClassW(TEXT("Page"), nullptr));
    WriteBounds("the main window", main);
    WriteMenuBars(main);
    Line("MoveWindow", MoveWindow(main, 0, 26, 240, 268, FALSE));
    WriteBounds("the shortened window", main);
    const RECT below = {4, 4, 232, 239};
    const HWND page = Create(TEXT("Page"), WS_CHILD | WS_VISIBLE | WS_VSCROLL, below, main, 0);
    WriteBounds("a page", page);
    std::vector<HWND> controls;
    for (const auto& [label, name, style, height] : kClasses) {
        const HWND control = Create(name, WS_CHILD | WS_VISIBLE | style, {2, 5, 160, height}, page,
                                    50001 + controls.size());
        WritePlace(label, control);
        controls.push_back(control);
    }
    InsertTabs(controls[9]);
    for (std::size_t index = 0; index < controls.size(); ++index) {
        WriteMessages(kClasses[index].label, controls[index]);
    }
    WriteList(controls[5]);
    WriteFocus(controls[3], controls[1]);
    WriteFocus(controls[4], controls[5]);
    WriteTree(controls[8]);
    WriteScrolling(page, controls[0]);
    WriteDialog();
    Line("DestroyWindow", DestroyWindow(main));
    WriteBounds("the page of a dead window", page);
    Line("UnregisterClass", UnregisterClassW(TEXT("Page"), nullptr));
}
