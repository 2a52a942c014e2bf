#pragma once

#include "engine/apply_run.h"

// Whether the file at `shortcutPath` may stay: false only if it is a shortcut and its target is
// missing. The host gets a note if it stays because a look-up failed.
bool ShortcutTargetExists(const WCHAR* shortcutPath);

// Deletes the shortcuts below `directory` whose targets are missing and adds their sizes to
// BytesCleaned. `directory` has no backslash at its end; it and all its subdirectories stay.
void CleanShortcuts(const WCHAR* directory);

// Cleans the Start menu.
void CleanStartMenu(ApplyRun& run, std::uint32_t option);
