#include "platform/io/open_beneath.h"

#include <fcntl.h>
#include <linux/openat2.h>
#include <sys/stat.h>
#include <sys/syscall.h>

#include <cerrno>
#include <cstdint>

namespace platform {

// Without the flag that keeps links from being followed: the resolution refuses them, and says so
// also where a directory is wanted.
Result<Descriptor> OpenBeneath(int parent, const char* path, int flags, Mounts mounts) {
    constexpr std::uint64_t beneath = RESOLVE_BENEATH | RESOLVE_NO_SYMLINKS | RESOLVE_NO_MAGICLINKS;
    open_how how{};
    how.flags = static_cast<std::uint64_t>(flags | O_CLOEXEC);
    how.resolve = mounts == Mounts::Entered ? beneath : beneath | RESOLVE_NO_XDEV;
    Descriptor opened(static_cast<int>(syscall(SYS_openat2, parent, path, &how, sizeof how)));
    if (!opened) {
        return Fail("open", errno);
    }
    return opened;
}

Result<Descriptor> OpenBeneathToRead(int parent, const char* path, int flags, Mounts mounts,
                                     AccessTime time) {
    const int more = time == AccessTime::Kept ? O_NOATIME : 0;
    Result<Descriptor> opened = OpenBeneath(parent, path, flags | O_RDONLY | more, mounts);
    const bool isForbidden = !opened && opened.error().error == EPERM && more != 0;
    return isForbidden ? OpenBeneath(parent, path, flags | O_RDONLY, mounts) : std::move(opened);
}

Result<Descriptor> OpenRegularFile(int directory, const char* name, Mounts mounts,
                                   AccessTime time) {
    // The name can have been given to something else since it was looked at.
    Result<Descriptor> file =
        OpenBeneathToRead(directory, name, O_NONBLOCK | O_NOCTTY, mounts, time);
    struct stat opened {};
    if (file && fstat(file->get(), &opened) != 0) {
        return Fail("open", errno);
    }
    if (file && !S_ISREG(opened.st_mode)) {
        return FailBecause("open", "it is no regular file");
    }
    return file;
}

}  // namespace platform
