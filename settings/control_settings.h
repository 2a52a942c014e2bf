#pragma once

#include <cstdint>

#include "core/settings_record.h"

// The traffic between the settings and the controls, which hold them while the user works. All of
// it needs the controls, so only the interactive run may call it.

// Returns the mask of the options whose boxes are ticked and puts their texts and positions into
// `settings`, as the controls hold them; a text is cut after kTextCapacity - 1 characters, and
// never null. The fields of the other options are left alone.
std::uint32_t CaptureSettings(CSettings& settings);

// Ticks the boxes of the options in `mask`, fills their controls from `settings` and releases each
// text that has been put there. A text that is null fills nothing. Counts on fresh controls: it
// unticks and empties none.
void RestoreSettings(CSettings& settings, std::uint32_t mask);

// Ticks the one box that is ticked when there are no settings yet.
void TickFirstRunDefault();
