#pragma once

#include "engine/apply_run.h"

// Deletes the files below the temporary directory that belongs to `option`, which is one of the
// five cleaning options; its subdirectories stay. A directory of the user's own is used as it was
// typed and released afterwards.
void CleanTemporaryDirectory(ApplyRun& run, std::uint32_t option);
