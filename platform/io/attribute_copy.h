#pragma once

#include <sys/stat.h>

namespace platform {

// Gives `file` the mode and, where that is allowed, the owner of `from`. Where it is not,
// the mode is cut so that only the owner may do more than `from` allows.
void ApplyModeAndOwner(int file, const struct stat& from);

// Gives `to` the user attributes and the access list of `from`, both open, as far as it can hold
// them. To be called before it gets its mode.
void CopyUserAttributes(int from, int to);

}  // namespace platform
