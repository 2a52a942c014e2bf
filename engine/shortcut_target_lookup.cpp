#include "engine/shortcut_target_lookup.h"

#include <algorithm>
#include <vector>

namespace {

constexpr WideView kNotInNames = TEXT("/:\"<>|");
constexpr std::size_t kExtension = 3;  // characters of a usual one

bool BeginsWithPath(WideView text) {
    return text.substr(0, 2).find(TEXT('\\')) != WideView::npos;
}

// The text between the quotes; everything after the first if there is no second.
WideView BetweenQuotes(WideView quoted) {
    return quoted.substr(1, quoted.find(TEXT('"'), 1) - 1);
}

// The path that its extension ends: without the first and the last character, and without what
// follows the third character after the last full stop.
WideView PathByExtension(WideView quoted) {
    WideView path = quoted.substr(std::min<std::size_t>(1, quoted.size()));
    path.remove_suffix(path.empty() ? 0 : 1);
    const std::size_t stop = path.rfind(TEXT('.'));
    return stop == WideView::npos ? path : path.substr(0, stop + 1 + kExtension);
}

// No name has these characters, so no pattern with them matches either; to look it up could mean to
// read a directory.
bool Find(WideView path, EntryLookup& lookup) {
    return !IsRootOrEmpty(path) && path.find_first_of(kNotInNames) == WideView::npos &&
           lookup.Find(path);
}

// The paths that a command line without an opening quote may begin with: all of it, and what
// precedes each of its blanks and quotes; shortest first.
std::vector<WideView> PossiblePaths(WideView text) {
    std::vector<WideView> paths;
    constexpr WideView ends = TEXT(" \t\"");
    for (std::size_t end = text.find_first_of(ends); end != WideView::npos;
         end = text.find_first_of(ends, end + 1)) {
        paths.push_back(text.substr(0, end));
    }
    paths.push_back(text);
    return paths;
}

bool EndsInExtension(WideView path) {
    const std::size_t stop = path.find_last_of(TEXT(".\\"));
    return stop != WideView::npos && path[stop] == TEXT('.');
}

// Tries the likely paths first, so that a working shortcut takes one look-up: arguments follow an
// extension, and a blank before the last backslash belongs to the name of a directory.
void LookUpUnquoted(WideView text, EntryLookup& lookup) {
    std::vector<WideView> paths = PossiblePaths(text);
    const std::size_t name = text.rfind(TEXT('\\'));
    const auto likelihood = [name](WideView path) {
        return EndsInExtension(path) ? 0 : path.size() > name ? 1 : 2;
    };
    std::stable_sort(paths.begin(), paths.end(),
                     [&](auto left, auto right) { return likelihood(left) < likelihood(right); });
    for (const WideView path : paths) {
        const bool isPart = path.size() < text.size();
        if (!(isPart && HasWildcard(path)) && Find(path, lookup)) {
            return;
        }
    }
}

// The handheld itself, given a path without quotes, puts quotes around its first word alone.
WideString WithoutQuotes(WideView text) {
    WideString plain(text);
    std::erase(plain, TEXT('"'));
    return plain;
}

void LookUpQuoted(WideView text, EntryLookup& lookup) {
    const WideString plain = WithoutQuotes(text);
    const WideView between = BetweenQuotes(text);
    const WideView paths[] = {between, PathByExtension(text), plain};
    const bool closed = text.find(TEXT('"'), 1) != WideView::npos;
    const bool found = std::any_of(std::begin(paths), std::end(paths),
                                   [&lookup](WideView path) { return Find(path, lookup); });
    if (!found && !closed) {
        LookUpUnquoted(between, lookup);
    }
}

}  // namespace

LookupResult LookUpTarget(WideView commandLine) {
    if (!BeginsWithPath(commandLine)) {
        return LookupResult::Found;
    }
    const bool quoted = commandLine.front() == TEXT('"');
    if (IsRootOrEmpty(quoted ? BetweenQuotes(commandLine) : commandLine)) {
        return LookupResult::Found;
    }
    EntryLookup lookup;
    quoted ? LookUpQuoted(commandLine, lookup) : LookUpUnquoted(commandLine, lookup);
    return lookup.result();
}
