#pragma once

#include <cstdint>

#include "core/settings_record.h"

// Copies the settings between the record and the controls, which hold them while the user works.
// Only the interactive run, which has the controls, may call these functions.

// Returns the mask of the options whose boxes are ticked and copies their texts and positions from
// the controls into `settings`. A text is cut after kTextCapacity - 1 characters and is never null.
// The fields of the other options are left alone.
std::uint32_t CaptureSettings(CSettings& settings);

// Ticks the boxes of the options in `mask`, fills their controls from `settings` and releases each
// text that was copied. A null text leaves its control as it is. Expects new controls: it unticks
// and empties none.
void RestoreSettings(CSettings& settings, std::uint32_t mask);

// Ticks the one box that is ticked when there are no settings yet.
void TickFirstRunDefault();
