#pragma once

#include "platform/device/device_directory.h"
#include "platform/device/device_lock.h"
#include "platform/diagnostics/run_log.h"

namespace platform {

enum class RunLock {
    Taken,
    Unknown,  // the device cannot be locked, so nobody knows whether another run is at work
    Refused,  // another run has it
};

// Takes the device's lock as LockDevice does; a line says why it is not taken.
RunLock TakeRunLock(const DeviceDirectory& device, LockKind kind, RunLog& log);

}  // namespace platform
