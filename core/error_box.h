#pragma once

#include "core/window_operations.h"

// Reports a failure to the user and waits for OK.
inline void ShowError(const WCHAR* text) {
    MessageBoxW(nullptr, text, TEXT("Error"), MB_OK);
}
