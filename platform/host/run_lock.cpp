#include "platform/host/run_lock.h"

namespace platform {

RunLock TakeRunLock(const DeviceDirectory& device, LockKind kind, RunLog& log) {
    const Result<bool> locked = LockDevice(device, kind);
    if (!locked) {
        log.Say("it cannot be locked, so make sure that nothing else works on it meanwhile: " +
                ReasonOf(locked.error()));
        return RunLock::Unknown;
    }
    if (!*locked) {
        log.Say("in use by another run; try again when it has ended");
        return RunLock::Refused;
    }
    return RunLock::Taken;
}

}  // namespace platform
