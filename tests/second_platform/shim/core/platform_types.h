#pragma once

#include <windows.h>
// After windows.h.
#include <commctrl.h>
#include <shellapi.h>

#include <cwchar>

#include "tests/second_platform/shim/handheld.h"

// The program's calls of what the handheld does in its own way lead to the shim.
#define CreateDirectoryW handheld::CreateDirectoryW
#define CreateProcessW handheld::CreateProcessW
#define CreateWindowExW handheld::CreateWindowExW
#define DeleteFileW handheld::DeleteFileW
#define DestroyWindow handheld::DestroyWindow
#define FindFirstFileW handheld::FindFirstFileW
#define FindNextFileW handheld::FindNextFileW
#define GetModuleFileNameW handheld::GetModuleFileNameW
#define GetScrollInfo handheld::GetScrollInfo
#define MessageBoxW handheld::MessageBoxW
#define MoveFileW handheld::MoveFileW
#define RegDeleteKeyW handheld::RegDeleteKeyW
#define RegOpenKeyExW handheld::RegOpenKeyExW
#define RegisterClassW handheld::RegisterClassW
#define RemoveDirectoryW handheld::RemoveDirectoryW
#define SetScrollInfo handheld::SetScrollInfo
#define WinMain HandheldWinMain
#define _wfopen handheld::OpenFile
#define keybd_event handheld::PressKey
#undef SHGetFileInfo
#define SHGetFileInfo handheld::FileInfo

// The program's own declarations of these have the types of the standard.
inline const WCHAR* HandheldWcsstr(const WCHAR* text, const WCHAR* part) {
    return std::wcsstr(text, part);
}
inline const WCHAR* HandheldWcsrchr(const WCHAR* text, WCHAR character) {
    return std::wcsrchr(text, character);
}
inline int HandheldWcsnicmp(const WCHAR* left, const WCHAR* right, std::size_t count) {
    return _wcsnicmp(left, right, count);
}
#define _wcsnicmp HandheldWcsnicmp
#define wcsrchr HandheldWcsrchr
#define wcsstr HandheldWcsstr

// The brush of one of the platform's own colours.
inline HBRUSH SystemColorBrush(DWORD color) {
    return reinterpret_cast<HBRUSH>(static_cast<DWORD_PTR>(color + 1));
}
