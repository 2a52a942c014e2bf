#pragma once

#include <sys/stat.h>

namespace platform {

// Gives `file` the mode and, where that is allowed, the owner that `from` tells. Where it is not,
// the mode is cut so that nobody but the owner may do more than `from` tells.
void ApplyModeAndOwner(int file, const struct stat& from);

// Gives `to` the user attributes and the access list of `from`, both open, as far as it can hold
// them. To be called before it gets its mode.
void CopyUserAttributes(int from, int to);

}  // namespace platform
