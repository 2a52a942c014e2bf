#pragma once

#include <sys/stat.h>

#include <cstdio>
#include <memory>
#include <optional>

#include "core/platform_types.h"
#include "platform/diagnostics/failure.h"
#include "platform/io/descriptor.h"
#include "platform/io/directory_reader.h"
#include "platform/io/entry_facts.h"
#include "platform/io/file_identity.h"
#include "platform/io/open_beneath.h"
#include "platform/moves/move_to_other_volume.h"

namespace platform {

struct RehearsedDirectory;

// An open directory of the tree.
struct OpenedDirectory {
    Descriptor descriptor;  // none for a directory that only a rehearsal has made
    bool isRoot = false;
    std::shared_ptr<RehearsedDirectory> rehearsed;  // its changes; null where nothing is rehearsed

    int get() const { return descriptor.get(); }
};

// How a directory is opened: to reach its entries, or to read them as well.
enum class OpenFor { Reaching, Reading };

// A reading of a directory from its beginning.
class DirectoryListing {
  public:
    DirectoryListing() = default;
    virtual ~DirectoryListing() = default;
    DirectoryListing(const DirectoryListing&) = delete;
    DirectoryListing& operator=(const DirectoryListing&) = delete;

    // Moves to the next entry; false at the end.
    virtual Result<bool> Next() = 0;
    const DirectoryReader::Entry& entry() const { return entry_; }

  protected:
    DirectoryReader::Entry entry_{};
};

// Calls `act` with each entry that is left, until it returns false. Returns whether all were read.
template <typename Act>
Result<bool> ReadEntries(DirectoryListing& listing, Act act) {
    Result<bool> more = listing.Next();
    while (more && *more && act(listing.entry())) {
        more = listing.Next();
    }
    return more.map([](bool isLeft) { return !isLeft; });
}

// A regular file that is to be moved, and where to; all stay the caller's. The volumes are the root
// directories of those that hold them.
struct FileMove {
    const OpenedDirectory& from;
    const char* name;
    const OpenedDirectory& fromVolume;
    std::u16string_view path;  // its device path as its caller named it
    const OpenedDirectory& to;
    const char* newName;
    const OpenedDirectory* toVolume;  // null where the file is there already
};

// The operations of the kernel on the entries of one tree, by their exact host names. Nothing leads
// out of the tree. Failures are the kernel's.
class FileTree {
  public:
    // `root` is the open root directory; without one there is no tree.
    explicit FileTree(Descriptor root) : FileTree(std::move(root), AccessTime::Shown) {}
    virtual ~FileTree() = default;
    FileTree(const FileTree&) = delete;
    FileTree& operator=(const FileTree&) = delete;

    const OpenedDirectory& root() const { return root_; }

    // The directory at a path of exact names below `parent`, "." for itself. EXDEV for a mount on
    // the way that is refused.
    virtual Result<OpenedDirectory> Open(const OpenedDirectory& parent, const char* path,
                                         OpenFor purpose, Mounts mounts) const;

    // `directory` is open for reading, and stays open as long as the listing lives.
    virtual std::unique_ptr<DirectoryListing> List(const OpenedDirectory& directory) const;

    virtual Result<EntryFacts> FactsOf(const OpenedDirectory& directory, const char* name) const;
    virtual Result<struct stat> StatusOf(const OpenedDirectory& directory, const char* name) const;
    virtual std::optional<FileIdentity> Identity(const OpenedDirectory& directory) const;
    virtual std::optional<FileIdentity> Identity(const OpenedDirectory& directory,
                                                 const char* name) const;
    virtual bool IsMountPoint(const OpenedDirectory& directory, const char* name) const;
    // Whether the file system itself finds the entry also with its letters in another case.
    bool IgnoresCase(const OpenedDirectory& directory, const HostName& name) const;

    virtual DWORD HiddenAndSystem(const OpenedDirectory& directory) const;
    virtual Result<Descriptor> OpenFile(const OpenedDirectory& directory, const char* name) const;
    virtual Status CheckWritable(const OpenedDirectory& directory, const char* name,
                                 mode_t mode) const;

    virtual Status Unlink(const OpenedDirectory& directory, const char* name);
    virtual Status RemoveDirectory(const OpenedDirectory& directory, const char* name);
    virtual Status MakeDirectory(const OpenedDirectory& directory, const char* name, mode_t mode);
    virtual Status Rename(const OpenedDirectory& from, const char* name, const OpenedDirectory& to,
                          const char* newName);
    virtual Status MoveToVolume(const FileMove& move);
    virtual Status FinishMove(const FileMove& move);

    // See platform/io/atomic_file.h.
    virtual Result<std::FILE*> OpenPublishingStream(OpenedDirectory directory,
                                                    OpenedDirectory volume, const HostName& name,
                                                    const std::optional<struct stat>& replaced,
                                                    Failure& failure);

    // Gives the directory `made`, open for reading, what `old` had: mode, owner, user attributes
    // and times, as far as that is allowed.
    virtual void CopyDirectoryAttributes(const OpenedDirectory& old, const struct stat& status,
                                         const OpenedDirectory& made);

  protected:
    FileTree(Descriptor root, AccessTime time)
        : root_{std::move(root), true, nullptr}, accessTime_(time) {}

    AccessTime accessTime() const { return accessTime_; }

  private:
    OpenedDirectory root_;
    AccessTime accessTime_;
};

}  // namespace platform
