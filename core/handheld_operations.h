#pragma once

#include "core/platform_types.h"

// The operations that only a handheld's platform has: its shortcuts, its power, and what its shell
// adds to windows and dialogs. Paths, handles and failures are those of core/file_operations.h and
// core/window_operations.h. The size constants are those of the device's records; sizeof differs
// here.

// Puts the target text of the shortcut at `path`, terminated, into `buffer` of `limit` characters
// and returns nonzero. The text is the shortcut's command line with its quotes and arguments, but
// without blanks and line ends around it and without the name of an icon. Zero if the file is no
// shortcut or cannot be read, and if its text does not fit.
BOOL SHGetShortcutTarget(const WCHAR* path, WCHAR* buffer, int limit);

// Makes a shortcut that starts `target`, a command line with the path of its program in quotes.
// Zero if any entry has that name already, and if the file cannot be made.
BOOL SHCreateShortcut(const WCHAR* path, const WCHAR* target);

inline constexpr DWORD IOCTL_HAL_REBOOT = 0x0101003C;

// With IOCTL_HAL_REBOOT and no buffers: stores what is pending, restarts the device and ends the
// program on the spot, so the call does not return. Zero for every other code.
BOOL KernelIoControl(DWORD code, void* input, DWORD inputSize, void* output, DWORD outputSize,
                     DWORD* returned);

// Makes the next reset, the one by KernelIoControl, erase what the device stores: its file tree and
// its registry are empty when it starts again. If that reset returns, it has erased nothing, and
// the next one erases nothing either.
void SetCleanRebootFlag();

inline constexpr BYTE VK_OFF = 0xDF;
inline constexpr DWORD KEYEVENTF_KEYUP = 0x0002;
inline constexpr DWORD KEYEVENTF_SILENT = 0x0004;  // without the click of a key

// Presses a key, or releases it with KEYEVENTF_KEYUP. VK_OFF, pressed and released, switches the
// device off; when its user switches it on again, the program goes on where it was. `scanCode` and
// `extra` are 0; other keys have no effect.
void keybd_event(BYTE key, BYTE scanCode, DWORD flags, DWORD_PTR extra);

inline constexpr DWORD WS_EX_CAPTIONOKBTN = 0x80000000;  // its OK sends WM_COMMAND with IDOK

inline constexpr DWORD SHCMBF_HMENU = 0x0010;  // nToolBarId is a menu resource

inline constexpr DWORD kMenuBarInfoSize = 36;  // nine fields of 32 bits

struct SHMENUBARINFO {
    DWORD cbSize;  // kMenuBarInfoSize
    HWND hwndParent;
    DWORD dwFlags;
    UINT nToolBarId;
    HINSTANCE hInstRes;
    int nBmpId;
    int cBmpImages;
    HWND hwndMB;  // receives the bar
    COLORREF clrBk;
};

// Makes the menu bar at the bottom of the screen from the program's menu resource nToolBarId, puts
// its handle into hwndMB and returns nonzero; zero if there is no such menu or no bar can be made.
// Its items send WM_COMMAND with their command ID, notification code 0 and lParam 0 to hwndParent.
// The bar is destroyed with hwndParent.
BOOL SHCreateMenuBar(SHMENUBARINFO* info);

inline constexpr DWORD SHIDIM_FLAGS = 0x0001;
inline constexpr DWORD SHIDIF_DONEBUTTON = 0x0001;  // an OK on the caption
inline constexpr DWORD SHIDIF_SIZEDLG = 0x0002;     // as large as the screen allows

struct SHINITDLGINFO {
    DWORD dwMask;
    HWND hDlg;
    DWORD dwFlags;
};

// Gives a dialog the size and the OK that the flags ask for. Zero on failure.
BOOL SHInitDialog(const SHINITDLGINFO* info);

inline constexpr UINT SHGFI_SMALLICON = 0x0001;
inline constexpr UINT SHGFI_SYSICONINDEX = 0x4000;

struct SHFILEINFO {
    HICON hIcon;
    int iIcon;
    DWORD dwAttributes;
    WCHAR szDisplayName[260];
    WCHAR szTypeName[80];
};

inline constexpr UINT kFileInfoSize = 692;

// With SHGFI_SYSICONINDEX and SHGFI_SMALLICON: puts the index of the icon for `path` into
// `info->iIcon` and returns the system's list of small icons for TVM_SETIMAGELIST, which the system
// owns; 0 on failure. `size` is kFileInfoSize.
DWORD_PTR SHGetFileInfo(const WCHAR* path, DWORD attributes, SHFILEINFO* info, UINT size,
                        UINT flags);
