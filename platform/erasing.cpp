#include "platform/erasing.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdio>
#include <ctime>

#include "platform/device_directory.h"
#include "platform/device_tree.h"
#include "platform/directory_reader.h"
#include "platform/host_text.h"
#include "platform/unpublished_file.h"

namespace platform {

namespace {

constexpr const char* kErase = "erase the device";

Status DoneIf(int result) {
    return result == 0 ? Status() : Fail(kErase, errno);
}

Status RefuseCard(const std::string& name) {
    return FailOf({kErase, {}, 0, "a file system is mounted there", ERROR_SHARING_VIOLATION}, name);
}

}  // namespace

struct DeviceErasing::Step {
    Status (DeviceErasing::*take)();
    void (DeviceErasing::*undo)();
};

// A directory is a device by its tree or by its registry, so each one goes only while the other is
// there: a device without a registry gets an empty one for the time in which it has no tree.
const DeviceErasing::Step DeviceErasing::kTable[] = {
    {&DeviceErasing::EnsureRegistry, &DeviceErasing::RemoveMadeRegistry},
    {&DeviceErasing::MakeFolder, &DeviceErasing::RemoveFolder},
    {&DeviceErasing::MoveFiles, &DeviceErasing::MoveFilesBack},
    {&DeviceErasing::MakeFiles, &DeviceErasing::RemoveFiles},
    {&DeviceErasing::MoveRegistry, &DeviceErasing::MoveRegistryBack},
};

Status DeviceErasing::Take(std::size_t number) {
    return (this->*kTable[number].take)();
}

void DeviceErasing::Undo(std::size_t number) {
    (this->*kTable[number].undo)();
}

Status DeviceErasing::CarryOut() {
    if (Status allowed = Check(); !allowed) {
        return allowed;
    }
    for (std::size_t number = 0; number < kSteps; ++number) {
        if (Status taken = Take(number); !taken) {
            while (number > 0) {
                Undo(--number);
            }
            return taken;
        }
    }
    // Should the power fail now, the directories hold one of the states above.
    fsync(folder_.get());
    fsync(device_);
    return {};
}

Status DeviceErasing::Check() const {
    const Descriptor files(
        openat(device_, kFilesName, O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
    if (!files) {
        return errno == ENOENT ? Status() : Fail(kErase, errno);
    }
    if (IsMountPoint(files.get(), "")) {
        return RefuseCard(kFilesName);
    }
    DirectoryReader reader(DirectoryReader::Names::All);
    Result<bool> more = reader.Next(files.get());
    for (; more && *more; more = reader.Next(files.get())) {
        if (IsMountPoint(files.get(), reader.entry().name)) {
            return RefuseCard(std::string("\\") + ReadableBytes(reader.entry().name));
        }
    }
    return more ? Status() : Status(tl::unexpected<Failure>(more.error()));
}

Status DeviceErasing::EnsureRegistry() {
    const Descriptor made(
        openat(device_, kRegistryName, O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666));
    madeRegistry_ = static_cast<bool>(made);
    return made || errno == EEXIST ? Status() : Fail(kErase, errno);
}

void DeviceErasing::RemoveMadeRegistry() {
    if (madeRegistry_) {
        unlinkat(device_, kRegistryName, 0);
    }
}

Status DeviceErasing::MakeFolder() {
    name_ = "erased-" + date_;
    int made = mkdirat(device_, name_.c_str(), 0777);
    for (int number = 2; made != 0 && errno == EEXIST; ++number) {
        name_ = "erased-" + date_ + '-' + std::to_string(number);
        made = mkdirat(device_, name_.c_str(), 0777);
    }
    if (made == 0) {
        folder_ = Descriptor(
            openat(device_, name_.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
        if (!folder_) {
            const int error = errno;
            RemoveFolder();
            return Fail(kErase, error);
        }
    }
    return DoneIf(made);
}

void DeviceErasing::RemoveFolder() {
    folder_.Close();
    unlinkat(device_, name_.c_str(), AT_REMOVEDIR);
}

Status DeviceErasing::MoveFiles() {
    hasFiles_ = renameat(device_, kFilesName, folder_.get(), kFilesName) == 0;
    return hasFiles_ || errno == ENOENT ? Status() : Fail(kErase, errno);
}

void DeviceErasing::MoveFilesBack() {
    if (hasFiles_) {
        renameat(folder_.get(), kFilesName, device_, kFilesName);
    }
}

// Whoever could use the old tree can use the new one.
Status DeviceErasing::MakeFiles() {
    if (const Status made = DoneIf(mkdirat(device_, kFilesName, 0777)); !made) {
        return made;
    }
    const Descriptor files(
        openat(device_, kFilesName, O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
    struct stat old {};
    if (files && hasFiles_ && fstatat(folder_.get(), kFilesName, &old, AT_SYMLINK_NOFOLLOW) == 0) {
        TakeModeAndOwner(files.get(), old);
    }
    return {};
}

void DeviceErasing::RemoveFiles() {
    unlinkat(device_, kFilesName, AT_REMOVEDIR);
}

Status DeviceErasing::MoveRegistry() {
    return DoneIf(renameat(device_, kRegistryName, folder_.get(), kRegistryName));
}

void DeviceErasing::MoveRegistryBack() {
    renameat(folder_.get(), kRegistryName, device_, kRegistryName);
}

std::string Today() {
    const std::time_t now = std::time(nullptr);
    std::tm local{};
    localtime_r(&now, &local);
    std::array<char, 16> text{};
    const std::size_t length = std::strftime(text.data(), text.size(), "%Y-%m-%d", &local);
    return {text.data(), length};
}

}  // namespace platform
