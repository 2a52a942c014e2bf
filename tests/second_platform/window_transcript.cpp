// The windows' part of the transcript.

#include <string>
#include <vector>

#include "core/handheld_operations.h"
#include "core/wide_text.h"
#include "core/window_operations.h"
#include "shell/resources.h"

std::string Readable(WideView text);
void Write(const std::string& call, const std::string& result);
void Write(const std::string& call, long long result);

namespace {

std::string g_notes;  // what the procedure has got since the last line

std::string Number(long long number) {
    return std::to_string(number);
}

LRESULT Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    if (message == WM_COMMAND) {
        g_notes += " command " + Number(HIWORD(wParam)) + ':' + Number(LOWORD(wParam));
    } else if (message == WM_VSCROLL || message == WM_HSCROLL || message == WM_INITDIALOG) {
        g_notes += " message " + Number(message) + ':' + Number(LOWORD(wParam));
    } else if (message == WM_NOTIFY) {
        auto* const question = reinterpret_cast<NMTVDISPINFO*>(lParam);
        const int code = static_cast<int>(question->hdr.code);
        if (question->hdr.code == TVN_GETDISPINFO || code == -551 || code == -552) {
            g_notes += " notify " + Number(code) + ':' + Number(static_cast<long long>(wParam));
        }
        if (question->hdr.code == TVN_GETDISPINFO) {
            g_notes += " of " + Number(question->item.lParam);
            question->item.cChildren = 1;
        }
    }
    return DefWindowProcW(window, message, wParam, lParam);
}

void Line(const std::string& call, long long result) {
    Write(call, Number(result) + g_notes);
    g_notes.clear();
}

LRESULT Send(HWND window, UINT message, WPARAM wParam = 0, const void* lParam = nullptr) {
    return SendMessageW(window, message, wParam, reinterpret_cast<LPARAM>(lParam));
}

std::string Bounds(BOOL (*operation)(HWND, RECT*), HWND window) {
    RECT bounds = {-1, -1, -1, -1};
    const BOOL result = operation(window, &bounds);
    return Number(result) + ' ' + Number(bounds.left) + ' ' + Number(bounds.top) + ' ' +
           Number(bounds.right) + ' ' + Number(bounds.bottom);
}

BOOL WindowBounds(HWND window, RECT* bounds) {
    return GetWindowRect(window, bounds);
}

BOOL ClientBounds(HWND window, RECT* bounds) {
    return GetClientRect(window, bounds);
}

void WriteBounds(const std::string& name, HWND window) {
    Write("GetWindowRect " + name, Bounds(WindowBounds, window));
    Write("GetClientRect " + name, Bounds(ClientBounds, window));
}

std::string TextOf(HWND window, WPARAM room) {
    std::vector<WCHAR> text(64, TEXT('x'));
    const LRESULT length = Send(window, WM_GETTEXT, room, text.data());
    return Number(length) + ' ' + (room > 0 ? Readable(text.data()) : std::string());
}

struct Class {
    const char* label;
    const WCHAR* name;
    DWORD style;
    int height;
};

const Class kClasses[] = {
    {"push button", TEXT("BUTTON"), BS_PUSHBUTTON, 18},
    {"check box", TEXT("BUTTON"), BS_AUTOCHECKBOX, 18},
    {"label", TEXT("STATIC"), SS_LEFT, 18},
    {"edit box", TEXT("EDIT"), WS_BORDER | ES_LEFT, 18},
    {"combo box", TEXT("COMBOBOX"), CBS_DROPDOWNLIST, 72},
    {"list box", TEXT("LISTBOX"),
     WS_BORDER | WS_VSCROLL | WS_HSCROLL | LBS_NOTIFY | LBS_SORT | LBS_MULTIPLESEL |
         LBS_DISABLENOSCROLL,
     90},
    {"single list", TEXT("LISTBOX"), WS_BORDER | LBS_NOTIFY, 90},
    {"slider", TEXT("msctls_trackbar32"), TBS_AUTOTICKS, 24},
    {"tree", TEXT("SysTreeView32"), WS_BORDER | TVS_HASBUTTONS | TVS_HASLINES, 90},
    {"tab control", TEXT("SysTabControl32"), TCS_BOTTOM, 90}};

struct Message {
    const char* name;
    UINT message;
    WPARAM wParam;
    const void* lParam;
};

const void* Value(LPARAM value) {
    return reinterpret_cast<const void*>(value);
}

void WriteMessages(const std::string& label, HWND window) {
    LONG indices[4] = {};
    const Message messages[] = {{"BM_GETCHECK", BM_GETCHECK, 0, nullptr},
                                {"BM_SETCHECK 1", BM_SETCHECK, 1, nullptr},
                                {"BM_GETCHECK", BM_GETCHECK, 0, nullptr},
                                {"BM_SETCHECK 2", BM_SETCHECK, 2, nullptr},
                                {"BM_GETCHECK", BM_GETCHECK, 0, nullptr},
                                {"BM_SETCHECK 0", BM_SETCHECK, 0, nullptr},
                                {"WM_SETTEXT", WM_SETTEXT, 0, TEXT("some text")},
                                {"CB_ADDSTRING", CB_ADDSTRING, 0, TEXT("first")},
                                {"CB_GETCURSEL", CB_GETCURSEL, 0, nullptr},
                                {"CB_ADDSTRING", CB_ADDSTRING, 0, TEXT("after")},
                                {"CB_SETCURSEL 1", CB_SETCURSEL, 1, nullptr},
                                {"CB_SETCURSEL 2", CB_SETCURSEL, 2, nullptr},
                                {"CB_GETCURSEL", CB_GETCURSEL, 0, nullptr},
                                {"LB_GETCOUNT", LB_GETCOUNT, 0, nullptr},
                                {"LB_GETSELCOUNT", LB_GETSELCOUNT, 0, nullptr},
                                {"LB_SETSEL 0", LB_SETSEL, 1, nullptr},
                                {"LB_GETTEXTLEN 0", LB_GETTEXTLEN, 0, nullptr},
                                {"LB_GETSELITEMS", LB_GETSELITEMS, 4, indices},
                                {"LB_SETHORIZONTALEXTENT", LB_SETHORIZONTALEXTENT, 300, nullptr},
                                {"TBM_GETPOS", TBM_GETPOS, 0, nullptr},
                                {"TCM_GETCURSEL", TCM_GETCURSEL, 0, nullptr},
                                {"TCM_SETCURSEL 1", TCM_SETCURSEL, 1, nullptr},
                                {"TVM_GETNEXTITEM", TVM_GETNEXTITEM, TVGN_CARET, nullptr},
                                {"0x5678", 0x5678, 1, nullptr}};
    for (const Message& row : messages) {
        Line(label + ' ' + row.name, Send(window, row.message, row.wParam, row.lParam));
    }
    for (const WPARAM room : {0U, 1U, 5U, 60U}) {
        Write(label + " WM_GETTEXT " + Number(static_cast<long long>(room)), TextOf(window, room));
    }
    Line(label + " ShowWindow, hide", ShowWindow(window, SW_HIDE) != 0);
    Line(label + " ShowWindow, hide again", ShowWindow(window, SW_HIDE) != 0);
    Line(label + " ShowWindow", ShowWindow(window, SW_SHOWNORMAL) != 0);
    Line(label + " UpdateWindow", UpdateWindow(window) != 0);
    Line(label + " SetWindowText", SetWindowTextW(window, TEXT("other")) != 0);
    Write(label + " its text", TextOf(window, 60));
}

void WriteSlider(HWND slider) {
    for (const int position : {1, 3, -1, 2, 150}) {
        Send(slider, TBM_SETPOS, TRUE, Value(position));
        Line("slider at " + Number(position), Send(slider, TBM_GETPOS));
    }
    Send(slider, TBM_SETRANGE, TRUE, Value(MAKELONG(0, 2)));
    Line("slider with a range", Send(slider, TBM_GETPOS));
    Send(slider, TBM_SETPOS, TRUE, Value(5));
    Line("slider beyond its range", Send(slider, TBM_GETPOS));
}

void WriteList(HWND list) {
    for (const WCHAR* const text :
         {TEXT("\\Temp\\"), TEXT("b"), TEXT("B"), TEXT("a-b"), TEXT("ab"), TEXT("_x"), TEXT("10"),
          TEXT("9"), TEXT("\\Temp\\a\\"), TEXT("\\My Documents\\Temp\\"), TEXT("\u00E9"), TEXT("z"),
          TEXT("\\Temp Files\\"), TEXT("b"), TEXT("")}) {
        Line("LB_ADDSTRING " + Readable(text), Send(list, LB_ADDSTRING, 0, text) >= 0);
    }
    WCHAR text[64];
    const LRESULT count = Send(list, LB_GETCOUNT);
    for (LRESULT index = 0; index <= count; ++index) {
        text[0] = 0;
        const LRESULT length = Send(list, LB_GETTEXT, static_cast<WPARAM>(index), text);
        Write("LB_GETTEXT " + Number(index), Number(length) + ' ' + Readable(text));
    }
    for (const LPARAM index : {3, 1, 1, 99, 7}) {
        Line("LB_SETSEL " + Number(index), Send(list, LB_SETSEL, 1, Value(index)));
    }
    LONG selected[8] = {};
    for (const WPARAM room : {0U, 2U, 8U}) {
        Line("LB_GETSELITEMS " + Number(static_cast<long long>(room)),
             Send(list, LB_GETSELITEMS, room, selected) * 100 + LRESULT{selected[0]} * 10 +
                 selected[1]);
    }
    Line("LB_SETSEL all off", Send(list, LB_SETSEL, 0, Value(-1)));
    Line("LB_GETSELCOUNT", Send(list, LB_GETSELCOUNT));
    Line("LB_RESETCONTENT", Send(list, LB_RESETCONTENT));
    Line("LB_GETCOUNT", Send(list, LB_GETCOUNT));
    Line("LB_GETTEXTLEN of none", Send(list, LB_GETTEXTLEN, 0));
}

void WriteTabs(HWND tabs) {
    const WCHAR* const labels[] = {TEXT("One"), TEXT("Two"), TEXT("Three")};
    for (const WPARAM index : {0U, 9U, 1U}) {
        TCITEM item{};
        item.mask = TCIF_TEXT;
        item.pszText = const_cast<WCHAR*>(labels[index % 3]);
        Line("TCM_INSERTITEM " + Number(static_cast<long long>(index)),
             Send(tabs, TCM_INSERTITEM, index, &item));
        Line("TCM_GETCURSEL", Send(tabs, TCM_GETCURSEL));
    }
    for (const WPARAM index : {2U, 7U, 0U}) {
        Line("TCM_SETCURSEL " + Number(static_cast<long long>(index)),
             Send(tabs, TCM_SETCURSEL, index));
        Line("TCM_GETCURSEL", Send(tabs, TCM_GETCURSEL));
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
    WCHAR text[16] = TEXT("xxxxxxxxxxxxxxx");
    TVITEM asked{};
    asked.mask = TVIF_TEXT | TVIF_PARAM | TVIF_CHILDREN;
    asked.hItem = item;
    asked.pszText = text;
    asked.cchTextMax = room;
    const LRESULT result = Send(tree, TVM_GETITEM, 0, &asked);
    Line("TVM_GETITEM " + name + ", room " + Number(room),
         result * 1000 + asked.lParam * 10 + asked.cChildren);
    Write("its text", Readable(asked.pszText));
}

void WriteTree(HWND tree) {
    const HTREEITEM root = Insert(tree, TVI_ROOT, TEXT("\\"), 1, 1);
    Insert(tree, root, TEXT("Windows"), 0, 2);
    const HTREEITEM temp = Insert(tree, root, TEXT("temp"), I_CHILDRENCALLBACK, 3);
    const HTREEITEM below = Insert(tree, temp, TEXT("below"), 0, 4);
    WriteItem(tree, root, "root", 16);
    WriteItem(tree, temp, "temp", 3);
    WriteItem(tree, below, "below", 16);
    WriteItem(tree, nullptr, "none", 16);
    TVITEM stored{};
    stored.mask = TVIF_CHILDREN | TVIF_PARAM;
    stored.hItem = temp;
    stored.lParam = 7;
    Line("TVM_SETITEM", Send(tree, TVM_SETITEM, 0, &stored));
    WriteItem(tree, temp, "temp", 16);
    stored.hItem = nullptr;
    Line("TVM_SETITEM of none", Send(tree, TVM_SETITEM, 0, &stored));
    const auto next = [tree](WPARAM relation, HTREEITEM item) {
        return reinterpret_cast<HTREEITEM>(Send(tree, TVM_GETNEXTITEM, relation, item));
    };
    Line("TVGN_PARENT of below", next(TVGN_PARENT, below) == temp);
    Line("TVGN_PARENT of root", next(TVGN_PARENT, root) == nullptr);
    Line("TVGN_CARET", next(TVGN_CARET, nullptr) == nullptr);
    for (const auto& [name, item] : {std::pair{"below", below}, {"root", root}, {"root", root}}) {
        Line(std::string("TVM_EXPAND ") + name, Send(tree, TVM_EXPAND, TVE_EXPAND, item));
    }
}

void WriteScrolling(HWND page, HWND child) {
    constexpr UINT kSet = SIF_RANGE | SIF_PAGE | SIF_POS | SIF_DISABLENOSCROLL;
    const struct {
        UINT mask;
        int lowest, highest;
        UINT page;
        int position;
    } rows[] = {{kSet, 0, 157, 3, 0},   {kSet, 0, 157, 3, 157}, {kSet, 0, 157, 3, 158},
                {kSet, 0, 157, 3, -5},  {SIF_POS, 9, 9, 9, 90}, {kSet, 0, -217, 3, 9},
                {kSet, 0, 157, 3, 156}, {SIF_ALL, 0, 157, 3, 9}};
    for (const auto& row : rows) {
        SCROLLINFO info = {sizeof(SCROLLINFO), row.mask,     row.lowest, row.highest,
                           row.page,           row.position, 0};
        const std::string name = Number(row.highest) + ", " + Number(row.position);
        Line("SetScrollInfo " + name, SetScrollInfo(page, SB_VERT, &info, TRUE));
        info = {sizeof(SCROLLINFO), SIF_ALL, 0, 0, 0, 0, 0};
        const BOOL result = GetScrollInfo(page, SB_VERT, &info);
        Write("GetScrollInfo after " + name, Number(result) + ' ' + Number(info.nMin) + ' ' +
                                                 Number(info.nMax) + ' ' + Number(info.nPage) +
                                                 ' ' + Number(info.nPos));
        Write("client area after " + name, Bounds(ClientBounds, page));
    }
    for (const int dy : {-30, -300, 330, 7, -7}) {
        Line("ScrollWindowEx " + Number(dy), ScrollWindowEx(page, 0, dy, nullptr, nullptr, nullptr,
                                                            nullptr, SW_SCROLLCHILDREN) != 0);
        Write("the child after " + Number(dy), Bounds(WindowBounds, child));
    }
}

HWND Create(const WCHAR* name, const WCHAR* text, DWORD style, const RECT& place, HWND parent,
            DWORD_PTR id) {
    return CreateWindowExW(0, name, text, style, place.left, place.top, place.right, place.bottom,
                           parent, reinterpret_cast<HMENU>(id), nullptr, nullptr);
}

void WriteDialog() {
    const struct {
        DLGTEMPLATE head;
        WORD rest[3];
    } form = {{WS_CAPTION | WS_SYSMENU | DS_SETFOREGROUND, 0, 0, 0, 0, 200, 300}, {}};
    const HWND dialog = CreateDialogIndirectParamW(nullptr, &form.head, nullptr, Procedure, 0);
    Line("CreateDialogIndirectParam", dialog != nullptr);
    Line("SetWindowText of a dialog", SetWindowTextW(dialog, TEXT("Title")));
    const SHINITDLGINFO info = {SHIDIM_FLAGS, dialog, SHIDIF_DONEBUTTON | SHIDIF_SIZEDLG};
    Line("SHInitDialog", SHInitDialog(&info));
    Write("title of a dialog", TextOf(dialog, 60));
    ShowWindow(dialog, SW_SHOWNORMAL);
    WriteBounds("of a dialog", dialog);
    const HWND button =
        Create(TEXT("BUTTON"), TEXT("OK"), WS_VISIBLE, {50, 243, 60, 20}, dialog, 7);
    WriteBounds("of a button without WS_CHILD", button);
    Line("SendDlgItemMessage", SendDlgItemMessageW(dialog, 7, BM_GETCHECK, 0, 0));
    Line("SendDlgItemMessage to none", SendDlgItemMessageW(dialog, 8, WM_GETTEXT, 0, 0));
    Line("DestroyWindow of a dialog", DestroyWindow(dialog));
    Line("DestroyWindow of its button", DestroyWindow(button));
    Line("DestroyWindow of none", DestroyWindow(nullptr));
    WriteBounds("of a dead window", dialog);
    Line("SendMessage to a dead window", Send(dialog, WM_COMMAND, 3));
}

void WriteFocus(HWND first, HWND second) {
    g_notes.clear();
    Line("SetFocus first", SetFocus(first) != nullptr);
    Line("SetFocus second", SetFocus(second) == first);
    Line("SetFocus second again", SetFocus(second) == second);
    Line("SetFocus first again", SetFocus(first) == second);
}

void WriteClasses() {
    WNDCLASS record{};
    Line("RegisterClass without anything", RegisterClassW(&record) != 0);
    record.lpfnWndProc = Procedure;
    record.hbrBackground = SystemColorBrush(COLOR_WINDOW);
    record.lpszClassName = TEXT("Page");
    Line("UnregisterClass of none", UnregisterClassW(TEXT("Page"), nullptr));
    Line("RegisterClass", RegisterClassW(&record) != 0);
    Line("RegisterClass again", RegisterClassW(&record) != 0);
    record.lpszClassName = TEXT("page");
    Line("RegisterClass, another case", RegisterClassW(&record) != 0);
    Line("UnregisterClass", UnregisterClassW(TEXT("PAGE"), nullptr));
    Line("RegisterClass", RegisterClassW(&record) != 0);
    Line("CreateWindowEx of no class",
         Create(TEXT("None"), TEXT(""), 0, {0, 0, 9, 9}, nullptr, 0) != nullptr);
}

}  // namespace

void WriteWindowTranscript() {
    InitCommonControls();
    WriteClasses();
    const HWND main = CreateWindowExW(WS_EX_CAPTIONOKBTN, TEXT("Page"), TEXT("Main"), WS_VISIBLE,
                                      CW_USEDEFAULT, CW_USEDEFAULT, CW_USEDEFAULT, CW_USEDEFAULT,
                                      nullptr, nullptr, nullptr, nullptr);
    Line("UnregisterClass in use", UnregisterClassW(TEXT("Page"), nullptr));
    WriteBounds("of the main window", main);
    SHMENUBARINFO bar{};
    bar.cbSize = kMenuBarInfoSize;
    bar.hwndParent = main;
    bar.dwFlags = SHCMBF_HMENU;
    bar.nToolBarId = kMenuResource;
    Line("SHCreateMenuBar", SHCreateMenuBar(&bar));
    Write("the menu bar", Bounds(WindowBounds, bar.hwndMB));
    bar.nToolBarId = 7;
    Line("SHCreateMenuBar of no menu", SHCreateMenuBar(&bar));
    Line("MoveWindow", MoveWindow(main, 0, 26, 240, 268, FALSE));
    WriteBounds("of the shortened window", main);
    Write("its text", TextOf(main, 60));
    const HWND page = Create(TEXT("Page"), TEXT("x"), WS_CHILD | WS_VISIBLE | WS_VSCROLL,
                             {4, 4, 232, 239}, main, 0);
    WriteBounds("of a page", page);
    std::vector<HWND> controls;
    for (const Class& row : kClasses) {
        const HWND control = Create(row.name, TEXT("text"), WS_CHILD | WS_VISIBLE | row.style,
                                    {2, 5, 160, row.height}, page, 50001 + controls.size());
        Line(std::string("CreateWindowEx ") + row.label, control != nullptr);
        Write(std::string(row.label) + " at", Bounds(WindowBounds, control));
        controls.push_back(control);
        WriteMessages(row.label, control);
    }
    WriteFocus(controls[3], controls[1]);
    WriteFocus(controls[4], controls[5]);
    WriteList(controls[5]);
    WriteSlider(controls[7]);
    WriteTree(controls[8]);
    WriteTabs(controls[9]);
    WriteScrolling(page, controls[0]);
    WriteDialog();
    Line("DestroyWindow", DestroyWindow(main));
    WriteBounds("of its page", page);
    Line("UnregisterClass", UnregisterClassW(TEXT("Page"), nullptr));
}
