#include "platform/device/device_directory.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <cerrno>

#include "platform/device/user_directories.h"
#include "platform/io/directory_reader.h"
#include "platform/io/file_identity.h"
#include "platform/io/open_beneath.h"

namespace platform {

namespace {

constexpr const char* kUse = "be used as a device directory";

// Fails where the directory or its files are a place that cannot be meant as a device.
Status CheckMeant(const DeviceDirectory& device) {
    const auto directory = IdentityOf(device.directory.get());
    if (!directory || (device.files && !device.tree)) {
        return Fail(kUse, errno);
    }
    for (const PreciousDirectory& place : PreciousDirectories(Homes::Usual)) {
        struct stat there {};
        const bool isThere = stat(place.path.c_str(), &there) == 0;
        const auto precious = isThere ? std::optional(IdentityOf(there)) : std::nullopt;
        if (IsSameFile(directory, precious) || IsSameFile(device.tree, precious)) {
            return FailBecause(kUse, place.isIt);
        }
    }
    return {};
}

// Whether it is the file tree of a device, named in place of the device.
bool IsFilesOfDevice(const Descriptor& directory) {
    const Descriptor files(openat(directory.get(), "../files", O_PATH | O_NOFOLLOW | O_CLOEXEC));
    return files && IsSameFile(IdentityOf(directory.get()), IdentityOf(files.get()));
}

// Whether the device may do without a file tree: it is only missing, and the registry is there.
Status CheckWithoutFiles(const Descriptor& device, const Failure& missing) {
    if (missing.error != ENOENT) {
        return missing.reason != nullptr ? tl::unexpected<Failure>(missing)
                                         : FailOf(missing, "its \"files\"");
    }
    struct stat registry {};
    if (fstatat(device.get(), kRegistryName, &registry, AT_SYMLINK_NOFOLLOW) != 0) {
        return FailBecause(kUse, IsFilesOfDevice(device)
                                     ? "it is the \"files\" of one: choose the directory above it"
                                     : "neither \"files\" nor \"registry.reg\" is in it");
    }
    return {};
}

Status CheckEmpty(const Descriptor& directory) {
    const Result<bool> isEmpty = ReadEntries(directory.get(), DirectoryReader::Names::All,
                                             [](const auto& /*entry*/) { return false; });
    if (!isEmpty) {
        return tl::unexpected<Failure>(isEmpty.error());
    }
    return *isEmpty
               ? Status()
               : FailBecause("be made a sample device",
                             "it is not empty; name a directory that is empty or not there yet");
}

Result<DeviceDirectory> OpenDirectory(const char* path) {
    DeviceDirectory device;
    device.directory = Descriptor(open(path, O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (!device.directory) {
        return errno == ENOTDIR ? FailBecause(kUse, "it is not a directory") : Fail(kUse, errno);
    }
    return device;
}

}  // namespace

Result<Descriptor> OpenFileTree(int parent, const char* name) {
    constexpr const char* kOpen = "be used as a directory";
    Result<Descriptor> files = Fail(kOpen, ENOENT);
    for (const int access : {O_RDONLY, O_PATH}) {
        files = OpenBeneath(parent, name, access | O_DIRECTORY, Mounts::Entered);
        if (files || files.error().error != EACCES) {
            break;
        }
    }
    if (files) {
        return files;
    }
    return files.error().error == ENOSYS
               ? FailBecause(kOpen,
                             "this kernel is too old: it needs the system call openat2, of "
                             "Linux 5.6")
               : Fail(kOpen, files.error().error);
}

Result<DeviceDirectory> OpenDeviceDirectory(const char* path) {
    Result<DeviceDirectory> device = OpenDirectory(path);
    if (!device) {
        return device;
    }
    Result<Descriptor> files = OpenFileTree(device->directory.get(), kFilesName);
    Status found = files ? Status() : CheckWithoutFiles(device->directory, files.error());
    device->files = std::move(files).value_or(Descriptor());
    device->tree = device->files ? IdentityOf(device->files.get()) : std::nullopt;
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
    Result<Descriptor> files = OpenFileTree(device->directory.get(), kFilesName);
    if (!files) {
        return tl::unexpected<Failure>(files.error());
    }
    device->files = std::move(*files);
    return device;
}

bool CanBecomeDevice(const char* path) {
    const Result<DeviceDirectory> device = OpenDirectory(path);
    return device ? CheckMeant(*device) && CheckEmpty(device->directory) &&
                        !IsFilesOfDevice(device->directory)
                  : device.error().error == ENOENT;
}

}  // namespace platform
