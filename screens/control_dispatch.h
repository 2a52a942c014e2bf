#pragma once

#include "core/platform_types.h"

// Carries out what the control with this ID does at once when its user acts on it: the "Browse"
// buttons open the folder browser for their path boxes, the "Refresh" buttons fill their lists. All
// other controls do nothing; an ID that no control has is reported in a box.
void DispatchControl(UINT id);
