#pragma once

#include "core/plain_types.h"

// The operations through which the program reaches the handheld's windows.

inline constexpr UINT MB_OK = 0x0;

inline constexpr int IDOK = 1;

// Makes the common controls known. Opens nothing.
void InitCommonControls();

// Shows `text` under `caption` with the buttons that `type` names and waits until the user has
// chosen one; returns its ID. `owner` is null: the program's boxes belong to no window.
int MessageBoxW(HWND owner, const WCHAR* text, const WCHAR* caption, UINT type);
