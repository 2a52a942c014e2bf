#pragma once

#include "core/platform_types.h"

// Carries out the immediate action of the control with this ID: the "Browse" buttons open the
// folder browser for their path boxes, the "Refresh" buttons fill their lists. All other controls
// have none; an ID that no control has is reported in a box.
void DispatchControl(UINT id);
