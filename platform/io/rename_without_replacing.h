#pragma once

#include "platform/diagnostics/failure.h"

namespace platform {

// Renames an entry unless something has the new name; after a kill the entry has the old name, the
// new one or, a file, both. EXDEV for another volume, EEXIST for a name that is taken. Where the
// file system knows no such renaming, no other program may make the new name meanwhile.
Status RenameWithoutReplacing(int fromDirectory, const char* from, int toDirectory, const char* to);

// The same with a look whether something has the new name before a plain renaming, so that there
// are never both names. For names that no other program makes.
Status RenameIfFree(int fromDirectory, const char* from, int toDirectory, const char* to);

}  // namespace platform
