#pragma once

#include "engine/apply_run.h"

// Sets the size of the font cache to the one chosen with the slider.
void SetFontCache(ApplyRun& run, std::uint32_t option);

// Makes the StartUp shortcut that starts the silent run where it is missing, or deletes it, as
// `option` is ticked or not.
void SetStartupShortcut(ApplyRun& run, std::uint32_t option);

// Switches the animation of the Start menu or of the windows, as `option` says, off or back on. The
// run needs a restart when the value in the registry was another one.
void SetAnimation(ApplyRun& run, std::uint32_t option);
