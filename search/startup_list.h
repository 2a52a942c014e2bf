#pragma once

#include "core/platform_types.h"

// Adds the names of the shortcuts in the StartUp folder to the list box. A folder that is not there
// or cannot be read has none.
void FillStartupList(HWND listBox);
