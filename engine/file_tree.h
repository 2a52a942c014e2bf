#pragma once

#include "core/platform_types.h"

// The two walkers that delete and move trees. An entry that cannot be deleted or moved is skipped,
// as is one whose path does not fit kTextCapacity.

// Deletes the files in `directory` and adds the size of each to BytesCleaned once it is gone. With
// `recurse` also the files in its subdirectories; with `removeDirectories` as well, the
// subdirectories that are empty then. `directory` itself stays. It must end in a backslash:
// anything else, such as the empty path, deletes nothing. Returns false if it is not there.
bool DeleteTree(const WCHAR* directory, bool recurse, bool removeDirectories);

// Moves the entries of `source` into the existing directory `destination`, and removes the
// subdirectories of `source` that exist at the destination and are empty then. `source` itself
// stays, with whatever could not be moved. Nothing moves if both are the same directory; a
// subdirectory of the source that contains the destination stays where it is. The host gets a note
// of each directory that moves, and one if nothing moves because one of the two could not be
// reached; a source that is not there has nothing to move. Returns false if the registry could not
// be stored after a move, so that nothing more may move.
bool MoveTree(const WCHAR* source, const WCHAR* destination);
