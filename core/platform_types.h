#pragma once

#include <cstdint>

// The handheld platform's plain types, under its own names. A wide character is one UTF-16 code
// unit whatever the compiler's own wide type is; TEXT makes literals of it.
using BOOL = int;
using BYTE = std::uint8_t;
using WORD = std::uint16_t;
using DWORD = std::uint32_t;
using UINT = std::uint32_t;
using LONG = std::int32_t;
using WCHAR = char16_t;
using DWORD_PTR = std::uintptr_t;

// The arguments and the result of a message: numbers, or pointers to what its contract names.
using WPARAM = std::uintptr_t;
using LPARAM = std::intptr_t;
using LRESULT = std::intptr_t;

// Handles are opaque; null is none.
using HANDLE = void*;
using HINSTANCE = HANDLE;
using HWND = HANDLE;
using HMENU = HANDLE;
using HBRUSH = HANDLE;
using HICON = HANDLE;
using HCURSOR = HANDLE;
using HRGN = HANDLE;
using HTREEITEM = HANDLE;
using COLORREF = DWORD;

inline constexpr BOOL FALSE = 0;
inline constexpr BOOL TRUE = 1;

struct POINT {
    LONG x;
    LONG y;
};

// In pixels; right and bottom are exclusive.
struct RECT {
    LONG left;
    LONG top;
    LONG right;
    LONG bottom;
};

// The two halves of the low 32 bits of a value, and a value of two halves.
constexpr WORD LOWORD(DWORD_PTR value) {
    return static_cast<WORD>(value & 0xFFFF);
}
constexpr WORD HIWORD(DWORD_PTR value) {
    return static_cast<WORD>((value >> 16) & 0xFFFF);
}
constexpr DWORD MAKELONG(WORD low, WORD high) {
    return static_cast<DWORD>(low) | static_cast<DWORD>(high) << 16;
}

#define TEXT(text) u##text
