#pragma once

#include "core/window_operations.h"

// The procedure of the program's windows: scrolls the page, changes tabs and carries out commands;
// a command that it does not know goes to the screens as a control's. Returns 1 for what it
// handles, otherwise the result of DefWindowProcW.
LRESULT MainWindowProc(HWND hWnd, UINT message, WPARAM wParam, LPARAM lParam);
