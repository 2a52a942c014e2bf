#include "engine/entry_lookup.h"

#include <algorithm>

#include "core/found_entries.h"
#include "core/host_notes.h"

namespace {

LookupResult LookUp(const WCHAR* path) {
    if (FoundEntries(path)) {
        return LookupResult::Found;
    }
    if (LastWasNotThere()) {
        return LookupResult::NotThere;
    }
    NoteLookupFailed(path);
    return LookupResult::Failed;
}

// The path without its last character if the handheld ignores that one at the end of a name, else
// the path itself. The full stops of a name that has nothing else are not ignored.
WideView Shortened(WideView path) {
    const std::size_t end = path.find_last_not_of(TEXT('.'));
    const bool endsInName = end != WideView::npos && path[end] != TEXT('\\');
    const WideView ignored = endsInName ? TEXT(" \t\\.") : TEXT(" \t\\");
    const bool endsIgnored = !path.empty() && ignored.find(path.back()) != WideView::npos;
    return path.substr(0, path.size() - (endsIgnored ? 1 : 0));
}

}  // namespace

bool IsRootOrEmpty(WideView path) {
    return path.find_first_not_of(TEXT(" \t\\")) == WideView::npos;
}

bool EntryLookup::Find(WideView path) {
    // If a path was looked up before, so were its shorter forms.
    while (std::find(tried_.begin(), tried_.end(), path) == tried_.end()) {
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

bool EntryLookup::FindAsItStands(WideView path) {
    tried_.push_back(path);
    if (path.size() >= path_.size()) {
        return false;
    }
    *std::copy(path.begin(), path.end(), path_.begin()) = 0;
    const LookupResult result = LookUp(path_.data());
    result_ = std::max(result_, result);
    return result == LookupResult::Found;
}
