#include "core/wide_text.h"

#include <string>

#include "platform/text/name_matching.h"

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

const WCHAR* wcsstr(const WCHAR* text, const WCHAR* part) {
    const WideView whole(text);
    const std::size_t found = whole.find(part);
    return found == WideView::npos ? nullptr : text + found;
}

const WCHAR* wcsrchr(const WCHAR* text, WCHAR character) {
    const WideView whole(text, wcslen(text) + 1);
    const std::size_t found = whole.rfind(character);
    return found == WideView::npos ? nullptr : text + found;
}

int _wcsnicmp(const WCHAR* left, const WCHAR* right, std::size_t count) {
    for (; count > 0; --count, ++left, ++right) {
        const int difference = platform::FoldUnit(*left) - platform::FoldUnit(*right);
        if (difference != 0 || *left == 0) {
            return difference;
        }
    }
    return 0;
}
