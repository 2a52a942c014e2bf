#include "engine/entry_looks.h"

#include <algorithm>

#include "core/found_entries.h"
#include "core/host_notes.h"

namespace {

Look LookFor(const WCHAR* path) {
    if (FoundEntries(path)) {
        return Look::Found;
    }
    if (LastWasNotThere()) {
        return Look::NotThere;
    }
    NoteLookFailed(path);
    return Look::Failed;
}

// Without the last character if that is one that does not count; else the same. A name of full
// stops alone is none without them.
WideView Shortened(WideView path) {
    const std::size_t end = path.find_last_not_of(TEXT('.'));
    const bool endsInName = end != WideView::npos && path[end] != TEXT('\\');
    const WideView uncounted = endsInName ? TEXT(" \t\\.") : TEXT(" \t\\");
    const bool isUncounted = !path.empty() && uncounted.find(path.back()) != WideView::npos;
    return path.substr(0, path.size() - (isUncounted ? 1 : 0));
}

}  // namespace

bool IsRootOrEmpty(WideView path) {
    return path.find_first_not_of(TEXT(" \t\\")) == WideView::npos;
}

bool EntryLooks::Find(WideView path) {
    // What is left of a path that was looked for was looked for as well.
    while (std::find(looked_.begin(), looked_.end(), path) == looked_.end()) {
        if (FindAsItStands(path)) {
            return true;
        }
        const WideView shorter = Shortened(path);
        if (HasWildcard(path) || IsRootOrEmpty(shorter)) {
            return false;
        }
        path = shorter;
    }
    return false;
}

bool EntryLooks::FindAsItStands(WideView path) {
    looked_.push_back(path);
    if (path.size() >= path_.size()) {
        return false;
    }
    *std::copy(path.begin(), path.end(), path_.begin()) = 0;
    const Look look = LookFor(path_.data());
    result_ = std::max(result_, look);
    return look == Look::Found;
}
