#pragma once

#include "platform/diagnostics/failure.h"
#include "platform/moves/set_aside.h"

namespace platform {

// Where a file is to be moved to.
struct Destination {
    int directory;
    const char* name;  // in it
    int volume;        // the root directory of its volume
};

// Moves a regular file to another volume: the copy is stored safely and has its name before the
// file goes. After a failure the file is where it was and there is no copy; EBUSY for a file that
// another program is writing to. Mode, owner, times and user attributes go along as far as the
// other volume can hold them.
Status MoveToVolume(const SourceFile& source, const Destination& destination);

// Finishes a move that a kill has cut off when file and copy had their names: deletes the file if
// `name` in `directory` is a second name of it, or a copy on another volume that was made of it.
// EEXIST where it is neither, and after any other failure; then the file is where it was.
Status FinishMove(const SourceFile& source, int directory, const char* name);

// What the file that has the new name may be to the one that is to be moved.
enum class Twin { SecondName, Copy };

// Whether it is that, so that FinishMove would delete the file, as far as reading both tells.
bool IsMovedAlready(const SourceFile& source, int directory, const char* name, Twin twin);

}  // namespace platform
