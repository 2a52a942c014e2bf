#pragma once

#include <windows.h>
// After windows.h.
#include <commctrl.h>
#include <shellapi.h>

#include <cwchar>

#include "tests/second_platform/handheld.h"

// The program's calls of what the handheld does in its own way lead to the shim.
#define CreateDialogIndirectParamW handheld::CreateDialogIndirectParamW
#define CreateDirectoryW handheld::CreateDirectoryW
#define CreateProcessW handheld::CreateProcessW
#define CreateWindowExW handheld::CreateWindowExW
#define DeleteFileW handheld::DeleteFileW
#define FindFirstFileW handheld::FindFirstFileW
#define FindNextFileW handheld::FindNextFileW
#define GetModuleFileNameW handheld::GetModuleFileNameW
#define GetScrollInfo handheld::GetScrollInfo
#define MessageBoxW handheld::MessageBoxW
#define MoveFileW handheld::MoveFileW
#define RegDeleteKeyW handheld::RegDeleteKeyW
#define RegEnumKeyExW handheld::RegEnumKeyExW
#define RegOpenKeyExW handheld::RegOpenKeyExW
#define RegQueryValueExW handheld::RegQueryValueExW
#define RegSetValueExW handheld::RegSetValueExW
#define RegisterClassW handheld::RegisterClassW
#define RemoveDirectoryW handheld::RemoveDirectoryW
#define SetScrollInfo handheld::SetScrollInfo
#define WinMain handheldWinMain
#define _wcsnicmp handheld_wcsnicmp
#define _wfopen handheld::OpenFile
#define keybd_event handheld::PressKey
#define wcsrchr handheld_wcsrchr
#define wcsstr handheld_wcsstr
#undef SHGetFileInfo
#define SHGetFileInfo handheld::FileInfo

// The brush of one of the platform's own colours.
inline HBRUSH SystemColorBrush(DWORD color) {
    return reinterpret_cast<HBRUSH>(static_cast<DWORD_PTR>(color + 1));
}
