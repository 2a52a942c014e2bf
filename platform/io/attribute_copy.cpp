#include "platform/io/attribute_copy.h"

#include <sys/xattr.h>
#include <unistd.h>

#include <string_view>
#include <vector>

namespace platform {

namespace {

constexpr char kAccessList[] = "system.posix_acl_access";
constexpr std::size_t kLargestAttribute = 65536;  // the kernel's own limit

}  // namespace

void ApplyModeAndOwner(int file, const struct stat& from) {
    mode_t mode = from.st_mode & (S_ISDIR(from.st_mode) ? 07777 : 0777);
    // Only root can give a file away, and others only to groups of their own. In another group the
    // members of both are given no more than either kind of stranger had.
    if (fchown(file, from.st_uid, from.st_gid) != 0 &&
        fchown(file, static_cast<uid_t>(-1), from.st_gid) != 0) {
        const mode_t both = mode >> 3 & mode & S_IRWXO;
        mode = (mode & (S_ISVTX | S_IRWXU)) | both << 3 | both;
    }
    fchmod(file, mode);
}

void CopyUserAttributes(int from, int to) {
    // A list that came from the directory around it would let in others as soon as the mode allows.
    fremovexattr(to, kAccessList);
    if (flistxattr(from, nullptr, 0) <= 0) {
        return;
    }
    std::vector<char> names(kLargestAttribute);
    std::vector<char> value(kLargestAttribute);
    const ssize_t length = flistxattr(from, names.data(), names.size());
    for (ssize_t at = 0; at < length;) {
        const char* const name = &names[static_cast<std::size_t>(at)];
        const std::string_view text(name);
        at += static_cast<ssize_t>(text.size()) + 1;
        const bool goesAlong = text.starts_with("user.") || text == kAccessList;
        const ssize_t size = goesAlong ? fgetxattr(from, name, value.data(), value.size()) : -1;
        if (size >= 0) {
            fsetxattr(to, name, value.data(), static_cast<std::size_t>(size), 0);
        }
    }
}

}  // namespace platform
