#pragma once

#include "core/window_operations.h"

// The functions with which the program makes its windows.

// Registers a window class, in place of one with the same name that an earlier window has left.
// `color` is the system's number of its background.
void ReplaceClass(const WCHAR* name, WNDPROC procedure, DWORD color = COLOR_WINDOW);

// Makes a top-level window of one of the program's classes, with an OK on its caption, on the whole
// screen. Null on failure.
HWND CreateTopLevel(const WCHAR* className, const WCHAR* title);

// Makes a visible child without an ID, at `place` in its parent's client area. Null on failure.
HWND CreateChild(const WCHAR* className, const WCHAR* text, DWORD style, const RECT& place,
                 HWND parent);

// Paints and shows a window.
void PaintAndShow(HWND window);
