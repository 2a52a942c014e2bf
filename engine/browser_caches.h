#pragma once

#include "engine/apply_run.h"

// The tasks that keep the browser's caches small.

// Deletes what is in the browser's cache, with its subdirectories, or the files in its history,
// as `option` says.
void ClearBrowserDirectory(ApplyRun& run, std::uint32_t option);

// Sets the size limit of the browser's cache, history or cookies, as `option` says, to the one
// chosen from its list.
void LimitBrowserCache(ApplyRun& run, std::uint32_t option);
