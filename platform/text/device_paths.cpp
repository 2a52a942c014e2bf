#include "platform/text/device_paths.h"

#include <algorithm>

namespace platform {

SplitPath SplitAtName(std::u16string_view path) {
    const std::size_t last = path.find_last_not_of(u'\\');
    const std::size_t end = last == std::u16string_view::npos ? 0 : last + 1;
    const std::size_t backslash = path.substr(0, end).rfind(u'\\');
    const std::size_t begin = backslash == std::u16string_view::npos ? 0 : backslash + 1;
    return {path.substr(0, begin), path.substr(begin, end - begin), end < path.size()};
}

std::vector<std::u16string_view> ComponentsOf(std::u16string_view path) {
    std::vector<std::u16string_view> components;
    std::size_t begin = path.find_first_not_of(u'\\');
    while (begin != std::u16string_view::npos) {
        const std::size_t end = std::min(path.find(u'\\', begin), path.size());
        components.push_back(path.substr(begin, end - begin));
        begin = path.find_first_not_of(u'\\', end);
    }
    return components;
}

std::u16string CanonicalPath(std::u16string_view path) {
    std::u16string canonical;
    canonical.reserve(path.size() + 1);
    bool isBegun = false;  // a component
    for (const char16_t unit : path) {
        if (unit != u'\\' && !isBegun) {
            canonical += u'\\';
        }
        isBegun = unit != u'\\';
        if (isBegun) {
            canonical += unit;
        }
    }
    return canonical.empty() && !path.empty() ? u"\\" : canonical;
}

}  // namespace platform
