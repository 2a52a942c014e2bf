#pragma once

#include <string>

#include "platform/descriptor.h"

namespace platform {

// An open device directory.
struct DeviceDirectory {
    Descriptor directory;
    Descriptor files;  // the root of its file tree; none where the device has only a registry
};

// Opens the device directory `path`. Returns an empty text, or why it is no usable one: it is
// missing, does not look like a device, or is a directory that nobody means by that.
std::string OpenDeviceDirectory(const char* path, DeviceDirectory& device);

// Makes the directory of a new device with an empty file tree and opens it. `path` must not exist
// yet or be an empty directory. Returns an empty text, or why that could not be done; then nothing
// that was there has changed.
std::string MakeDeviceDirectory(const char* path, DeviceDirectory& device);

}  // namespace platform
