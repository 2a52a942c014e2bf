#include "platform/device_directory.h"

#include <fcntl.h>
#include <linux/openat2.h>
#include <pwd.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/syscall.h>

#include <cerrno>
#include <cstdlib>

#include "platform/directory_reader.h"

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

bool IsSame(const struct stat& entry, const char* path) {
    struct stat named {};
    return path != nullptr && stat(path, &named) == 0 && entry.st_dev == named.st_dev &&
           entry.st_ino == named.st_ino;
}

// Fails for a directory that nobody can mean.
Status CheckMeant(const Descriptor& directory) {
    struct stat entry {};
    if (fstat(directory.get(), &entry) != 0) {
        return Fail(kUse, errno);
    }
    if (IsSame(entry, "/")) {
        return FailBecause(kUse, "it is the root of this machine's file system");
    }
    if (IsSame(entry, HomeDirectory())) {
        return FailBecause(kUse, "it is your home directory");
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

Result<Descriptor> OpenDirectory(const char* path) {
    Descriptor directory(open(path, O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (!directory) {
        return Fail(kUse, errno);
    }
    if (const Status meant = CheckMeant(directory); !meant) {
        return tl::unexpected<Failure>(meant.error());
    }
    return directory;
}

// False when somebody else has it.
Result<bool> Lock(const Descriptor& directory) {
    if (flock(directory.get(), LOCK_EX | LOCK_NB) == 0) {
        return true;
    }
    if (errno != EWOULDBLOCK) {
        return Fail("lock it", errno);
    }
    return false;
}

bool IsSameDirectory(const Descriptor& left, const Descriptor& right) {
    struct stat one {};
    struct stat other {};
    return fstat(left.get(), &one) == 0 && fstat(right.get(), &other) == 0 &&
           one.st_dev == other.st_dev && one.st_ino == other.st_ino;
}

}  // namespace

Result<DeviceDirectory> OpenDeviceDirectory(const char* path) {
    Result<Descriptor> directory = OpenDirectory(path);
    if (!directory) {
        return tl::unexpected<Failure>(directory.error());
    }
    DeviceDirectory device{std::move(*directory), {}};
    Result<Descriptor> files = OpenFiles(device.directory);
    const Status usable =
        files ? CheckMeant(*files) : CheckWithoutFiles(device.directory, files.error());
    if (!usable) {
        return tl::unexpected<Failure>(usable.error());
    }
    device.files = std::move(files).value_or(Descriptor());
    return device;
}

Result<DeviceDirectory> MakeDeviceDirectory(const char* path) {
    if (mkdir(path, 0777) != 0 && errno != EEXIST) {
        return Fail("be made", errno);
    }
    Result<Descriptor> directory = OpenDirectory(path);
    if (!directory) {
        return tl::unexpected<Failure>(directory.error());
    }
    DeviceDirectory device{std::move(*directory), {}};
    if (const Status empty = CheckEmpty(device.directory); !empty) {
        return tl::unexpected<Failure>(empty.error());
    }
    if (mkdirat(device.directory.get(), kFilesName, 0777) != 0) {
        return Fail("be made", errno);
    }
    Result<Descriptor> files = OpenFiles(device.directory);
    if (!files) {
        return tl::unexpected<Failure>(files.error());
    }
    device.files = std::move(*files);
    return device;
}

// A lock belongs to an opening of a directory, so one directory in both parts is locked once.
Result<bool> LockDevice(const DeviceDirectory& device) {
    const Result<bool> locked = Lock(device.directory);
    const bool once = !device.files || IsSameDirectory(device.directory, device.files);
    return locked && *locked && !once ? Lock(device.files) : locked;
}

}  // namespace platform
