#pragma once

#include <windows.h>
// After windows.h.
#include <commctrl.h>
#include <shellapi.h>

#include <cstdio>
#include <string>

// The operations of the handheld on a desktop system of its family, where they differ from that
// system's own: each has the contract of the same name in core/*_operations.h. All others are the
// system's.
namespace handheld {

// Makes the directory `root`, a path that begins with "\\?\", the device's root, and the keys below
// HKEY_CURRENT_USER\`registry` its registry. Boxes are lines on standard output; with windows they
// are shown besides.
void UseDevice(const std::wstring& root, const std::wstring& registry, bool hasWindows);

// In pixels; the bars are the caption's and the menu's.
inline constexpr int kScreenWidth = 240;
inline constexpr int kScreenHeight = 320;
inline constexpr int kBarHeight = 26;

HANDLE FindFirstFileW(const WCHAR* pattern, WIN32_FIND_DATAW* data);
BOOL FindNextFileW(HANDLE find, WIN32_FIND_DATAW* data);
BOOL DeleteFileW(const WCHAR* path);
BOOL RemoveDirectoryW(const WCHAR* path);
BOOL CreateDirectoryW(const WCHAR* path, void* security);
BOOL MoveFileW(const WCHAR* oldPath, const WCHAR* newPath);
std::FILE* OpenFile(const WCHAR* path, const WCHAR* mode);  // _wfopen, which may be a macro
BOOL SHGetShortcutTarget(const WCHAR* path, WCHAR* buffer, int limit);
BOOL SHCreateShortcut(const WCHAR* path, const WCHAR* target);

DWORD GetModuleFileNameW(HINSTANCE module, WCHAR* buffer, DWORD limit);
BOOL CreateProcessW(const WCHAR*, const WCHAR*, void*, void*, BOOL, DWORD, void*, WCHAR*, void*,
                    void*);
BOOL KernelIoControl(DWORD, void*, DWORD, void*, DWORD, DWORD*);
void SetCleanRebootFlag();

LONG RegOpenKeyExW(HKEY key, const WCHAR* subkey, DWORD options, DWORD access, HKEY* result);
LONG RegDeleteKeyW(HKEY key, const WCHAR* subkey);

inline constexpr DWORD kCaptionOkButton = 0x80000000;

struct SHMENUBARINFO {
    DWORD cbSize;
    HWND hwndParent;
    DWORD dwFlags;
    UINT nToolBarId;
    HINSTANCE hInstRes;
    int nBmpId;
    int cBmpImages;
    HWND hwndMB;
    COLORREF clrBk;
};

struct SHINITDLGINFO {
    DWORD dwMask;
    HWND hDlg;
    DWORD dwFlags;
};

ATOM RegisterClassW(const WNDCLASSW* windowClass);
HWND CreateWindowExW(DWORD extendedStyle, const WCHAR* className, const WCHAR* text, DWORD style,
                     int x, int y, int width, int height, HWND parent, HMENU menu,
                     HINSTANCE instance, void* parameter);
BOOL DestroyWindow(HWND window);
int MessageBoxW(HWND owner, const WCHAR* text, const WCHAR* caption, UINT type);
BOOL GetScrollInfo(HWND window, int bar, SCROLLINFO* info);
int SetScrollInfo(HWND window, int bar, const SCROLLINFO* info, BOOL redraw);
BOOL SHCreateMenuBar(SHMENUBARINFO* info);
BOOL SHInitDialog(const SHINITDLGINFO* info);
DWORD_PTR FileInfo(const WCHAR*, DWORD, SHFILEINFOW* info, UINT size, UINT flags);
void PressKey(BYTE, BYTE, DWORD, DWORD_PTR);  // keybd_event

}  // namespace handheld
