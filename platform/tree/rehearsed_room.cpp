#include "platform/tree/rehearsed_room.h"

#include <sys/statvfs.h>

#include <algorithm>
#include <cerrno>

namespace platform {

std::uint64_t RehearsedRoom::Volume::RoomFor(std::uint64_t size) const {
    return (size + block - 1) / block * block;
}

void RehearsedRoom::Volume::Ask(int directory) {
    struct statvfs status {};
    isKnown = fstatvfs(directory, &status) == 0;
    isAsked = true;
    if (isKnown) {
        block = std::max<std::uint64_t>(1, status.f_frsize);
        free += static_cast<std::int64_t>(status.f_bavail * status.f_frsize);
    }
}

Status RehearsedRoom::Take(int directory, dev_t volume, std::uint64_t size) {
    Volume& room = volumes_[volume];
    if (!room.isAsked) {
        room.Ask(directory);
    }
    const auto wanted = static_cast<std::int64_t>(room.RoomFor(size));
    if (room.isKnown && wanted > room.free) {
        return Fail("write", ENOSPC);
    }
    room.free -= wanted;
    return {};
}

void RehearsedRoom::Free(dev_t volume, std::uint64_t bytes) {
    volumes_[volume].free += static_cast<std::int64_t>(bytes);
}

}  // namespace platform
