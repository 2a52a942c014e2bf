#pragma once

#include <string_view>

#include "platform/failure.h"

namespace platform {

// Renames an entry unless something has the new name. EXDEV for another volume, EEXIST for a name
// that is taken.
Status RenameWithoutReplacing(int fromDirectory, const char* from, int toDirectory, const char* to);

// Moves a regular file to another volume, whose root directory is `volume`: the copy is stored
// safely and has its name before the file goes. After a failure the file is where it was and there
// is no copy. Mode, owner, times and user attributes go along as far as the other volume can hold
// them.
Status MoveToVolume(int fromDirectory, const char* from, int toDirectory, const char* to,
                    int volume);

// Gives `to` the user attributes of `from`, both open, as far as it can hold them.
void CopyUserAttributes(int from, int to);

// Writes all bytes.
Status WriteWhole(int file, std::string_view bytes);

}  // namespace platform
