#pragma once

#include "core/window_operations.h"

// What all windows of the program are made with.

// Makes a window class known, in the place of one of the same name that an earlier run, or an
// earlier showing of the same window, has left. `color` is the system's number of its background.
void ReplaceClass(const WCHAR* name, WNDPROC procedure, DWORD color = COLOR_WINDOW);

// Makes a top-level window of a class of the program's own, with an OK on its caption, on the whole
// screen. Null on failure.
HWND CreateTopLevel(const WCHAR* className, const WCHAR* title);

// Makes a visible child without an ID, at `place` in its parent's client area. Null on failure.
HWND CreateChild(const WCHAR* className, const WCHAR* text, DWORD style, const RECT& place,
                 HWND parent);

// Shows a window, painted, before it returns.
void PaintAndShow(HWND window);
