#pragma once

#include "core/window_operations.h"
#include "screens/control_list.h"

// The box that says what the program is: a top-level window with one label, which leaves the menu
// bar free. There is one at most.

extern HWND g_AboutWindow;            // null while none is open
extern CControlList g_AboutControls;  // what stands in it

// Opens the box, unless it is open. A failure is told in a box.
void OpenAboutBox();

// Closes the box, if it is open.
void CloseAboutBox();
