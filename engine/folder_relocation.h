#pragma once

#include "engine/apply_run.h"

// Makes the registry name another directory for the folder that belongs to `option`, which is one
// of the five moving options, after what was in the old one has been dealt with: a cache is
// emptied, everything else moves along. The old directory itself stays; an old value that can be no
// path is replaced all the same. Without a directory to move to, where the old value cannot be
// read, and where nothing may move, nothing changes. The typed directory is released.
void RelocateFolder(ApplyRun& run, std::uint32_t option);
