#pragma once

#include "engine/apply_run.h"

// Whether the file at `shortcutPath` may stay: false only when it is a shortcut and what it starts
// is found to be missing. The host is told of one that stays because a look failed.
bool ShortcutTargetExists(const WCHAR* shortcutPath);

// Deletes the shortcuts below `directory` whose targets are missing and adds their sizes to
// BytesCleaned. `directory` has no backslash at its end; it and all its subdirectories stay.
void CleanShortcuts(const WCHAR* directory);

// Cleans the Start menu.
void CleanStartMenu(ApplyRun& run, std::uint32_t option);
