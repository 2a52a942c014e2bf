#pragma once

#include "engine/apply_run.h"

// The tasks on the entries that the user has selected in the list boxes. Only the first 1024
// selected entries of a list are handled, and none whose text does not fit a path. Lists and
// selections stay as they are.

// Deletes the files in the directories selected on the first page, and below them; all directories
// stay.
void DeleteSelectedDirectories(ApplyRun& run, std::uint32_t option);

// Deletes the files selected on the first page.
void DeleteSelectedFiles(ApplyRun& run, std::uint32_t option);

// Deletes the selected shortcuts of the StartUp folder, if the box beside their list is ticked.
void DeleteSelectedShortcuts(ApplyRun& run, std::uint32_t option);
