#pragma once

#include <string>

#include "platform/diagnostics/failure.h"

namespace platform {

// Erases the device in the open directory `device`: its file tree and its registry move into a new
// folder beside them, "erased-DATE", and an empty tree stands in their place. Nothing is destroyed.
// Returns the folder's name; after a failure everything is as it was. A device with a file system
// mounted on its tree or directly in it, as a storage card is, cannot be erased.
//
// Whenever the process ends on the way, the directory opens as a device, and so does the folder
// once there is something in it.
Result<std::string> EraseDevice(int device, const std::string& date);

// What is known beforehand of whether that is possible. Only asks.
Status CheckErasable(int device);

// The date of today as YYYY-MM-DD, where this machine is.
std::string Today();

}  // namespace platform
