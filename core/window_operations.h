#pragma once

#include "core/platform_types.h"
#include "core/window_controls.h"

// The operations through which the program reaches the handheld's windows. Measures are device
// pixels. A handle is null, or names one window for as long as it exists and nothing after that:
// every operation accepts a null or a dead handle, does nothing with it and reports failure. Every
// operation that makes or shows something may fail at any time. Texts are terminated and are
// copied.

// Messages to windows. The platform itself sends a procedure WM_COMMAND, WM_NOTIFY, WM_HSCROLL,
// WM_VSCROLL, WM_LBUTTONDOWN and WM_LBUTTONUP, WM_INITDIALOG if it is a dialog's, and WM_SETTEXT in
// SetWindowTextW. It never sends WM_CREATE, WM_DESTROY, WM_SIZE, WM_PAINT, WM_CLOSE and WM_GETTEXT,
// or anything about keys, a moving stylus and the keyboard focus. WM_QUIT belongs to no window:
// GetMessageW alone gives it.
inline constexpr UINT WM_CREATE = 0x0001;
inline constexpr UINT WM_DESTROY = 0x0002;
inline constexpr UINT WM_SIZE = 0x0005;
inline constexpr UINT WM_SETTEXT = 0x000C;  // lParam the text
inline constexpr UINT WM_GETTEXT = 0x000D;  // wParam the capacity of the buffer lParam; returns
                                            // the characters copied, without the terminator. A
                                            // longer text is cut
inline constexpr UINT WM_PAINT = 0x000F;
inline constexpr UINT WM_CLOSE = 0x0010;
inline constexpr UINT WM_QUIT = 0x0012;
inline constexpr UINT WM_NOTIFY = 0x004E;
inline constexpr UINT WM_INITDIALOG = 0x0110;
inline constexpr UINT WM_COMMAND = 0x0111;
inline constexpr UINT WM_HSCROLL = 0x0114;
inline constexpr UINT WM_VSCROLL = 0x0115;  // low word of wParam the scroll code, high word the
                                            // thumb's position for the two thumb codes
inline constexpr UINT WM_LBUTTONDOWN = 0x0201;
inline constexpr UINT WM_LBUTTONUP = 0x0202;

// Styles of every window. A window of a control class that has a parent is its child, whatever its
// style says.
inline constexpr DWORD WS_POPUP = 0x80000000;
inline constexpr DWORD WS_CHILD = 0x40000000;
inline constexpr DWORD WS_VISIBLE = 0x10000000;
inline constexpr DWORD WS_CLIPSIBLINGS = 0x04000000;
inline constexpr DWORD WS_CAPTION = 0x00C00000;
inline constexpr DWORD WS_BORDER = 0x00800000;
inline constexpr DWORD WS_VSCROLL = 0x00200000;
inline constexpr DWORD WS_HSCROLL = 0x00100000;
inline constexpr DWORD WS_SYSMENU = 0x00080000;

inline constexpr DWORD DS_SETFOREGROUND = 0x0200;

inline constexpr UINT CS_VREDRAW = 0x0001;
inline constexpr UINT CS_HREDRAW = 0x0002;

// As each of the four measures of a top-level window: all of the screen below its caption bar.
inline constexpr int CW_USEDEFAULT = -0x7FFFFFFF - 1;

inline constexpr int SW_HIDE = 0;
inline constexpr int SW_SHOWNORMAL = 1;

inline constexpr DWORD COLOR_BACKGROUND = 1;
inline constexpr DWORD COLOR_WINDOW = 5;
inline constexpr DWORD SYS_COLOR_INDEX_FLAG = 0x40000000;

// The brush of one of the platform's own colours.
inline HBRUSH SystemColorBrush(DWORD color) {
    const DWORD_PTR brush = SYS_COLOR_INDEX_FLAG | color;
    return reinterpret_cast<HBRUSH>(brush);  // NOLINT(performance-no-int-to-ptr)
}

// Receives a window's messages and returns each one's result. It runs only inside DispatchMessageW
// and inside the operations whose contract says that they send something.
using WNDPROC = LRESULT (*)(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
using DLGPROC = WNDPROC;

struct WNDCLASS {
    UINT style;
    WNDPROC lpfnWndProc;
    int cbClsExtra;
    int cbWndExtra;
    HINSTANCE hInstance;
    HICON hIcon;
    HCURSOR hCursor;
    HBRUSH hbrBackground;
    const WCHAR* lpszMenuName;
    const WCHAR* lpszClassName;
};

struct MSG {
    HWND hwnd;
    UINT message;
    WPARAM wParam;
    LPARAM lParam;
    DWORD time;
    POINT pt;
};

// Registers the classes of the controls. Opens nothing.
void InitCommonControls();

// Registers a window class; the record is copied. Zero if the name is taken or the record names no
// class.
WORD RegisterClassW(const WNDCLASS* windowClass);

// Unregisters a class. Zero, and no effect, if there is none of that name or if a window of it
// exists.
BOOL UnregisterClassW(const WCHAR* className, HINSTANCE instance);

// Makes a window of a registered class or of a control class and returns its handle; null on
// failure. A child's place is relative to its parent's client area, and `menu` is its ID; a
// top-level window is placed on the screen and has neither parent nor ID. The window exists until
// DestroyWindow on it or on one of its parents. `parameter` is null.
HWND CreateWindowExW(DWORD extendedStyle, const WCHAR* className, const WCHAR* text, DWORD style,
                     int x, int y, int width, int height, HWND parent, HMENU menu,
                     HINSTANCE instance, void* parameter);

// Destroys a window with all its children and drops their queued messages. Nonzero if there was
// one. A window may be destroyed inside its own procedure.
BOOL DestroyWindow(HWND window);

// Shows (SW_SHOWNORMAL) or hides (SW_HIDE) a window. A hidden control keeps its state and answers
// all messages. Nonzero when it was visible before.
BOOL ShowWindow(HWND window, int command);

// Paints what is due to be painted of a window before it returns. Nonzero on success.
BOOL UpdateWindow(HWND window);

// Puts a window's client area, which starts at 0, 0, into `rectangle`. Zero and no change on
// failure.
BOOL GetClientRect(HWND window, RECT* rectangle);

// Puts a window's outer bounds on the screen into `rectangle`. Zero and no change on failure.
BOOL GetWindowRect(HWND window, RECT* rectangle);

// Gives a window a new place and size, in the coordinates of its creation.
BOOL MoveWindow(HWND window, int x, int y, int width, int height, BOOL repaint);

// Gives a window the keyboard focus and returns the one that had it before; null if none.
HWND SetFocus(HWND window);

BOOL SetWindowTextW(HWND window, const WCHAR* text);

// Waits for the next message, takes it from the queue and puts it into `message`. Zero for WM_QUIT,
// nonzero for every other one; below zero on failure, and `message` is as it was.
// `window` is null and both limits are 0: messages of all windows.
BOOL GetMessageW(MSG* message, HWND window, UINT lowest, UINT highest);

// Turns key strokes into characters. Nonzero when there was one.
BOOL TranslateMessage(const MSG* message);

// Passes a message to its window's procedure and returns that one's result; 0 if the window is
// gone.
LRESULT DispatchMessageW(const MSG* message);

// The default handling of a message. Returns 0 for the messages above.
LRESULT DefWindowProcW(HWND window, UINT message, WPARAM wParam, LPARAM lParam);

// Passes a message to a window's procedure, or to the control, waits for it and returns its result;
// 0 if there is no such window.
LRESULT SendMessageW(HWND window, UINT message, WPARAM wParam, LPARAM lParam);

// The same to the child of `parent` with this ID; 0 when there is none.
LRESULT SendDlgItemMessageW(HWND parent, int id, UINT message, WPARAM wParam, LPARAM lParam);

inline constexpr UINT MB_OK = 0x0;
inline constexpr UINT MB_YESNO = 0x4;
inline constexpr UINT MB_ICONEXCLAMATION = 0x30;

inline constexpr int IDOK = 1;
inline constexpr int IDCANCEL = 2;
inline constexpr int IDYES = 6;
inline constexpr int IDNO = 7;

// Shows `text` under `caption` with the buttons that `type` names and waits until the user has
// chosen one; returns its ID, and 0 when the box could not be shown. `owner` is null: the program's
// boxes belong to no window. No procedure runs while a box is up.
int MessageBoxW(HWND owner, const WCHAR* text, const WCHAR* caption, UINT type);

inline constexpr int SB_VERT = 1;

inline constexpr WORD SB_LINEUP = 0;
inline constexpr WORD SB_LINEDOWN = 1;
inline constexpr WORD SB_PAGEUP = 2;
inline constexpr WORD SB_PAGEDOWN = 3;
inline constexpr WORD SB_THUMBPOSITION = 4;
inline constexpr WORD SB_THUMBTRACK = 5;
inline constexpr WORD SB_TOP = 6;
inline constexpr WORD SB_BOTTOM = 7;
inline constexpr WORD SB_ENDSCROLL = 8;

inline constexpr UINT SIF_RANGE = 0x01;
inline constexpr UINT SIF_PAGE = 0x02;
inline constexpr UINT SIF_POS = 0x04;
inline constexpr UINT SIF_DISABLENOSCROLL =
    0x08;  // a bar with nothing to scroll is disabled, not hidden
inline constexpr UINT SIF_TRACKPOS = 0x10;
inline constexpr UINT SIF_ALL = SIF_RANGE | SIF_PAGE | SIF_POS | SIF_TRACKPOS;

inline constexpr UINT SW_SCROLLCHILDREN = 0x1;

struct SCROLLINFO {
    UINT cbSize;  // its sizeof
    UINT fMask;   // which of the other fields count
    int nMin;
    int nMax;
    UINT nPage;
    int nPos;
    int nTrackPos;
};

// Puts the fields of a window's scroll bar that `info->fMask` names into `info` and leaves the
// others. Zero if the window has no bar. `bar` is SB_VERT.
BOOL GetScrollInfo(HWND window, int bar, SCROLLINFO* info);

// Sets the fields of a window's scroll bar that `info->fMask` names and returns its position, which
// is limited to nMin to nMax; an nMax below nMin counts as nMin. The page only sizes the thumb. A
// bar that was once set with SIF_DISABLENOSCROLL stays visible. The bar itself sends a line or page
// code only if the whole step fits into the range, otherwise SB_TOP or SB_BOTTOM, and nothing while
// it is disabled.
int SetScrollInfo(HWND window, int bar, const SCROLLINFO* info, BOOL redraw);

// Moves the content of a window by dx and dy pixels; with SW_SCROLLCHILDREN and no `scroll`
// rectangle also all its children, even hidden ones and those outside the window. Zero on failure.
int ScrollWindowEx(HWND window, int dx, int dy, const RECT* scroll, const RECT* clip,
                   HRGN updateRegion, RECT* update, UINT flags);

// The header of a dialog template without controls: 18 bytes, followed at once by three words of 0
// for no menu, no class and no title. Place and size are in dialog units.
struct DLGTEMPLATE {
    DWORD style;
    DWORD dwExtendedStyle;
    WORD cdit;
    std::int16_t x;
    std::int16_t y;
    std::int16_t cx;
    std::int16_t cy;
};

// Makes a modeless dialog, sends it WM_INITDIALOG and returns its handle at once; null on failure.
// Its messages reach `procedure` through the program's one queue. `parent` may be null.
HWND CreateDialogIndirectParamW(HINSTANCE instance, const DLGTEMPLATE* dialog, HWND parent,
                                DLGPROC procedure, LPARAM parameter);
