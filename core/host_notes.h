#pragma once

#include <cstdint>

#include "core/platform_types.h"

// Notes to the host for its report and its messages, about what no operation of the platform shows.
// The device's user sees none of them, and none has an answer. The reason of a failure is the one
// that GetLastError gives.

// The step of the Apply sequence that begins; 0 after the last one.
void NoteStep(int number);

// The registry value `what` should be a path, but its `content` cannot be used as one: no file is
// deleted or moved because of it.
void NoteUnusablePath(const WCHAR* what, const WCHAR* content);

// The file `path` could not be written; the one that was there before, if any, still is.
void NoteNotStored(const WCHAR* path);

// The option with this bit has the files in `directory` deleted next, which its user has named.
void NoteCleans(std::uint32_t option, const WCHAR* directory);

// That directory is not there.
void NoteNothingToClean(const WCHAR* directory);

// The options could not be read, so none is ticked: the file `path` cannot be opened, or cannot be
// read to its end.
void NoteNoSettings(const WCHAR* path);
void NoteSettingsNotRead(const WCHAR* path);

// The file `path` is no settings file from its first to its last byte: what is missing is taken for
// not given, and what is too much is not read.
void NoteSettingsDamaged(const WCHAR* path);

// The path of the entry `name` in `directory` does not fit, so the entry is left alone.
void NoteTooLong(const WCHAR* directory, const WCHAR* name);

// The look-up of `target` failed. Reported only if NoteKept follows.
void NoteLookupFailed(const WCHAR* target);

// `kept` is not deleted, because the look-up noted last has failed.
void NoteKept(const WCHAR* kept);

// Nothing moves from `source` to `destination`: one of them could not be reached, or another entry
// has the destination's name.
void NoteNothingMoves(const WCHAR* source, const WCHAR* destination);

// The directory `newPath`, which is made next, will replace the directory `oldPath`: it must never
// admit a user whom that one refuses.
void NoteDirectoryMoves(const WCHAR* oldPath, const WCHAR* newPath);

// All that could be moved from `oldPath` to `newPath` is there now. The new directory, unless it
// existed before, gets the rest of what the old one had: mode, owner, attributes and times.
void NoteDirectoryMoved(const WCHAR* oldPath, const WCHAR* newPath);
