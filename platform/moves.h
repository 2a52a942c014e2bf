#pragma once

#include <string_view>

namespace platform {

// Renames an entry unless something has the new name. Returns whether it was renamed; errno says
// why not.
bool RenameWithoutReplacing(int fromDirectory, const char* from, int toDirectory, const char* to);

// Moves a regular file to another volume, whose root directory is `volume`: the copy is stored
// safely and has its name before the file goes. Returns whether the file has gone; if not, it is
// where it was and there is no copy. Mode, owner, times and user attributes go along as far as the
// other volume can hold them.
bool MoveToVolume(int fromDirectory, const char* from, int toDirectory, const char* to, int volume);

// Gives `to` the user attributes of `from`, both open files, as far as it can hold them.
void CopyUserAttributes(int from, int to);

// Writes all bytes, or returns false.
bool WriteWhole(int file, std::string_view bytes);

}  // namespace platform
