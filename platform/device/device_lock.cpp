#include "platform/device/device_lock.h"

#include <sys/file.h>

#include <cerrno>

#include "platform/io/file_identity.h"

namespace platform {

namespace {

// False when another run has it.
Result<bool> Lock(const Descriptor& directory) {
    if (flock(directory.get(), LOCK_EX | LOCK_NB) == 0) {
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
Result<bool> LockDevice(const DeviceDirectory& device) {
    Result<bool> locked = device.directory ? Lock(device.directory) : Result<bool>(true);
    if (!locked || !*locked || !device.files) {
        return locked;
    }
    Result<bool> both = Lock(device.files);
    return both && !*both
               ? IsSameFile(IdentityOf(device.directory.get()), IdentityOf(device.files.get()))
               : both;
}

}  // namespace platform
