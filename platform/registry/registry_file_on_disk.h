#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "platform/diagnostics/failure.h"
#include "platform/io/atomic_file.h"
#include "platform/io/file_identity.h"
#include "platform/io/open_beneath.h"

namespace platform {

// The name of the registry in a device directory.
inline constexpr char kRegistryName[] = "registry.reg";

// The file of a registry. Nothing but a regular file is ever opened: a link is not followed, a pipe
// not waited for.
class RegistryFileOnDisk {
  public:
    // `directory` is open, stays the caller's and must outlive the object; `name` is that of the
    // file in it. Without a directory, -1, there is no file and none can be made.
    RegistryFileOnDisk(int directory, std::string name, AccessTime time = AccessTime::Shown)
        : directory_(directory), name_(std::move(name)), accessTime_(time) {}

    int directory() const { return directory_; }
    std::string name() const;  // readable

    struct Content {
        std::string bytes;  // empty when there is no file
        FileVersion version;
    };
    Result<Content> Read() const;

    // What is there now. Fails when it is neither a regular file nor nothing.
    Result<FileVersion> Look() const;

    // The room on the file's volume, in bytes. Taking it fails where there is less.
    struct RehearsedRoom {
        std::function<Status(std::size_t)> take;
        std::function<void(std::size_t)> giveBack;
    };

    // From now on nothing is written: ReserveRoom and Replace only find out whether they could, on
    // a file system that is read-only too.
    void Rehearse(RehearsedRoom room) { rehearsed_ = std::move(room); }
    bool isRehearsed() const { return rehearsed_.has_value(); }

    // Whether the file and its directory can be written and nothing keeps the file from being
    // replaced. A new file is made beside it for that, and vanishes.
    Status CheckReplaceable() const;

    // Keeps room for a file of `size` bytes, which the next Replace uses; one at a time is enough.
    Status ReserveRoom(std::size_t size);

    // Puts a file with these bytes in the place of the one with the version `replaced`, which keeps
    // its content after any failure, and returns the new version; nothing where another program has
    // stored another one by the last moment. Mode and owner stay as they were, as far as that is
    // allowed. A file that may not be written is left alone.
    Result<std::optional<FileVersion>> Replace(std::string_view bytes, const FileVersion& replaced);

  private:
    Status CheckAllowed() const;
    Status CheckNewFile() const;
    Status TakeRoom(std::size_t size);
    Status RehearseNewFile() const;
    Status RehearseReplacing(std::size_t size, const FileVersion& replaced);
    Result<std::unique_ptr<AtomicFile>> NewFile();
    Status Write(AtomicFile& file, std::string_view bytes) const;

    int directory_;
    std::string name_;
    AccessTime accessTime_;
    std::unique_ptr<AtomicFile> reserved_;        // null where no room is kept
    std::optional<RehearsedRoom> rehearsed_;      // where nothing is written
    std::size_t rehearsedSize_ = 0;               // the room kept there
    std::optional<std::size_t> rehearsedStored_;  // what the file would have by now
};

}  // namespace platform
