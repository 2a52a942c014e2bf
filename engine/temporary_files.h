#pragma once

#include "engine/apply_run.h"

// Deletes the files below the temporary directory that belongs to `option`, one of the five
// cleaning options; its subdirectories stay. A directory that the user typed is used unchanged and
// released afterwards.
void CleanTemporaryDirectory(ApplyRun& run, std::uint32_t option);
