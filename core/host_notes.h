#pragma once

#include "core/platform_types.h"

// What the program tells the host that no operation of the platform says. Nothing of it is shown to
// the device's user, and nothing waits for an answer. Where a reason belongs to a note, it is the
// one that GetLastError gives.

// The step of the Apply sequence that begins now; 0 after the last one.
void NoteStep(int number);

// Something that should hold a path, `what`, holds none that can be used, but `content`: no file is
// deleted or moved on it.
void NoteUnusablePath(const WCHAR* what, const WCHAR* content);

// What was to be stored as `what` could not be; what was stored there before is still there.
void NoteNotStored(const WCHAR* what);

// The options could not be read from the file `path`, so that none is ticked: it cannot be opened,
// or not be read to its end.
void NoteNoSettings(const WCHAR* path);
void NoteSettingsNotRead(const WCHAR* path);

// The file `path` is no settings file from its first to its last byte: what is missing is taken for
// not given, and what is too much is not read.
void NoteSettingsDamaged(const WCHAR* path);

// The path of the entry `name` of `directory` does not fit, so that the entry is left alone.
void NoteTooLong(const WCHAR* directory, const WCHAR* name);

// The look for `target` has failed. Nothing is said of it unless something is kept because of it.
void NoteLookupFailed(const WCHAR* target);

// `kept` stays, because the look that was noted last, without which it would go, has failed.
void NoteKept(const WCHAR* kept);

// Nothing moves from `source` to `destination`: one of them could not be reached, or something
// stands in the way.
void NoteNothingMoves(const WCHAR* source, const WCHAR* destination);

// The directory `newPath`, which is to be made next, will stand for the directory `oldPath`: it is
// never open to more than that one.
void NoteDirectoryMoves(const WCHAR* oldPath, const WCHAR* newPath);

// What could be moved from `oldPath` to `newPath` is there now; the new directory, unless it was
// there before, gets what else the old one had: mode, owner, attributes and times.
void NoteDirectoryMoved(const WCHAR* oldPath, const WCHAR* newPath);
