#pragma once

#include "engine/apply_run.h"

// Sets the size of the font cache to the one chosen with the slider.
void SetFontCache(ApplyRun& run, std::uint32_t option);

// Makes the StartUp shortcut that starts the silent run, unless it exists, if `option` is ticked;
// otherwise deletes it.
void SetStartupShortcut(ApplyRun& run, std::uint32_t option);

// Switches the animation of the Start menu or of the windows, as `option` says, off or back on. The
// run needs a restart if that changed the value in the registry.
void SetAnimation(ApplyRun& run, std::uint32_t option);
