#include "platform/device/device_lock.h"

#include <sys/file.h>

#include <cerrno>

#include "platform/io/file_identity.h"

namespace platform {

namespace {

// False when another run has it.
Result<bool> Lock(const Descriptor& directory, LockKind kind) {
    const int wanted = kind == LockKind::Shared ? LOCK_SH : LOCK_EX;
    if (flock(directory.get(), wanted | LOCK_NB) == 0) {
        return true;
    }
    if (errno == EBADF) {
        return FailBecause("lock it", "its files cannot be opened for reading");
    }
    if (errno != EWOULDBLOCK) {
        return Fail("lock it", errno);
    }
    return false;
}

}  // namespace

// A lock belongs to an opening of a directory, so one directory in both parts is locked once.
Result<bool> LockDevice(const DeviceDirectory& device, LockKind kind) {
    Result<bool> locked = device.directory ? Lock(device.directory, kind) : Result<bool>(true);
    if (!locked || !*locked || !device.files) {
        return locked;
    }
    Result<bool> both = Lock(device.files, kind);
    return both && !*both
               ? IsSameFile(IdentityOf(device.directory.get()), IdentityOf(device.files.get()))
               : both;
}

}  // namespace platform
