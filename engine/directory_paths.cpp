#include "engine/directory_paths.h"

#include <algorithm>
#include <memory>

#include "core/found_entries.h"

namespace {

// Replaces the text from `end` on by a backslash and `name` and returns whether it fitted.
bool PutName(PathText& path, std::size_t end, WideView name) {
    if (end + 1 + name.size() >= path.size()) {
        return false;
    }
    path[end] = TEXT('\\');
    std::copy(name.begin(), name.end(), path.begin() + static_cast<std::ptrdiff_t>(end) + 1);
    path[end + 1 + name.size()] = 0;
    return true;
}

// Appends the directory's name as the file tree spells it. The search ends in a backslash, so that
// it finds neither a file nor what a pattern matches.
bool AppendDirectory(PathText& path, WideView name) {
    const std::size_t end = wcslen(path.data());
    if (!PutName(path, end, name) || !AppendBackslash(path)) {
        return false;
    }
    const FoundEntries found(path.data());
    return found && PutName(path, end, found.name());
}

}  // namespace

bool CanonicalDirectory(const WCHAR* path, PathText& canonical) {
    const WideView text(path);
    canonical[0] = 0;
    std::size_t begin = text.find_first_not_of(TEXT('\\'));
    while (begin != WideView::npos) {
        const std::size_t end = std::min(text.find(TEXT('\\'), begin), text.size());
        if (!AppendDirectory(canonical, text.substr(begin, end - begin))) {
            return false;
        }
        begin = text.find_first_not_of(TEXT('\\'), end);
    }
    return !text.empty() || FoundEntries(path);
}

bool IsSameOrInside(const WCHAR* inner, const WCHAR* outer) {
    const WideView inside(inner);
    const WideView whole(outer);
    return inside.starts_with(whole) &&
           (inside.size() == whole.size() || inside[whole.size()] == TEXT('\\'));
}

bool AppendBackslash(PathText& path) {
    const std::size_t end = wcslen(path.data());
    if (end + 1 >= path.size()) {
        return false;
    }
    path[end] = TEXT('\\');
    path[end + 1] = 0;
    return true;
}
