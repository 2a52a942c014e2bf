#pragma once

#include "core/window_operations.h"
#include "screens/control_list.h"

// The About box: a top-level window with one label that leaves the menu bar free. Only one is open
// at a time.

extern HWND g_AboutWindow;            // null while none is open
extern CControlList g_AboutControls;  // its controls

// Opens the box, unless it is open. A failure is reported in a box.
void OpenAboutBox();

// Closes the box, if it is open.
void CloseAboutBox();
