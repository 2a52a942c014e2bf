#pragma once

#include <cstdint>

// The handheld platform's plain types, under its own names. A wide character is one UTF-16 code
// unit whatever the compiler's own wide type is; TEXT makes literals of it.
using BOOL = int;
using BYTE = std::uint8_t;
using DWORD = std::uint32_t;
using UINT = std::uint32_t;
using LONG = std::int32_t;
using WCHAR = char16_t;
using HANDLE = void*;
using HINSTANCE = HANDLE;
using HWND = HANDLE;

#define TEXT(text) u##text
