#include "search/tree_search.h"

#include <cstdint>

#include "core/tree_level.h"
#include "core/window_operations.h"
#include "search/search_indicator.h"

namespace {

constexpr std::size_t kExtension = 3;  // characters that count
constexpr std::int32_t kVisible = 32;  // characters that fit a list without scrolling
constexpr WPARAM kCharacterWidth = 6;  // pixels

// The length in characters of the longest path that each kind of search has listed; it only grows.
std::int32_t g_LongestDirectory = kVisible;
std::int32_t g_LongestFile = kVisible;

// The formats that join a directory's path and a name. The root already ends in a backslash.
struct PathFormats {
    const WCHAR* pattern;
    const WCHAR* directory;  // of a listed directory
    const WCHAR* entry;      // of a listed file and of the next level
};
constexpr PathFormats kAtRoot = {TEXT("%s*"), TEXT("%s%s\\"), TEXT("%s%s")};
constexpr PathFormats kBelow = {TEXT("%s\\*"), TEXT("%s\\%s\\"), TEXT("%s\\%s")};

const PathFormats& FormatsOf(const WCHAR* path) {
    return path[0] == TEXT('\\') && path[1] == 0 ? kAtRoot : kBelow;
}

// The list scrolls sideways as far as the longest path that was ever in it.
void List(HWND listBox, const WCHAR* text, std::int32_t& longest) {
    SendMessageW(listBox, LB_ADDSTRING, 0, reinterpret_cast<LPARAM>(text));
    const auto length = static_cast<std::int32_t>(wcslen(text));
    if (length > longest) {
        longest = length;
        SendMessageW(listBox, LB_SETHORIZONTALEXTENT, static_cast<WPARAM>(length) * kCharacterWidth,
                     0);
    }
}

// Calls `handle` for each entry of the directory with the level, whose search is at that entry.
template <typename Handle>
void Enumerate(const WCHAR* path, Handle handle) {
    BeginSearch();
    {
        const auto level = NewLevel();
        for (level->Open(FormatsOf(path).pattern, path); level->entries; level->entries.Next()) {
            handle(*level);
        }
    }
    EndSearch();
}

bool Put(TreeLevel& level, const WCHAR* form, const WCHAR* path) {
    return FormatText(level.path, form, {path, level.entries.name()});
}

bool IsTemporary(const WCHAR* name) {
    return wcsstr(name, TEXT("Temp")) != nullptr || wcsstr(name, TEXT("temp")) != nullptr;
}

bool HasExtension(const WCHAR* name, const WCHAR* extension) {
    const WCHAR* const stop = wcsrchr(name, TEXT('.'));
    return stop != nullptr && _wcsnicmp(extension, stop + 1, kExtension) == 0;
}

}  // namespace

// NOLINTNEXTLINE(misc-no-recursion)
void SearchTempDirectories(HWND listBox, const WCHAR* path) {
    const PathFormats& formats = FormatsOf(path);
    // NOLINTNEXTLINE(misc-no-recursion)
    Enumerate(path, [&](TreeLevel& level) {
        if (!level.entries.isDirectory() || level.entries.isHidden()) {
            return;
        }
        if (IsTemporary(level.entries.name()) && Put(level, formats.directory, path)) {
            List(listBox, level.path.data(), g_LongestDirectory);
        }
        if (Put(level, formats.entry, path)) {
            SearchTempDirectories(listBox, level.path.data());
        }
    });
}

// NOLINTNEXTLINE(misc-no-recursion)
void SearchFiles(HWND listBox, const WCHAR* extension, const WCHAR* path) {
    if (extension == nullptr) {
        return;
    }
    const PathFormats& formats = FormatsOf(path);
    // NOLINTNEXTLINE(misc-no-recursion)
    Enumerate(path, [&](TreeLevel& level) {
        const bool isEntered = level.entries.isDirectory() && !level.entries.isHidden();
        if (isEntered && Put(level, formats.entry, path)) {
            SearchFiles(listBox, extension, level.path.data());
        } else if (!isEntered && HasExtension(level.entries.name(), extension) &&
                   Put(level, formats.entry, path)) {
            List(listBox, level.path.data(), g_LongestFile);
        }
    });
}
