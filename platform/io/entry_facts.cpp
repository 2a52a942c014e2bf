#include "platform/io/entry_facts.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <sys/sysmacros.h>
#include <unistd.h>

#include <cerrno>

namespace platform {

namespace {

constexpr mode_t kMayWrite = S_IWUSR | S_IWGRP | S_IWOTH;

}  // namespace

bool EntryFacts::isDirectory() const {
    return S_ISDIR(mode);
}

bool EntryFacts::isRegularFile() const {
    return S_ISREG(mode);
}

bool EntryFacts::isReadOnly() const {
    return !S_ISDIR(mode) && (mode & kMayWrite) == 0;
}

EntryFacts FactsOf(const struct statx& entry) {
    return {entry.stx_mode, S_ISDIR(entry.stx_mode) ? 0 : entry.stx_size};
}

dev_t VolumeOf(const struct statx& entry) {
    return makedev(entry.stx_dev_major, entry.stx_dev_minor);
}

Result<EntryFacts> FactsOf(int directory, const char* name) {
    struct stat entry {};
    if (fstatat(directory, name, &entry, AT_SYMLINK_NOFOLLOW | AT_NO_AUTOMOUNT) != 0) {
        return Fail("look at", errno);
    }
    return EntryFacts{entry.st_mode,
                      S_ISDIR(entry.st_mode) ? 0 : static_cast<std::uint64_t>(entry.st_size)};
}

bool IsMountPoint(int directory, const char* name) {
    struct statx entry {};
    return statx(directory, name, AT_EMPTY_PATH | AT_SYMLINK_NOFOLLOW | AT_NO_AUTOMOUNT, 0,
                 &entry) == 0 &&
           (entry.stx_attributes & STATX_ATTR_MOUNT_ROOT) != 0;
}

bool IsOnReadOnly(int directory) {
    struct statvfs volume {};
    return fstatvfs(directory, &volume) == 0 && (volume.f_flag & ST_RDONLY) != 0;
}

Status CheckWritable(int directory, const char* name, mode_t mode) {
    if ((mode & kMayWrite) == 0) {
        return FailBecause("write it", "it is read-only", ERROR_ACCESS_DENIED);
    }
    if (faccessat(directory, name, W_OK, AT_EACCESS | AT_SYMLINK_NOFOLLOW) != 0) {
        return Fail("write it", errno);
    }
    return {};
}

}  // namespace platform
