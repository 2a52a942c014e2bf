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

// Whether the last failure was that the registry could not be stored. Then nothing more may move,
// because the registry must name the places of what has moved.
bool MustStopMoving() {
    return GetLastError() == ERROR_NO_SYSTEM_RESOURCES;
}

// Builds the old and the new path of the walk's current entry in the level. Returns whether they
// fit.
bool PutPaths(const WCHAR* source, const WCHAR* destination, MoveLevel& level) {
    const WCHAR* const name = level.entries.name();
    const bool fits = FormatText(level.path, TEXT("%s\\%s"), {source, name}) &&
                      FormatText(level.destination, TEXT("%s%s"), {destination, name});
    if (!fits) {
        NoteTooLong(source, name);
    }
    return fits;
}

// The functions that move return false if nothing more may move.
bool MoveFoundFile(const WCHAR* source, const WCHAR* destination, MoveLevel& level) {
    return !PutPaths(source, destination, level) ||
           MoveFileW(level.path.data(), level.destination.data()) != 0 || !MustStopMoving();
}

// Replaces level.destination by the path of the directory that exists there, as the file tree
// spells it. Returns false if there is none, or if moving into it would move a directory into
// itself.
bool FindExistingDirectory(const WCHAR* source, const WCHAR* destination, MoveLevel& level) {
    const FoundEntries existing(level.destination.data());
    if (existing && !existing.isDirectory()) {
        NoteNothingMoves(level.path.data(), level.destination.data());
    }
    return existing && existing.isDirectory() &&
           FormatText(level.destination, TEXT("%s%s"), {destination, existing.name()}) &&
           !IsSameOrInside(source, level.destination.data());
}

enum class MoveResult { Done, Skipped, MustStop };

bool MoveEntries(const WCHAR* source, const WCHAR* destination, MoveLevel& level);

// Makes the directory level.destination unless it exists, and moves the entries of level.path into
// it.
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
        // Fails if something that could not be moved is still in it, so nothing is lost.
        RemoveDirectoryW(level.path.data());
    }
    return result != MoveResult::MustStop;
}

// Both paths are canonical; the destination ends in a backslash. `level` has the walk of the
// source.
// NOLINTNEXTLINE(misc-no-recursion)
bool MoveEntries(const WCHAR* source, const WCHAR* destination, MoveLevel& level) {
    bool mayMove = true;
    for (; mayMove && level.entries; level.entries.Next()) {
        mayMove = level.entries.isDirectory() ? MoveFoundDirectory(source, destination, level)
                                              : MoveFoundFile(source, destination, level);
    }
    return mayMove;
}

// Puts the canonical paths of both into `from` and `to` and starts the walk of the source. Returns
// false if one of them cannot be reached; for a source that is not there nothing has to be.
bool StartMove(const WCHAR* source, const WCHAR* destination, PathText& from, PathText& to,
               MoveLevel& level) {
    if (!CanonicalDirectory(source, from)) {
        return LastWasNotThere();
    }
    if (!CanonicalDirectory(destination, to)) {
        return false;
    }
    if (from != to && AppendBackslash(to)) {
        return !level.Open(TEXT("%s\\*"), from.data()) || level.entries || LastWasNotThere();
    }
    return true;
}

}  // namespace

// NOLINTNEXTLINE(misc-no-recursion)
bool DeleteTree(const WCHAR* directory, bool recurse, bool removeDirectories) {
    if (!EndsInBackslash(directory)) {
        return true;
    }
    const auto level = NewLevel();
    const bool fits = level->Open(TEXT("%s*"), directory);
    const bool isThere = !fits || level->entries || GetLastError() != ERROR_PATH_NOT_FOUND;
    for (; level->entries; level->entries.Next()) {
        if (!level->entries.isDirectory()) {
            DeleteFoundFile(directory, *level);
        } else if (recurse) {
            DeleteFoundDirectory(directory, *level, removeDirectories);
        }
    }
    return isThere;
}

bool MoveTree(const WCHAR* source, const WCHAR* destination) {
    // The same directory can be spelt in many ways, and after one move the next one finds source
    // and destination at the same place; only their canonical paths can be compared.
    const auto from = std::make_unique<PathText>();
    const auto to = std::make_unique<PathText>();
    const auto level = NewLevel<MoveLevel>();
    if (!StartMove(source, destination, *from, *to, *level)) {
        NoteNothingMoves(source, destination);
    }
    return MoveEntries(from->data(), to->data(), *level);
}
