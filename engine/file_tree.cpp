#include "engine/file_tree.h"

#include <memory>

#include "core/wide_text.h"
#include "engine/apply_sequence.h"
#include "engine/directory_paths.h"
#include "engine/found_entries.h"

namespace {

// What one level of a tree needs while it is walked. It lives on the heap, because a tree can be as
// deep as a path is long.
struct WalkLevel {
    // Starts the walk; `format` makes the search pattern of `directory`.
    void Open(const WCHAR* format, const WCHAR* directory) {
        if (FormatText(path, format, {directory})) {
            entries.Open(path.data());
        }
    }

    PathText path;
    PathText destination;
    FoundEntries entries;
};

std::unique_ptr<WalkLevel> NewLevel() {
    return std::unique_ptr<WalkLevel>(new WalkLevel);
}

bool EndsInBackslash(const WCHAR* path) {
    const std::size_t length = wcslen(path);
    return length > 0 && path[length - 1] == TEXT('\\');
}

void DeleteFoundFile(const WCHAR* directory, WalkLevel& level) {
    if (FormatText(level.path, TEXT("%s%s"), {directory, level.entries.name()}) &&
        DeleteFileW(level.path.data()) != 0) {
        BytesCleaned += level.entries.sizeLow();
    }
}

// NOLINTNEXTLINE(misc-no-recursion)
void DeleteFoundDirectory(const WCHAR* directory, WalkLevel& level, bool removeDirectories) {
    if (!FormatText(level.path, TEXT("%s%s\\"), {directory, level.entries.name()})) {
        return;
    }
    DeleteTree(level.path.data(), true, removeDirectories);
    if (removeDirectories &&
        FormatText(level.path, TEXT("%s%s"), {directory, level.entries.name()})) {
        RemoveDirectoryW(level.path.data());
    }
}

void MoveFoundFile(const WCHAR* source, const WCHAR* destination, WalkLevel& level) {
    if (FormatText(level.path, TEXT("%s\\%s"), {source, level.entries.name()}) &&
        FormatText(level.destination, TEXT("%s%s"), {destination, level.entries.name()})) {
        MoveFileW(level.path.data(), level.destination.data());
    }
}

// Makes sure that the found directory stands at the destination and leaves its path there in
// level.destination, spelt as it is there. Returns false when it does not, or when moving into it
// would move a directory into itself.
bool PrepareFoundDirectory(const WCHAR* source, const WCHAR* destination, WalkLevel& level) {
    if (!FormatText(level.path, TEXT("%s\\%s"), {source, level.entries.name()}) ||
        IsSameOrInside(destination, level.path.data()) ||
        !FormatText(level.destination, TEXT("%s%s"), {destination, level.entries.name()})) {
        return false;
    }
    if (CreateDirectoryW(level.destination.data(), nullptr) != 0) {
        return true;
    }
    const FoundEntries standing(level.destination.data());
    return standing && standing.isDirectory() &&
           FormatText(level.destination, TEXT("%s%s"), {destination, standing.name()}) &&
           !IsSameOrInside(source, level.destination.data());
}

void MoveEntries(const WCHAR* source, const WCHAR* destination);

// NOLINTNEXTLINE(misc-no-recursion)
void MoveFoundDirectory(const WCHAR* source, const WCHAR* destination, WalkLevel& level) {
    if (!PrepareFoundDirectory(source, destination, level) || !AppendBackslash(level.destination)) {
        return;
    }
    MoveEntries(level.path.data(), level.destination.data());
    // Fails while anything that could not be moved is still in it, and so loses nothing.
    RemoveDirectoryW(level.path.data());
}

// Both paths are canonical, the destination with a backslash behind it.
// NOLINTNEXTLINE(misc-no-recursion)
void MoveEntries(const WCHAR* source, const WCHAR* destination) {
    const auto level = NewLevel();
    for (level->Open(TEXT("%s\\*"), source); level->entries; level->entries.Next()) {
        if (level->entries.isDirectory()) {
            MoveFoundDirectory(source, destination, *level);
        } else {
            MoveFoundFile(source, destination, *level);
        }
    }
}

}  // namespace

// NOLINTNEXTLINE(misc-no-recursion)
void DeleteTree(const WCHAR* directory, bool recurse, bool removeDirectories) {
    if (!EndsInBackslash(directory)) {
        return;
    }
    const auto level = NewLevel();
    for (level->Open(TEXT("%s*"), directory); level->entries; level->entries.Next()) {
        if (!level->entries.isDirectory()) {
            DeleteFoundFile(directory, *level);
        } else if (recurse) {
            DeleteFoundDirectory(directory, *level, removeDirectories);
        }
    }
}

void MoveTree(const WCHAR* source, const WCHAR* destination) {
    // The same directory can be spelt in many ways, and after one move the next one finds source
    // and destination at the same place; only their canonical paths can be compared.
    const auto from = std::make_unique<PathText>();
    const auto to = std::make_unique<PathText>();
    if (CanonicalDirectory(source, *from) && CanonicalDirectory(destination, *to) && *from != *to &&
        AppendBackslash(*to)) {
        MoveEntries(from->data(), to->data());
    }
}
