#include "platform/text/name_matching.h"

#include <utf8proc.h>

#include <algorithm>

namespace platform {

WCHAR FoldUnit(WCHAR unit) {
    if (unit < 0x80) {
        return unit >= u'a' && unit <= u'z' ? static_cast<WCHAR>(unit - u'a' + u'A') : unit;
    }
    const utf8proc_int32_t upper = utf8proc_toupper(unit);
    return upper < 0x80 || upper > 0xFFFF ? unit : static_cast<WCHAR>(upper);
}

bool SameName(std::u16string_view left, std::u16string_view right) {
    return std::equal(left.begin(), left.end(), right.begin(), right.end(),
                      [](WCHAR a, WCHAR b) { return FoldUnit(a) == FoldUnit(b); });
}

std::uint32_t NameHash(std::u16string_view name) {
    std::uint32_t hash = 2166136261U;
    for (const WCHAR unit : name) {
        hash = (hash ^ FoldUnit(unit)) * 16777619U;
    }
    return hash ^ hash >> 15;
}

bool MatchesPattern(std::u16string_view pattern, std::u16string_view name) {
    std::size_t at = 0;
    std::size_t place = 0;
    std::size_t star = std::u16string_view::npos;
    std::size_t starPlace = 0;
    while (place < name.size()) {
        if (at < pattern.size() && pattern[at] == u'*') {
            star = at++;
            starPlace = place;
        } else if (at < pattern.size() &&
                   (pattern[at] == u'?' || FoldUnit(pattern[at]) == FoldUnit(name[place]))) {
            ++at;
            ++place;
        } else if (star != std::u16string_view::npos) {
            at = star + 1;
            place = ++starPlace;
        } else {
            return false;
        }
    }
    const std::u16string_view rest = pattern.substr(at);
    return rest.empty() ||
           (rest.back() == u'*' && rest.find_first_not_of(u".*") == std::u16string_view::npos);
}

}  // namespace platform
