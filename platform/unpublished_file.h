#pragma once

#include <sys/stat.h>

#include <cstdio>
#include <memory>
#include <optional>

#include "platform/descriptor.h"
#include "platform/failure.h"
#include "platform/host_names.h"

namespace platform {

class DeviceTree;

// A new file whose content is not complete yet. It has no name where the file system allows that,
// else a reserved one in its volume's root directory. It goes with the object unless it was
// published.
class UnpublishedFile {
  public:
    // An empty file, readable and writable by its owner, to be published in `directory`; `volume`
    // is the root of the same volume and stays the caller's to keep open.
    static Result<std::unique_ptr<UnpublishedFile>> Create(int directory, int volume);
    ~UnpublishedFile();
    UnpublishedFile(const UnpublishedFile&) = delete;
    UnpublishedFile& operator=(const UnpublishedFile&) = delete;

    int descriptor() const { return descriptor_.get(); }

    // Gives the file its name, with its content safely stored.
    Status PublishNew(int directory, const char* name);      // fails where something has that name
    Status PublishInPlace(int directory, const char* name);  // replaces what has that name

  private:
    UnpublishedFile(Descriptor descriptor, int volume, std::optional<HostName> reserved)
        : descriptor_(std::move(descriptor)), volume_(volume), reserved_(reserved) {}

    Status Link(int directory, const char* name) const;
    Status Reserve();

    Descriptor descriptor_;
    int volume_;
    std::optional<HostName> reserved_;  // its name in the volume's root while it has one
};

// Gives `file` the mode and, where that is allowed, the owner that `from` tells.
void TakeModeAndOwner(int file, const struct stat& from);

// Removes the files that earlier processes left unpublished in this open directory, and on the
// device's volumes. Only while no other process is at work on the device.
void RemoveUnpublishedFilesIn(int directory);
void RemoveUnpublishedFiles(const DeviceTree& tree);

// A stream for writing a file that has its new content, and its name, only from the moment when
// fclose has returned 0; when that fails, errno and `failure`, which must live as long as the
// stream, say why. `replaced` is what the name stands for now, if anything.
Result<std::FILE*> OpenPublishingStream(Descriptor directory, Descriptor volume,
                                        const HostName& name,
                                        const std::optional<struct stat>& replaced,
                                        Failure& failure);

}  // namespace platform
