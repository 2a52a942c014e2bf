#pragma once

#include "platform/diagnostics/failure.h"

namespace platform {

// Writes the registry of the sample device into the open directory of a device that has none.
Status WriteSampleRegistry(int directory);

}  // namespace platform
