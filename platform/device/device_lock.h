#pragma once

#include "platform/device/device_directory.h"

namespace platform {

enum class LockKind { Exclusive, Shared };  // a shared one keeps only exclusive ones away

// Takes the locks that keep a second run away, on the file tree and on the directory of the
// registry, where it has one, for as long as both are open in any process. False when another run
// holds one of them; fails where the file system knows no locks.
Result<bool> LockDevice(const DeviceDirectory& device, LockKind kind);

}  // namespace platform
