#pragma once

#include <windows.h>
// After windows.h.
#include <commctrl.h>
#include <shellapi.h>

#include <cwchar>

// The program's own declarations of these are kept: they have no other names for wide characters,
// and types of the standard.
#undef KEYEVENTF_KEYUP
#define SHFILEINFO HandheldFileInfo
#undef SHGFI_SMALLICON
#undef SHGFI_SYSICONINDEX
#undef SHGetFileInfo
inline const WCHAR* HandheldWcsstr(const WCHAR* text, const WCHAR* part) {
    return std::wcsstr(text, part);
}
inline const WCHAR* HandheldWcsrchr(const WCHAR* text, WCHAR character) {
    return std::wcsrchr(text, character);
}
inline int HandheldWcsnicmp(const WCHAR* left, const WCHAR* right, std::size_t count) {
    return _wcsnicmp(left, right, count);
}
#define WinMain HandheldWinMain
#define _wcsnicmp HandheldWcsnicmp
#define wcsrchr HandheldWcsrchr
#define wcsstr HandheldWcsstr

// A device of the tests has no other programs.
template <typename... Arguments>
BOOL StartNoProcess(Arguments...) {
    SetLastError(ERROR_FILE_NOT_FOUND);
    return FALSE;
}
#define CreateProcessW StartNoProcess

// The brush of one of the platform's own colours.
inline HBRUSH SystemColorBrush(DWORD color) {
    return reinterpret_cast<HBRUSH>(static_cast<DWORD_PTR>(color + 1));
}
