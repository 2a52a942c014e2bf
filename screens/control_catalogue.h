#pragma once

#include <span>

#include "core/platform_types.h"

// The class and the exact style of a kind of control.
struct ControlKind {
    const WCHAR* className;
    DWORD style;
};

// One control of a screen, in pixels of the display window at scroll position 0.
struct CatalogueControl {
    const ControlKind& kind;
    const WCHAR* text;
    int x;
    int y;
    int width;
    int height;
    WORD id;                          // 0: none
    void (*prepare)(HWND) = nullptr;  // adds its initial content; null: none
};

struct CatalogueScreen {
    std::span<const CatalogueControl> controls;  // in the order of creation and of item indices
    UINT height;                                 // of the content, in pixels
};

// The six screens, in the order of their tabs.
std::span<const CatalogueScreen> Catalogue();
