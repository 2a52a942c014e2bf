#include "platform/device/device_directory.h"

#include <fcntl.h>
#include <linux/openat2.h>
#include <pwd.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/syscall.h>

#include <cerrno>
#include <cstdlib>

#include "platform/io/directory_reader.h"

namespace platform {

namespace {

constexpr const char* kUse = "be used as a device directory";

const char* HomeDirectory() {
    const char* const home = std::getenv("HOME");
    if (home != nullptr && *home != '\0') {
        return home;
    }
    const passwd* const user = getpwuid(getuid());
    return user != nullptr ? user->pw_dir : nullptr;
}

bool IsSame(const struct stat& left, const struct stat& right) {
    return left.st_dev == right.st_dev && left.st_ino == right.st_ino;
}

struct Refused {
    const char* path;
    const char* reason;
};

// Fails where the directory or its files are a place that nobody can mean by a device.
Status CheckMeant(const DeviceDirectory& device) {
    const Refused places[] = {{"/", "it is the root of this machine's file system"},
                              {HomeDirectory(), "it is your home directory"}};
    struct stat directory {};
    struct stat files {};
    if (fstat(device.directory.get(), &directory) != 0 ||
        (device.files && fstat(device.files.get(), &files) != 0)) {
        return Fail(kUse, errno);
    }
    for (const Refused& place : places) {
        struct stat there {};
        if (place.path != nullptr && stat(place.path, &there) == 0 &&
            (IsSame(directory, there) || (device.files && IsSame(files, there)))) {
            return FailBecause(kUse, place.reason);
        }
    }
    return {};
}

// Readable where that is allowed, because only such a descriptor can be locked.
Result<Descriptor> OpenFiles(const Descriptor& device) {
    open_how how{};
    how.resolve = RESOLVE_BENEATH | RESOLVE_NO_SYMLINKS | RESOLVE_NO_MAGICLINKS;
    int error = 0;
    for (const int access : {O_RDONLY, O_PATH}) {
        how.flags = static_cast<std::uint64_t>(access | O_DIRECTORY | O_CLOEXEC);
        Descriptor files(
            static_cast<int>(syscall(SYS_openat2, device.get(), kFilesName, &how, sizeof how)));
        if (files) {
            return files;
        }
        error = errno;
        if (error != EACCES) {
            break;
        }
    }
    return Fail("be used as a directory", error);
}

// Whether the device may do without a file tree: it is only missing, and the registry is there.
Status CheckWithoutFiles(const Descriptor& device, const Failure& missing) {
    if (missing.error == ENOSYS) {
        return FailBecause(
            kUse, "this kernel cannot confine a program to a directory (openat2, Linux 5.6)");
    }
    if (missing.error != ENOENT) {
        return FailOf(missing, "its \"files\"");
    }
    struct stat registry {};
    if (fstatat(device.get(), kRegistryName, &registry, AT_SYMLINK_NOFOLLOW) != 0) {
        return FailBecause(kUse, "neither \"files\" nor \"registry.reg\" is in it");
    }
    return {};
}

Status CheckEmpty(const Descriptor& directory) {
    DirectoryReader reader(DirectoryReader::Names::All);
    const Result<bool> hasEntry = reader.Next(directory.get());
    if (!hasEntry) {
        return tl::unexpected<Failure>(hasEntry.error());
    }
    return *hasEntry
               ? FailBecause(kUse, "it is not empty; name a directory that does not exist yet")
               : Status();
}

Result<DeviceDirectory> OpenDirectory(const char* path) {
    DeviceDirectory device;
    device.directory = Descriptor(open(path, O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (!device.directory) {
        return Fail(kUse, errno);
    }
    return device;
}

// False when somebody else has it.
Result<bool> Lock(const Descriptor& directory) {
    if (flock(directory.get(), LOCK_EX | LOCK_NB) == 0) {
        return true;
    }
    if (errno == EBADF) {
        return FailBecause("lock it", "its \"files\" cannot be opened for reading");
    }
    if (errno != EWOULDBLOCK) {
        return Fail("lock it", errno);
    }
    return false;
}

bool IsSameDirectory(const Descriptor& left, const Descriptor& right) {
    struct stat one {};
    struct stat other {};
    return fstat(left.get(), &one) == 0 && fstat(right.get(), &other) == 0 && IsSame(one, other);
}

}  // namespace

Result<DeviceDirectory> OpenDeviceDirectory(const char* path) {
    Result<DeviceDirectory> device = OpenDirectory(path);
    if (!device) {
        return device;
    }
    Result<Descriptor> files = OpenFiles(device->directory);
    Status found = files ? Status() : CheckWithoutFiles(device->directory, files.error());
    device->files = std::move(files).value_or(Descriptor());
    const Status meant = CheckMeant(*device);
    if (!meant || !found) {
        return tl::unexpected<Failure>(meant ? found.error() : meant.error());
    }
    return device;
}

Result<DeviceDirectory> MakeDeviceDirectory(const char* path) {
    if (mkdir(path, 0777) != 0 && errno != EEXIST) {
        return Fail("be made", errno);
    }
    Result<DeviceDirectory> device = OpenDirectory(path);
    if (!device) {
        return device;
    }
    Status possible = CheckMeant(*device);
    possible = possible ? CheckEmpty(device->directory) : possible;
    if (!possible) {
        return tl::unexpected<Failure>(possible.error());
    }
    if (mkdirat(device->directory.get(), kFilesName, 0777) != 0) {
        return Fail("be made", errno);
    }
    Result<Descriptor> files = OpenFiles(device->directory);
    if (!files) {
        return tl::unexpected<Failure>(files.error());
    }
    device->files = std::move(*files);
    return device;
}

bool CanBecomeDevice(const char* path) {
    const Result<DeviceDirectory> device = OpenDirectory(path);
    return device ? CheckMeant(*device) && CheckEmpty(device->directory)
                  : device.error().error == ENOENT;
}

// A lock belongs to an opening of a directory, so one directory in both parts is locked once.
Result<bool> LockDevice(const DeviceDirectory& device) {
    Result<bool> locked = Lock(device.directory);
    if (!locked || !*locked || !device.files) {
        return locked;
    }
    Result<bool> both = Lock(device.files);
    return both && !*both ? IsSameDirectory(device.directory, device.files) : both;
}

}  // namespace platform
