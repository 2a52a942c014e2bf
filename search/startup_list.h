#pragma once

#include "core/platform_types.h"

// Adds the names of the shortcuts in the StartUp folder to the list box; none if the folder is not
// there or cannot be read.
void FillStartupList(HWND listBox);
