#pragma once

#include "core/platform_types.h"

// The searches that fill the lists of the first page. Each walks the tree below `path`, which ends
// in a backslash only if it is the root "\", and adds what it finds to the list box. Directories
// that cannot be read and paths that do not fit kTextCapacity are skipped. Hidden directories are
// not entered.

// Lists the directories with "Temp" or "temp" in their names, each with a backslash at its end.
void SearchTempDirectories(HWND listBox, const WCHAR* path);

// Lists the files, and the hidden directories, whose names end in a full stop and `extension`. Only
// the first three characters after the full stop and of `extension` count, in either case. A null
// extension searches nothing.
void SearchFiles(HWND listBox, const WCHAR* extension, const WCHAR* path);
