#pragma once

#include "core/window_operations.h"

// Tells the user about a failure and waits until that has been seen.
inline void ShowError(const WCHAR* text) {
    MessageBoxW(nullptr, text, TEXT("Error"), MB_OK);
}
