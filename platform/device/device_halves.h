#pragma once

#include <string>

#include "platform/device/device_directory.h"

namespace platform {

// The halves of a device, each where it is.
struct DeviceHalves {
    std::string files;     // the directory that is the root of its file tree
    std::string registry;  // the file with its registry, outside of that tree; empty: it has none
    std::string state;     // the directory for what is kept of its runs; empty: one of the user's
};

// Opens both halves. Fails where one is missing, and where the tree is one that cannot be meant:
// the root or the home directory, whatever contains either, what looks like the root of a system,
// and what contains the directory for what is kept.
Result<DeviceDirectory> OpenDeviceHalves(const DeviceHalves& halves);

// Opens the directory for what is kept of the runs on a device that was opened by halves, and makes
// what is missing of it.
Result<Descriptor> OpenKeptDirectory(const DeviceDirectory& device);

}  // namespace platform
