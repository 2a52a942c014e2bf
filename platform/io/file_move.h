#pragma once

#include <sys/stat.h>

#include <string_view>

#include "platform/diagnostics/failure.h"
#include "platform/io/set_aside.h"

namespace platform {

// Renames an entry unless something has the new name; after a kill the entry has the old name, the
// new one or, a file, both. EXDEV for another volume, EEXIST for a name that is taken. Where the
// file system knows no such renaming, nobody else may make the new name meanwhile.
Status RenameWithoutReplacing(int fromDirectory, const char* from, int toDirectory, const char* to);

// The same with a look whether something has the new name before a plain renaming, so that there
// are never both names. For names that nobody else makes.
Status RenameIfFree(int fromDirectory, const char* from, int toDirectory, const char* to);

// Where a file is to be moved to.
struct Destination {
    int directory;
    const char* name;  // in it
    int volume;        // the root directory of its volume
};

// Moves a regular file to another volume: the copy is stored safely and has its name before the
// file goes. After a failure the file is where it was and there is no copy; EBUSY for a file that
// somebody is writing to. Mode, owner, times and user attributes go along as far as the other
// volume can hold them.
Status MoveToVolume(const SourceFile& source, const Destination& destination);

// Finishes a move that a kill has cut off when file and copy had their names: deletes the file if
// `name` in `directory` is a second name of it, or a copy on another volume that was made of it.
// EEXIST where it is neither, and after any other failure; then the file is where it was.
Status FinishMove(const SourceFile& source, int directory, const char* name);

// Whether two entries are one regular file that has at least two names.
bool AreTwoNamesOfOneFile(int directory, const char* name, int otherDirectory, const char* other);

// Whether the name stands for this very file.
bool StandsFor(int directory, const char* name, const struct stat& file);

// Gives `to` the user attributes and the access list of `from`, both open, as far as it can hold
// them. To be called before it gets its mode.
void CopyUserAttributes(int from, int to);

// Stores the entries of a directory safely, where its file system can do that.
Status SyncEntries(int directory);

// Writes all bytes.
Status WriteWhole(int file, std::string_view bytes);

}  // namespace platform
