#include "engine/file_tree.h"

#include <memory>

#include "core/host_notes.h"
#include "core/tree_level.h"
#include "engine/apply_run.h"
#include "engine/directory_paths.h"

namespace {

// A level whose entries move.
struct MoveLevel : TreeLevel {
    PathText destination;
};

bool EndsInBackslash(const WCHAR* path) {
    const std::size_t length = wcslen(path);
    return length > 0 && path[length - 1] == TEXT('\\');
}

void DeleteFoundFile(const WCHAR* directory, TreeLevel& level) {
    if (!FormatText(level.path, TEXT("%s%s"), {directory, level.entries.name()})) {
        NoteTooLong(directory, level.entries.name());
    } else if (DeleteFileW(level.path.data()) != 0) {
        BytesCleaned += level.entries.sizeLow();
    }
}

// NOLINTNEXTLINE(misc-no-recursion)
void DeleteFoundDirectory(const WCHAR* directory, TreeLevel& level, bool removeDirectories) {
    if (!FormatText(level.path, TEXT("%s%s\\"), {directory, level.entries.name()})) {
        NoteTooLong(directory, level.entries.name());
        return;
    }
    DeleteTree(level.path.data(), true, removeDirectories);
    if (removeDirectories &&
        FormatText(level.path, TEXT("%s%s"), {directory, level.entries.name()})) {
        RemoveDirectoryW(level.path.data());
    }
}

// Whether what failed last failed because the registry could not be stored, without which nothing
// moves: its values must not fall behind what has moved.
bool MustStopMoving() {
    return GetLastError() == ERROR_NO_SYSTEM_RESOURCES;
}

// Puts both paths of the entry that the walk stands on into the level. Returns whether they fit.
bool PutPaths(const WCHAR* source, const WCHAR* destination, MoveLevel& level) {
    const WCHAR* const name = level.entries.name();
    const bool fits = FormatText(level.path, TEXT("%s\\%s"), {source, name}) &&
                      FormatText(level.destination, TEXT("%s%s"), {destination, name});
    if (!fits) {
        NoteTooLong(source, name);
    }
    return fits;
}

// The functions that move return false when nothing more may move.
bool MoveFoundFile(const WCHAR* source, const WCHAR* destination, MoveLevel& level) {
    return !PutPaths(source, destination, level) ||
           MoveFileW(level.path.data(), level.destination.data()) != 0 || !MustStopMoving();
}

// Puts the path of the directory that stands at the destination, spelt as it is there, into
// level.destination. Returns false when none does, or when moving into it would move a directory
// into itself.
bool FindExistingDirectory(const WCHAR* source, const WCHAR* destination, MoveLevel& level) {
    const FoundEntries standing(level.destination.data());
    if (standing && !standing.isDirectory()) {
        NoteNothingMoves(level.path.data(), level.destination.data());
    }
    return standing && standing.isDirectory() &&
           FormatText(level.destination, TEXT("%s%s"), {destination, standing.name()}) &&
           !IsSameOrInside(source, level.destination.data());
}

enum class MoveResult { Done, Skipped, MustStop };

bool MoveEntries(const WCHAR* source, const WCHAR* destination, MoveLevel& level);

// Makes the directory level.destination unless it stands there, and moves what is in level.path
// into it.
// NOLINTNEXTLINE(misc-no-recursion)
MoveResult MoveDirectoryEntries(const WCHAR* source, const WCHAR* destination, MoveLevel& level) {
    const bool made = CreateDirectoryW(level.destination.data(), nullptr) != 0;
    if (!made && MustStopMoving()) {
        return MoveResult::MustStop;
    }
    if ((!made && !FindExistingDirectory(source, destination, level)) ||
        !AppendBackslash(level.destination)) {
        return MoveResult::Skipped;
    }
    const auto below = NewLevel<MoveLevel>();
    below->Open(TEXT("%s\\*"), level.path.data());
    return MoveEntries(level.path.data(), level.destination.data(), *below) ? MoveResult::Done
                                                                            : MoveResult::MustStop;
}

// NOLINTNEXTLINE(misc-no-recursion)
bool MoveFoundDirectory(const WCHAR* source, const WCHAR* destination, MoveLevel& level) {
    if (!PutPaths(source, destination, level) || IsSameOrInside(destination, level.path.data())) {
        return true;
    }
    NoteDirectoryMoves(level.path.data(), level.destination.data());
    const MoveResult result = MoveDirectoryEntries(source, destination, level);
    FormatText(level.destination, TEXT("%s%s"), {destination, level.entries.name()});
    NoteDirectoryMoved(level.path.data(), level.destination.data());
    if (result == MoveResult::Done) {
        // Fails while anything that could not be moved is still in it, and so loses nothing.
        RemoveDirectoryW(level.path.data());
    }
    return result != MoveResult::MustStop;
}

// Both paths are canonical, the destination with a backslash behind it; `level` is where the walk
// of the source begins.
// NOLINTNEXTLINE(misc-no-recursion)
bool MoveEntries(const WCHAR* source, const WCHAR* destination, MoveLevel& level) {
    bool goesOn = true;
    for (; goesOn && level.entries; level.entries.Next()) {
        goesOn = level.entries.isDirectory() ? MoveFoundDirectory(source, destination, level)
                                             : MoveFoundFile(source, destination, level);
    }
    return goesOn;
}

// Puts the canonical paths of both where they can be reached, and begins to walk the source. What
// is not there need not be reached.
bool Reach(const WCHAR* source, const WCHAR* destination, PathText& from, PathText& to,
           MoveLevel& level) {
    if (!CanonicalDirectory(source, from)) {
        return LastWasNotThere();
    }
    if (!CanonicalDirectory(destination, to)) {
        return false;
    }
    if (from != to && AppendBackslash(to)) {
        level.Open(TEXT("%s\\*"), from.data());
        return level.entries || LastWasNotThere();
    }
    return true;
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

bool MoveTree(const WCHAR* source, const WCHAR* destination) {
    // The same directory can be spelt in many ways, and after one move the next one finds source
    // and destination at the same place; only their canonical paths can be compared.
    const auto from = std::make_unique<PathText>();
    const auto to = std::make_unique<PathText>();
    const auto level = NewLevel<MoveLevel>();
    if (!Reach(source, destination, *from, *to, *level)) {
        NoteNothingMoves(source, destination);
    }
    return MoveEntries(from->data(), to->data(), *level);
}
