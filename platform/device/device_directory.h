#pragma once

#include <string>

#include "platform/diagnostics/failure.h"
#include "platform/io/descriptor.h"

namespace platform {

// What a device directory has in it: the handheld's file tree and its registry, or one of them.
inline constexpr char kFilesName[] = "files";
inline constexpr char kRegistryName[] = "registry.reg";

// An open device directory.
struct DeviceDirectory {
    Descriptor directory;
    Descriptor files;  // the root of its file tree; none where the device has only a registry
};

// Opens the device directory `path`. Fails when it is missing, does not look like a device, or is a
// directory that cannot be meant.
Result<DeviceDirectory> OpenDeviceDirectory(const char* path);

// Makes the directory of a new device with an empty file tree and opens it. `path` must not exist
// yet or be an empty directory. After a failure nothing that was there has changed.
Result<DeviceDirectory> MakeDeviceDirectory(const char* path);

// Whether MakeDeviceDirectory could be asked for it: it is missing or an empty directory.
bool CanBecomeDevice(const char* path);

}  // namespace platform
