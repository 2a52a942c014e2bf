#pragma once

namespace platform {

// Writes the registry of the sample device into the open directory of a device that has none.
// Returns whether it is there whole.
bool WriteSampleRegistry(int directory);

}  // namespace platform
