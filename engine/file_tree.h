#pragma once

#include "core/platform_types.h"

// The two walkers that carry the engine's bulk work. What cannot be deleted or moved is passed
// over, as is an entry whose path does not fit a buffer of kTextCapacity.

// Deletes the files in `directory` and adds the size of each to BytesCleaned once it is gone. With
// `recurse` the files in its subdirectories too; with `removeDirectories` as well, the
// subdirectories that are empty then. `directory` itself stays. It must end in a backslash:
// anything else, the empty path too, deletes nothing.
void DeleteTree(const WCHAR* directory, bool recurse, bool removeDirectories);

// Moves what is in `source` into `destination`, a directory that is there already, and removes the
// subdirectories of `source` that stand at the destination and are empty then. `source` itself
// stays, and in it whatever could not be moved. A source that is the destination is left alone; a
// part of the source that holds the destination stays where it is. The host is told of each
// directory that moves, and when nothing does because one of the two could not be reached; a source
// that is not there is nothing to move. Returns false when the registry cannot be stored, so that
// nothing more may move.
bool MoveTree(const WCHAR* source, const WCHAR* destination);
