#include "engine/shortcut_target.h"

#include <algorithm>
#include <string>
#include <vector>

#include "core/wide_text.h"
#include "engine/found_entries.h"

namespace {

constexpr std::u16string_view kBlanks = u" \t";
constexpr std::u16string_view kNotInNames = u"/:*?\"<>|";
constexpr std::size_t kExtension = 3;  // characters of a usual one

bool BeginsWithPath(std::u16string_view text) {
    return text.substr(0, 2).find(u'\\') != std::u16string_view::npos;
}

std::u16string_view WithoutTrailing(std::u16string_view text, std::u16string_view characters) {
    return text.substr(0, text.find_last_not_of(characters) + 1);
}

bool IsRoot(std::u16string_view text) {
    return WithoutTrailing(WithoutTrailing(text, kBlanks), u"\\").empty();
}

// What stands between the quotes; all behind the first where there is no second.
std::u16string_view BetweenQuotes(std::u16string_view quoted) {
    return quoted.substr(1, quoted.find(u'"', 1) - 1);
}

// Looks for entries, and for no path twice: every look that finds nothing can cost the reading of a
// directory.
class PathLooks {
  public:
    // Whether the path names an entry, as it stands or without blanks or backslashes behind it. The
    // root does not count, and a character that no name has makes a path that names nothing, where
    // a search would take it for a wildcard.
    bool Finds(std::u16string_view path) {
        if (path.find_first_of(kNotInNames) != std::u16string_view::npos) {
            return false;
        }
        const std::u16string_view trimmed = WithoutTrailing(path, kBlanks);
        return FindsAsItStands(WithoutTrailing(trimmed, u"\\")) || FindsAsItStands(trimmed) ||
               FindsAsItStands(path);
    }

  private:
    bool FindsAsItStands(std::u16string_view path) {
        if (IsRoot(path) || path.size() >= path_.size() ||
            std::find(looked_.begin(), looked_.end(), path) != looked_.end()) {
            return false;
        }
        looked_.push_back(path);
        *std::copy(path.begin(), path.end(), path_.begin()) = 0;
        return static_cast<bool>(FoundEntries(path_.data()));
    }

    PathText path_;
    std::vector<std::u16string_view> looked_;
};

// The paths that a command line without a quote in front may begin with: all of it, and what stands
// in front of each of its blanks and quotes; shortest first.
std::vector<std::u16string_view> PossiblePaths(std::u16string_view text) {
    std::vector<std::u16string_view> paths;
    constexpr std::u16string_view ends = u" \t\"";
    for (std::size_t end = text.find_first_of(ends); end != std::u16string_view::npos;
         end = text.find_first_of(ends, end + 1)) {
        paths.push_back(text.substr(0, end));
    }
    paths.push_back(text);
    return paths;
}

bool EndsInExtension(std::u16string_view path) {
    const std::size_t stop = path.find_last_of(u".\\");
    return stop != std::u16string_view::npos && path[stop] == u'.';
}

// The likely ones come first, so that a shortcut that lives costs one look: arguments stand behind
// an extension, and a blank in front of the last backslash is one in a directory's name.
bool UnquotedTargetExists(std::u16string_view text, PathLooks& looks) {
    std::vector<std::u16string_view> paths = PossiblePaths(text);
    const std::size_t name = text.rfind(u'\\');
    const auto likelihood = [name](std::u16string_view path) {
        return EndsInExtension(path) ? 0 : path.size() > name ? 1 : 2;
    };
    std::stable_sort(paths.begin(), paths.end(),
                     [&](auto left, auto right) { return likelihood(left) < likelihood(right); });
    return std::any_of(paths.begin(), paths.end(),
                       [&looks](std::u16string_view path) { return looks.Finds(path); });
}

// The handheld itself puts the quotes round no more than the path's first word when it is given a
// path without quotes.
std::u16string WithoutQuotes(std::u16string_view text) {
    std::u16string plain(text);
    std::erase(plain, u'"');
    return plain;
}

bool QuotedTargetExists(std::u16string_view text, PathLooks& looks) {
    const std::u16string plain = WithoutQuotes(text);
    const std::u16string_view between = BetweenQuotes(text);
    if (looks.Finds(between) || looks.Finds(PathByExtension(text)) || looks.Finds(plain)) {
        return true;
    }
    const bool closed = text.find(u'"', 1) != std::u16string_view::npos;
    return !closed && UnquotedTargetExists(between, looks);
}

}  // namespace

std::u16string_view PathByExtension(std::u16string_view quoted) {
    std::u16string_view path = quoted.substr(std::min<std::size_t>(1, quoted.size()));
    path.remove_suffix(path.empty() ? 0 : 1);
    const std::size_t stop = path.rfind(u'.');
    // A last full stop with three characters behind it makes this cut none at all.
    return stop == std::u16string_view::npos ? path : path.substr(0, stop + 1 + kExtension);
}

bool CommandLineTargetExists(std::u16string_view commandLine) {
    if (!BeginsWithPath(commandLine)) {
        return true;
    }
    const bool quoted = commandLine.front() == u'"';
    if (IsRoot(quoted ? BetweenQuotes(commandLine) : commandLine)) {
        return true;
    }
    PathLooks looks;
    return quoted ? QuotedTargetExists(commandLine, looks)
                  : UnquotedTargetExists(commandLine, looks);
}
