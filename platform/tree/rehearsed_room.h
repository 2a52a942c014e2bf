#pragma once

#include <sys/types.h>

#include <cstdint>
#include <map>

#include "platform/diagnostics/failure.h"

namespace platform {

// The room on the volumes of a device, as a rehearsal has left it. A volume is known by the number
// of its file system.
class RehearsedRoom {
  public:
    // Takes the room of a file of `size` bytes, or of a directory of none; `directory` is any open
    // one of the volume. ENOSPC where it has not got it. A volume that cannot be asked has room for
    // everything.
    Status Take(int directory, dev_t volume, std::uint64_t size);

    // Whether there can be one more file, of no bytes. The same for those.
    bool HasFile(int directory, dev_t volume) { return AskedFor(directory, volume).HasFile(); }

    // The bytes that a file of `size` bytes takes.
    std::uint64_t RoomFor(dev_t volume, std::uint64_t size) const {
        const auto found = volumes_.find(volume);
        return (found == volumes_.end() ? Volume() : found->second).RoomFor(size);
    }

    // Gives the volume back the room of one that took so many bytes.
    void Free(dev_t volume, std::uint64_t bytes);

  private:
    static constexpr std::uint64_t kUsualBlock = 4096;

    struct Volume {
        bool isAsked = false;
        bool isKnown = false;
        std::uint64_t block = kUsualBlock;  // bytes; what a file takes is a multiple
        std::int64_t free = 0;              // bytes; before the volume is asked, what became free
        std::int64_t freeFiles = 0;         // the same, of files and directories

        std::uint64_t RoomFor(std::uint64_t size) const;
        bool HasFile() const { return !isKnown || freeFiles > 0; }
        void Ask(int directory);
    };

    Volume& AskedFor(int directory, dev_t volume);

    std::map<dev_t, Volume> volumes_;
};

}  // namespace platform
