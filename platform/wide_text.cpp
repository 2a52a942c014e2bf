#include "core/wide_text.h"

#include <string>

std::size_t wcslen(const WCHAR* text) {
    return std::char_traits<WCHAR>::length(text);
}

std::size_t wcsspn(const WCHAR* text, const WCHAR* set) {
    const std::size_t setLength = wcslen(set);
    std::size_t count = 0;
    while (text[count] != 0 &&
           std::char_traits<WCHAR>::find(set, setLength, text[count]) != nullptr) {
        ++count;
    }
    return count;
}
