#pragma once

#include "engine/apply_run.h"

// Makes the registry name the typed directory as the place of the folder that belongs to `option`,
// one of the five moving options, after the old one was emptied, if it is a cache, or its content
// moved. The old directory itself stays; an old value that cannot be a path is replaced all the
// same. Nothing changes if no directory was typed, if the old value cannot be read, and if nothing
// may move. The typed directory is released.
void RelocateFolder(ApplyRun& run, std::uint32_t option);
