#pragma once

#include "core/registry_operations.h"
#include "engine/apply_run.h"

// Deletes the key `appName` below `appsKey`, the open key of all applications, if it names an
// install directory that is not there. A key that names none, or whose value cannot be read whole,
// stays. So does one whose directory could not be looked up, with a note to the host.
void CheckAppKey(const WCHAR* appName, HKEY appsKey);

// Checks the key of each application once. After a deletion the next key takes the deleted one's
// index and is left for the next run.
void CleanApplicationKeys(ApplyRun& run, std::uint32_t option);
