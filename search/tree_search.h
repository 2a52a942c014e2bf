#pragma once

#include "core/platform_types.h"

// The searches that fill the lists of the first page. Each walks the tree below `path`, which has
// no backslash at its end unless it is the root "\", and adds what it finds to the list box behind
// what is there. A directory that cannot be read, and a path that does not fit kTextCapacity, is
// passed over. Hidden directories are not entered.

// Lists the directories with "Temp" or "temp" in their names, each with a backslash at its end.
void SearchTempDirectories(HWND listBox, const WCHAR* path);

// Lists the files whose names end in a full stop and `extension`, of which and of whose part of the
// name the first three characters count, in whatever case; hidden directories of such names too.
// A null extension searches nothing.
void SearchFiles(HWND listBox, const WCHAR* extension, const WCHAR* path);
