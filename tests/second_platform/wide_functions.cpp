// The C library's functions for wide text under the names that the program's declarations have got.

#include <cwchar>

const wchar_t* handheld_wcsstr(const wchar_t* text, const wchar_t* part) {
    return std::wcsstr(text, part);
}

const wchar_t* handheld_wcsrchr(const wchar_t* text, wchar_t character) {
    return std::wcsrchr(text, character);
}

int handheld_wcsnicmp(const wchar_t* left, const wchar_t* right, std::size_t count) {
    return _wcsnicmp(left, right, count);
}
