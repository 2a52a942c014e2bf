#include "engine/shortcut_target.h"

#include <algorithm>
#include <vector>

#include "engine/found_entries.h"

namespace {

constexpr WideView kBlanks = TEXT(" \t");
constexpr WideView kNotInNames = TEXT("/:*?\"<>|");
constexpr std::size_t kExtension = 3;  // characters of a usual one

bool BeginsWithPath(WideView text) {
    return text.substr(0, 2).find(TEXT('\\')) != WideView::npos;
}

WideView WithoutTrailing(WideView text, WideView characters) {
    return text.substr(0, text.find_last_not_of(characters) + 1);
}

bool IsRoot(WideView text) {
    return WithoutTrailing(WithoutTrailing(text, kBlanks), TEXT("\\")).empty();
}

// What stands between the quotes; all behind the first where there is no second.
WideView BetweenQuotes(WideView quoted) {
    return quoted.substr(1, quoted.find(TEXT('"'), 1) - 1);
}

// Looks for entries, and for no path twice: every look that finds nothing can cost the reading of a
// directory.
class PathLooks {
  public:
    // Whether the path names an entry, as it stands or without blanks or backslashes behind it. The
    // root does not count, and a character that no name has makes a path that names nothing, where
    // a search would take it for a wildcard.
    bool Finds(WideView path) {
        if (path.find_first_of(kNotInNames) != WideView::npos) {
            return false;
        }
        const WideView trimmed = WithoutTrailing(path, kBlanks);
        return FindsAsItStands(WithoutTrailing(trimmed, TEXT("\\"))) || FindsAsItStands(trimmed) ||
               FindsAsItStands(path);
    }

  private:
    bool FindsAsItStands(WideView path) {
        if (IsRoot(path) || path.size() >= path_.size() ||
            std::find(looked_.begin(), looked_.end(), path) != looked_.end()) {
            return false;
        }
        looked_.push_back(path);
        *std::copy(path.begin(), path.end(), path_.begin()) = 0;
        return static_cast<bool>(FoundEntries(path_.data()));
    }

    PathText path_;
    std::vector<WideView> looked_;
};

// The paths that a command line without a quote in front may begin with: all of it, and what stands
// in front of each of its blanks and quotes; shortest first.
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

// The likely ones come first, so that a shortcut that lives costs one look: arguments stand behind
// an extension, and a blank in front of the last backslash is one in a directory's name.
bool UnquotedTargetExists(WideView text, PathLooks& looks) {
    std::vector<WideView> paths = PossiblePaths(text);
    const std::size_t name = text.rfind(TEXT('\\'));
    const auto likelihood = [name](WideView path) {
        return EndsInExtension(path) ? 0 : path.size() > name ? 1 : 2;
    };
    std::stable_sort(paths.begin(), paths.end(),
                     [&](auto left, auto right) { return likelihood(left) < likelihood(right); });
    return std::any_of(paths.begin(), paths.end(),
                       [&looks](WideView path) { return looks.Finds(path); });
}

// The handheld itself puts the quotes round no more than the path's first word when it is given a
// path without quotes.
WideString WithoutQuotes(WideView text) {
    WideString plain(text);
    std::erase(plain, TEXT('"'));
    return plain;
}

bool QuotedTargetExists(WideView text, PathLooks& looks) {
    const WideString plain = WithoutQuotes(text);
    const WideView between = BetweenQuotes(text);
    if (looks.Finds(between) || looks.Finds(PathByExtension(text)) || looks.Finds(plain)) {
        return true;
    }
    const bool closed = text.find(TEXT('"'), 1) != WideView::npos;
    return !closed && UnquotedTargetExists(between, looks);
}

}  // namespace

WideView PathByExtension(WideView quoted) {
    WideView path = quoted.substr(std::min<std::size_t>(1, quoted.size()));
    path.remove_suffix(path.empty() ? 0 : 1);
    const std::size_t stop = path.rfind(TEXT('.'));
    // A last full stop with three characters behind it makes this cut none at all.
    return stop == WideView::npos ? path : path.substr(0, stop + 1 + kExtension);
}

bool CommandLineTargetExists(WideView commandLine) {
    if (!BeginsWithPath(commandLine)) {
        return true;
    }
    const bool quoted = commandLine.front() == TEXT('"');
    if (IsRoot(quoted ? BetweenQuotes(commandLine) : commandLine)) {
        return true;
    }
    PathLooks looks;
    return quoted ? QuotedTargetExists(commandLine, looks)
                  : UnquotedTargetExists(commandLine, looks);
}
