#pragma once

#include "core/window_operations.h"

// The procedure of the program's windows: scrolls the page, follows the tabs and routes commands;
// a command that it does not know itself goes to the screens as a control's. Returns 1 for what it
// handles, otherwise what the platform's own handling returns.
LRESULT MainWindowProc(HWND hWnd, UINT message, WPARAM wParam, LPARAM lParam);
