#pragma once

#include <optional>
#include <string>

#include "platform/diagnostics/failure.h"
#include "platform/io/descriptor.h"
#include "platform/io/file_identity.h"
#include "platform/registry/registry_file_on_disk.h"

namespace platform {

// What a device directory has in it besides its registry, or instead: the handheld's file tree.
inline constexpr char kFilesName[] = "files";

// An open device: a device directory, or two halves that lie anywhere.
struct DeviceDirectory {
    Descriptor directory;  // where its registry is; none of a half without one
    Descriptor files;      // the root of its file tree; none where the device has only a registry
    std::optional<FileIdentity> tree;  // which directory `files` is, also when that is given away
    std::string registryName = kRegistryName;
    bool isByHalves = false;  // nothing but files and registry is the device's
    std::string statePath;    // of a device by halves: for what is kept of its runs; empty: nowhere
};

// Opens a file tree, `name` beneath the open directory `parent`: readable where that is allowed,
// because only such a descriptor can be locked.
Result<Descriptor> OpenFileTree(int parent, const char* name);

// Opens the device directory `path`. Fails when it is missing, does not look like a device, or is a
// directory that cannot be meant.
Result<DeviceDirectory> OpenDeviceDirectory(const char* path);

// Makes the directory of a new device with an empty file tree and opens it. `path` must not exist
// yet or be an empty directory. After a failure nothing that was there has changed.
Result<DeviceDirectory> MakeDeviceDirectory(const char* path);

// Whether MakeDeviceDirectory could be asked for it: it is missing or an empty directory.
bool CanBecomeDevice(const char* path);

}  // namespace platform
