#include "platform/tree/rehearsed_room.h"

#include <linux/magic.h>
#include <sys/statvfs.h>
#include <sys/vfs.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>

namespace platform {

namespace {

constexpr std::int64_t kAnyNumber = std::int64_t{1} << 62U;

// An ext4 keeps a part for the superuser, and a fiftieth, but at most 4096 blocks, for itself.
std::uint64_t FreeBlocks(const struct statfs& status) {
    if (status.f_type != EXT4_SUPER_MAGIC || geteuid() != 0) {
        return status.f_bavail;
    }
    const std::uint64_t own = std::min<std::uint64_t>(status.f_blocks / 50, 4096);
    return status.f_bfree - std::min<std::uint64_t>(own, status.f_bfree);
}

// Some can only be read, and have never had any room.
bool IsImage(const struct statfs& status) {
    return (status.f_flags & ST_RDONLY) != 0 && status.f_bfree == 0;
}

}  // namespace

std::uint64_t RehearsedRoom::Volume::RoomFor(std::uint64_t size) const {
    return (size + block - 1) / block * block;
}

void RehearsedRoom::Volume::Ask(int directory) {
    struct statfs status {};
    isKnown = fstatfs(directory, &status) == 0 && !IsImage(status);
    isAsked = true;
    if (isKnown) {
        block = static_cast<std::uint64_t>(std::max<long>(1, status.f_frsize));
        free += static_cast<std::int64_t>(FreeBlocks(status) * block);
        // Some file systems keep no count.
        freeFiles += status.f_files == 0 ? kAnyNumber : static_cast<std::int64_t>(status.f_ffree);
    }
}

RehearsedRoom::Volume& RehearsedRoom::AskedFor(int directory, dev_t volume) {
    Volume& room = volumes_[volume];
    if (!room.isAsked) {
        room.Ask(directory);
    }
    return room;
}

Status RehearsedRoom::Take(int directory, dev_t volume, std::uint64_t size) {
    Volume& room = AskedFor(directory, volume);
    const auto wanted = static_cast<std::int64_t>(room.RoomFor(size));
    if (!room.HasFile() || (room.isKnown && wanted > room.free)) {
        return Fail("write", ENOSPC);
    }
    room.free -= wanted;
    --room.freeFiles;
    return {};
}

void RehearsedRoom::Free(dev_t volume, std::uint64_t bytes) {
    volumes_[volume].free += static_cast<std::int64_t>(bytes);
    ++volumes_[volume].freeFiles;
}

}  // namespace platform
