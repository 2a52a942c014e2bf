#pragma once

#include <string>

#include "platform/command_line/command_line.h"
#include "platform/device/device_directory.h"
#include "platform/seam/device_store.h"

namespace platform {

// Opens the device that the command line names, whole or by halves.
Result<DeviceDirectory> OpenNamedDevice(const CommandLine& line);

// What its owner should know of a registry that cannot be a handheld's; empty where nothing has to
// be said.
std::string AdviceOnExport(DeviceRegistry& registry);

}  // namespace platform
