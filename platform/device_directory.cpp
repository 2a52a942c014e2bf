#include "platform/device_directory.h"

#include <fcntl.h>
#include <linux/openat2.h>
#include <pwd.h>
#include <sys/stat.h>
#include <sys/syscall.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>

#include "platform/directory_reader.h"

namespace platform {

namespace {

constexpr char kFiles[] = "files";
constexpr char kRegistry[] = "registry.reg";

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

// Why nobody can mean this directory; empty when somebody can.
std::string WhyRefused(const Descriptor& directory) {
    struct stat entry {};
    if (fstat(directory.get(), &entry) != 0) {
        return std::strerror(errno);
    }
    if (IsSame(entry, "/")) {
        return "it is the root of this machine's file system, not a device directory";
    }
    return IsSame(entry, HomeDirectory()) ? "it is your home directory, not a device directory"
                                          : "";
}

Descriptor OpenFiles(const Descriptor& device) {
    open_how how{};
    how.flags = O_PATH | O_DIRECTORY | O_CLOEXEC;
    how.resolve = RESOLVE_BENEATH | RESOLVE_NO_SYMLINKS | RESOLVE_NO_MAGICLINKS;
    return Descriptor(
        static_cast<int>(syscall(SYS_openat2, device.get(), kFiles, &how, sizeof how)));
}

// What stands in the way of opening the file tree; empty when it is only missing and the registry
// is there.
std::string WhyWithoutFiles(const Descriptor& device, int reason) {
    if (reason == ENOSYS) {
        return "this kernel cannot confine a program to a directory (openat2, Linux 5.6)";
    }
    if (reason != ENOENT) {
        return std::string("its \"files\" cannot be used as a directory: ") + std::strerror(reason);
    }
    struct stat registry {};
    return fstatat(device.get(), kRegistry, &registry, AT_SYMLINK_NOFOLLOW) == 0
               ? ""
               : "it is no device directory: neither \"files\" nor \"registry.reg\" is in it";
}

bool IsEmpty(const Descriptor& directory) {
    DirectoryReader reader(DirectoryReader::Names::All);
    return !reader.Next(directory.get());
}

}  // namespace

std::string OpenDeviceDirectory(const char* path, DeviceDirectory& device) {
    device.directory = Descriptor(open(path, O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (!device.directory) {
        return std::strerror(errno);
    }
    std::string refused = WhyRefused(device.directory);
    if (!refused.empty()) {
        return refused;
    }
    device.files = OpenFiles(device.directory);
    return device.files ? WhyRefused(device.files) : WhyWithoutFiles(device.directory, errno);
}

std::string MakeDeviceDirectory(const char* path, DeviceDirectory& device) {
    if (mkdir(path, 0777) != 0 && errno != EEXIST) {
        return std::strerror(errno);
    }
    device.directory = Descriptor(open(path, O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (!device.directory) {
        return std::strerror(errno);
    }
    std::string refused = WhyRefused(device.directory);
    if (!refused.empty()) {
        return refused;
    }
    if (!IsEmpty(device.directory)) {
        return "it is not empty; name a directory that does not exist yet";
    }
    if (mkdirat(device.directory.get(), kFiles, 0777) != 0) {
        return std::strerror(errno);
    }
    device.files = OpenFiles(device.directory);
    return device.files ? "" : std::strerror(errno);
}

}  // namespace platform
