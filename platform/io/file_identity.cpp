#include "platform/io/file_identity.h"

#include <fcntl.h>

#include <algorithm>
#include <cerrno>

#include "platform/io/descriptor.h"

namespace platform {

FileIdentity IdentityOf(const struct stat& status) {
    return {status.st_dev, status.st_ino};
}

std::optional<FileIdentity> IdentityOf(int open) {
    struct stat status {};
    return fstat(open, &status) == 0 ? std::optional(IdentityOf(status)) : std::nullopt;
}

std::optional<FileIdentity> IdentityOf(int directory, const char* name) {
    struct stat status {};
    return fstatat(directory, name, &status, AT_SYMLINK_NOFOLLOW) == 0
               ? std::optional(IdentityOf(status))
               : std::nullopt;
}

bool IsSameFile(const std::optional<FileIdentity>& left, const std::optional<FileIdentity>& right) {
    return left && left == right;
}

Result<bool> IsWithin(int directory, std::span<const FileIdentity> places) {
    constexpr int kFlags = O_PATH | O_DIRECTORY | O_CLOEXEC;
    Descriptor here(openat(directory, ".", kFlags));
    for (std::optional<FileIdentity> below; here;) {
        const std::optional<FileIdentity> identity = IdentityOf(here.get());
        if (!identity) {
            break;
        }
        if (std::ranges::find(places, *identity) != places.end()) {
            return true;
        }
        if (identity == below) {
            return false;
        }
        below = identity;
        here = Descriptor(openat(here.get(), "..", kFlags));
    }
    return Fail("find the directories around it", errno);
}

bool StandsFor(int directory, const char* name, const struct stat& file) {
    return IdentityOf(directory, name) == IdentityOf(file);
}

bool AreTwoNamesOfOneFile(int directory, const char* name, int otherDirectory, const char* other) {
    struct stat file {};
    return fstatat(directory, name, &file, AT_SYMLINK_NOFOLLOW) == 0 && S_ISREG(file.st_mode) &&
           file.st_nlink >= 2 && StandsFor(otherDirectory, other, file);
}

bool IsEqual(const timespec& left, const timespec& right) {
    return left.tv_sec == right.tv_sec && left.tv_nsec == right.tv_nsec;
}

// The time of the last change shows what a program did that set the other time back.
bool FileVersion::operator==(const FileVersion& other) const {
    return exists() == other.exists() && IdentityOf(status_) == IdentityOf(other.status_) &&
           status_.st_size == other.status_.st_size &&
           IsEqual(status_.st_mtim, other.status_.st_mtim) &&
           IsEqual(status_.st_ctim, other.status_.st_ctim);
}

}  // namespace platform
