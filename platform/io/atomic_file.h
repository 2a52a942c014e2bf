#pragma once

#include <sys/stat.h>

#include <cstdio>
#include <memory>
#include <optional>

#include "platform/diagnostics/failure.h"
#include "platform/io/descriptor.h"
#include "platform/text/name_translation.h"

namespace platform {

// What a published file, old or new, is whole after. To survive a loss of power, it waits for the
// disk.
enum class Survives { PowerLoss, Kill };

// A new file whose content is not complete yet. It has no name where the file system allows that,
// else a reserved one in its volume's root directory. It goes with the object unless it was
// published.
class AtomicFile {
  public:
    // An empty file, readable and writable by its owner, to be published in `directory`; `volume`
    // is the root of the same volume and stays the caller's to keep open.
    static Result<std::unique_ptr<AtomicFile>> Create(int directory, int volume,
                                                      Survives survives = Survives::PowerLoss);
    ~AtomicFile();
    AtomicFile(const AtomicFile&) = delete;
    AtomicFile& operator=(const AtomicFile&) = delete;

    int descriptor() const { return descriptor_.get(); }

    // Stores the content safely; PublishInPlace does so too unless that is done. Nothing may be
    // written afterwards. What another program does in the time that this takes can be checked
    // before the file is published.
    Status Store();

    // Gives the file its name, with content and name safely stored. PublishNew fails where
    // something has that name, and after a failure the file has none. PublishInPlace replaces what
    // has that name; after a failure it stands for the old file or the new one, whole.
    Status PublishNew(int directory, const char* name);
    Status PublishInPlace(int directory, const char* name);

    // Takes the name that PublishNew gave away again, unless it stands for another file by now.
    void Withdraw(int directory, const char* name) const;

  private:
    AtomicFile(Descriptor descriptor, int volume, std::optional<HostName> reserved,
               Survives survives)
        : descriptor_(std::move(descriptor)),
          volume_(volume),
          reserved_(reserved),
          survives_(survives) {}

    Status SyncContent() const;
    Status SyncNames(int directory) const;
    Status Link(int directory, const char* name) const;
    Status Reserve();

    Descriptor descriptor_;
    int volume_;
    std::optional<HostName> reserved_;  // its name in the volume's root while it has one
    Survives survives_;
    bool isStored_ = false;
};

// A stream for writing a file that has its new content, and its name, only from the moment when
// fclose has returned 0; when that fails, errno and `failure`, which must live as long as the
// stream, say why. `replaced` is what the name stands for now, if anything.
Result<std::FILE*> OpenPublishingStream(Descriptor directory, Descriptor volume,
                                        const HostName& name,
                                        const std::optional<struct stat>& replaced,
                                        Failure& failure);

}  // namespace platform
