#pragma once

#include "core/platform_types.h"

// The controls: their class names, styles, messages and notifications, with the platform's values.
// A message that a control does not know, or whose argument names nothing, changes nothing and
// returns 0 unless another failure value is given.
//
// A control notifies its parent of what its user does: by WM_COMMAND with the notification code in
// the high word of wParam, the control's ID in the low word and its handle in lParam, or by
// WM_NOTIFY with the control's ID in wParam and a pointer to an NMHDR in lParam.

// Class "BUTTON". The low four bits of the style are the kind.
inline constexpr DWORD BS_PUSHBUTTON = 0x0;
inline constexpr DWORD BS_AUTOCHECKBOX = 0x3;  // toggles its own tick

inline constexpr UINT BM_GETCHECK = 0x00F0;  // 1 if ticked, else 0
inline constexpr UINT BM_SETCHECK = 0x00F1;  // wParam 0 or 1; sends no notification

inline constexpr WORD BN_CLICKED = 0;

// Class "STATIC": a text that takes no input and sends no notifications.
inline constexpr DWORD SS_LEFT = 0x0;

// Class "EDIT": one line of text. WM_SETTEXT and WM_GETTEXT work on every class; here they set and
// read what the user types.
inline constexpr DWORD ES_LEFT = 0x0;

inline constexpr WORD EN_SETFOCUS = 0x0100;
inline constexpr WORD EN_KILLFOCUS = 0x0200;
inline constexpr WORD EN_CHANGE = 0x0300;  // after every change, one by WM_SETTEXT included
inline constexpr WORD EN_UPDATE = 0x0400;  // before EN_CHANGE

// Class "COMBOBOX". The height given on creation is that of the field and the dropped list.
// WM_GETTEXT gives the text of the selected entry, or the empty text if none is selected;
// WM_SETTEXT changes nothing and returns CB_ERR.
inline constexpr DWORD CBS_DROPDOWNLIST = 0x3;  // no text can be typed

inline constexpr UINT CB_ADDSTRING = 0x0143;  // lParam the text; returns its index from 0
inline constexpr UINT CB_GETCURSEL = 0x0147;  // index; CB_ERR if nothing is selected
inline constexpr UINT CB_SETCURSEL = 0x014E;  // wParam the index, which is returned. -1 clears the
                                              // selection, an index beyond the list changes
                                              // nothing: both return CB_ERR. No notification
inline constexpr LRESULT CB_ERR = -1;

inline constexpr WORD CBN_SELCHANGE = 1;
inline constexpr WORD CBN_DBLCLK = 2;
inline constexpr WORD CBN_SETFOCUS = 3;
inline constexpr WORD CBN_KILLFOCUS = 4;
inline constexpr WORD CBN_DROPDOWN = 7;
inline constexpr WORD CBN_CLOSEUP = 8;
inline constexpr WORD CBN_SELENDOK = 9;
inline constexpr WORD CBN_SELENDCANCEL = 10;

// Class "LISTBOX".
inline constexpr DWORD LBS_NOTIFY = 0x0001;           // notifies its parent of selections
inline constexpr DWORD LBS_SORT = 0x0002;             // alphabetical, ignoring case
inline constexpr DWORD LBS_MULTIPLESEL = 0x0008;      // each tap toggles one entry
inline constexpr DWORD LBS_DISABLENOSCROLL = 0x1000;  // scroll bars stay visible, disabled

inline constexpr UINT LB_ADDSTRING = 0x0180;  // lParam the text; 0 or more, which need not be its
                                              // index, or LB_ERR
inline constexpr UINT LB_RESETCONTENT = 0x0184;  // empties the list; its extent stays
inline constexpr UINT LB_SETSEL = 0x0185;        // wParam the new state, lParam the index
inline constexpr UINT LB_GETTEXT = 0x0189;       // wParam the index, lParam a buffer with room for
                                                 // the text; its length, or LB_ERR and no change
inline constexpr UINT LB_GETTEXTLEN = 0x018A;    // wParam the index; length without terminator
inline constexpr UINT LB_GETCOUNT = 0x018B;
inline constexpr UINT LB_GETSELCOUNT = 0x0190;  // LB_ERR in a list with a single selection
inline constexpr UINT LB_GETSELITEMS = 0x0191;  // wParam the capacity of the array of LONG at
                                                // lParam, which receives the indices, ascending;
                                                // their number, or LB_ERR
inline constexpr UINT LB_SETHORIZONTALEXTENT = 0x0194;  // wParam pixels
inline constexpr LRESULT LB_ERR = -1;

inline constexpr WORD LBN_SELCHANGE = 1;
inline constexpr WORD LBN_DBLCLK = 2;
inline constexpr WORD LBN_SETFOCUS = 4;
inline constexpr WORD LBN_KILLFOCUS = 5;

// Class "msctls_trackbar32". Notifies its parent by WM_HSCROLL.
inline constexpr DWORD TBS_AUTOTICKS = 0x1;  // a tick at each position

inline constexpr UINT TBM_GETPOS = 0x0400;
inline constexpr UINT TBM_SETPOS = 0x0405;    // wParam redraw, lParam the position, limited to the
                                              // range; sends no notification
inline constexpr UINT TBM_SETRANGE = 0x0406;  // wParam redraw, lParam MAKELONG(lowest, highest)

// What the lParam of WM_NOTIFY points to, alone or as the first member of a longer record.
struct NMHDR {
    HWND hwndFrom;
    DWORD_PTR idFrom;
    UINT code;
};

// Class "SysTabControl32". The first tab that is inserted becomes the selected one.
inline constexpr DWORD TCS_BOTTOM = 0x0002;  // the tabs are below the display area

inline constexpr UINT TCIF_TEXT = 0x0001;

struct TCITEM {
    UINT mask;  // which of the other fields count
    DWORD dwState;
    DWORD dwStateMask;
    WCHAR* pszText;  // only read by an insertion
    int cchTextMax;
    int iImage;
    LPARAM lParam;
};

inline constexpr UINT TCM_GETCURSEL = 0x130B;   // index; -1 if there is no tab
inline constexpr UINT TCM_SETCURSEL = 0x130C;   // wParam the index; no notification
inline constexpr UINT TCM_ADJUSTRECT = 0x1328;  // wParam 0; lParam a RECT of the control that
                                                // becomes its display area
inline constexpr UINT TCM_INSERTITEM = 0x133E;  // wParam the index, lParam a TCITEM; the index of
                                                // the new tab, or -1

inline constexpr UINT TCN_SELCHANGE = static_cast<UINT>(-551);    // TCM_GETCURSEL gives the new tab
inline constexpr UINT TCN_SELCHANGING = static_cast<UINT>(-552);  // it still gives the old one; a
                                                                  // result other than 0 refuses

// Class "SysTreeView32".
inline constexpr DWORD TVS_HASBUTTONS = 0x0001;
inline constexpr DWORD TVS_HASLINES = 0x0002;

inline constexpr UINT TVIF_TEXT = 0x0001;
inline constexpr UINT TVIF_IMAGE = 0x0002;
inline constexpr UINT TVIF_PARAM = 0x0004;
inline constexpr UINT TVIF_STATE = 0x0008;
inline constexpr UINT TVIF_HANDLE = 0x0010;
inline constexpr UINT TVIF_SELECTEDIMAGE = 0x0020;
inline constexpr UINT TVIF_CHILDREN = 0x0040;

// As TVITEM::cChildren: the tree asks for the number by TVN_GETDISPINFO whenever it shows the item
// or answers TVM_GETITEM for it, until TVM_SETITEM has stored one.
inline constexpr int I_CHILDRENCALLBACK = -1;

struct TVITEM {
    UINT mask;  // which of the other fields count
    HTREEITEM hItem;
    UINT state;
    UINT stateMask;
    WCHAR* pszText;      // read by an insertion, written by TVM_GETITEM
    int cchTextMax;      // room for the text in characters, terminator included
    int iImage;          // in the list of TVM_SETIMAGELIST
    int iSelectedImage;  // shown instead while the item is selected
    int cChildren;
    LPARAM lParam;
};

// NOLINTBEGIN(performance-no-int-to-ptr)
inline const HTREEITEM TVI_ROOT = reinterpret_cast<HTREEITEM>(static_cast<DWORD_PTR>(-0x10000));
inline const HTREEITEM TVI_FIRST = reinterpret_cast<HTREEITEM>(static_cast<DWORD_PTR>(-0x0FFFF));
inline const HTREEITEM TVI_LAST = reinterpret_cast<HTREEITEM>(static_cast<DWORD_PTR>(-0x0FFFE));
inline const HTREEITEM TVI_SORT = reinterpret_cast<HTREEITEM>(static_cast<DWORD_PTR>(-0x0FFFD));
// NOLINTEND(performance-no-int-to-ptr)

struct TVINSERTSTRUCT {
    HTREEITEM hParent;       // null or TVI_ROOT: a top-level item
    HTREEITEM hInsertAfter;  // a sibling, TVI_FIRST, TVI_LAST or TVI_SORT
    TVITEM item;
};

// What the lParam of TVN_GETDISPINFO points to. item.mask says what is asked and item.hItem for
// which item, whose lParam is filled in. The answer goes into the other fields and is used once.
struct NMTVDISPINFO {
    NMHDR hdr;
    TVITEM item;
};

inline constexpr WPARAM TVSIL_NORMAL = 0;
inline constexpr WPARAM TVE_EXPAND = 2;
inline constexpr WPARAM TVGN_PARENT = 3;
inline constexpr WPARAM TVGN_CARET = 9;

inline constexpr UINT TVM_EXPAND = 0x1102;        // wParam TVE_EXPAND, lParam the item
inline constexpr UINT TVM_SETIMAGELIST = 0x1109;  // wParam TVSIL_NORMAL, lParam the list
inline constexpr UINT TVM_GETNEXTITEM = 0x110A;   // wParam the relation, lParam an item; the item
                                                  // found, 0 when there is none. TVGN_CARET: the
                                                  // selected one
inline constexpr UINT TVM_INSERTITEM = 0x1132;    // lParam a TVINSERTSTRUCT; the new item, or 0
inline constexpr UINT TVM_GETITEM = 0x113E;  // lParam a TVITEM whose fields in the mask are filled;
                                             // 0 when there is no such item
inline constexpr UINT TVM_SETITEM = 0x113F;  // lParam a TVITEM whose fields in the mask are set

inline constexpr UINT TVN_GETDISPINFO = static_cast<UINT>(-452);
