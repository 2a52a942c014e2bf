#pragma once

#include "core/registry_operations.h"
#include "engine/apply_run.h"

// Deletes the key `appName` below `appsKey`, the open key of all applications, when it names an
// install directory that is not there. A key that names none, or whose value cannot be read whole,
// stays, and so does one whose directory could not be looked for, which the host is told.
void CheckAppKey(const WCHAR* appName, HKEY appsKey);

// Checks the keys of the applications, each once. The key that moves up into a deleted one's place
// is left for the next run.
void CleanApplicationKeys(ApplyRun& run, std::uint32_t option);
