#pragma once

#include "platform/diagnostics/failure.h"
#include "platform/io/descriptor.h"

namespace platform {

// Whether a way may lead into a file system that is mounted on it.
enum class Mounts { Refused, Entered };

// Opens what `path` names beneath the open directory `parent`, which it cannot lead out of: ELOOP
// for a symbolic link anywhere on it, EXDEV for a way out and for a mount that is refused. `flags`
// are those of open; O_CLOEXEC comes by itself.
Result<Descriptor> OpenBeneath(int parent, const char* path, int flags, Mounts mounts);

// Whether what is read shows in its time of access. That is kept as far as the system allows it.
enum class AccessTime { Shown, Kept };

// The same for what is to be read.
Result<Descriptor> OpenBeneathToRead(int parent, const char* path, int flags, Mounts mounts,
                                     AccessTime time);

// Opens the entry `name` of `directory`, which was a regular file when it was looked at, for
// reading; fails when it is not one any more. Waits for nothing.
Result<Descriptor> OpenRegularFile(int directory, const char* name, Mounts mounts = Mounts::Refused,
                                   AccessTime time = AccessTime::Shown);

}  // namespace platform
