#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <unordered_map>
#include <unordered_set>

#include "platform/files/file_tree.h"

namespace platform {

struct RehearsedEntry;

// What a rehearsal has changed in one directory.
struct RehearsedDirectory {
    std::shared_ptr<RehearsedDirectory> parent;  // null for the root
    std::optional<std::string> realPath;         // below the root; none for one that was made
    FileIdentity identity;                       // of one that was made; unlike that of any other
    std::unordered_set<std::string> hidden;      // real entries that are deleted or have moved away
    std::map<std::string, RehearsedEntry> added;
    std::optional<dev_t> volume;  // none where it was not asked for yet
    std::optional<int> refusal;   // the errno of every change in it, 0 for none; the same
    long changes = 0;
    bool isNoted = false;  // the tree keeps it
};

// An entry that was made, or has moved here. A directory has its changes, a file that was written
// its content, a file that has moved its old place.
struct RehearsedEntry {
    EntryFacts facts;
    std::shared_ptr<RehearsedDirectory> directory;
    std::shared_ptr<const std::string> content;
    std::shared_ptr<RehearsedDirectory> oldDirectory;
    std::string oldName;
};

// A tree on which every change takes effect in memory alone, and is seen from then on. The real
// tree is read, and its times of access are left alone where that is allowed. What the kernel would
// refuse is refused as far as it can be asked for: permissions, names that are taken, directories
// that are not empty, mount points, and room. A file system that is read-only refuses nothing, so
// that a device on it can be rehearsed.
//
// Memory grows with each change by its name and at most 200 bytes, with nothing else.
class RehearsedTree : public FileTree {
  public:
    explicit RehearsedTree(Descriptor root);

    Result<OpenedDirectory> Open(const OpenedDirectory& parent, const char* path, OpenFor purpose,
                                 Mounts mounts) const override;
    std::unique_ptr<DirectoryListing> List(const OpenedDirectory& directory) const override;
    Result<EntryFacts> FactsOf(const OpenedDirectory& directory, const char* name) const override;
    Result<struct stat> StatusOf(const OpenedDirectory& directory, const char* name) const override;
    std::optional<FileIdentity> Identity(const OpenedDirectory& directory) const override;
    std::optional<FileIdentity> Identity(const OpenedDirectory& directory,
                                         const char* name) const override;
    bool IsMountPoint(const OpenedDirectory& directory, const char* name) const override;
    DWORD HiddenAndSystem(const OpenedDirectory& directory) const override;
    Result<Descriptor> OpenFile(const OpenedDirectory& directory, const char* name) const override;
    Status CheckWritable(const OpenedDirectory& directory, const char* name,
                         mode_t mode) const override;

    Status Unlink(const OpenedDirectory& directory, const char* name) override;
    Status RemoveDirectory(const OpenedDirectory& directory, const char* name) override;
    Status MakeDirectory(const OpenedDirectory& directory, const char* name, mode_t mode) override;
    Status Rename(const OpenedDirectory& from, const char* name, const OpenedDirectory& to,
                  const char* newName) override;
    Status MoveToVolume(const FileMove& move) override;
    Status FinishMove(const FileMove& move) override;
    Result<std::FILE*> OpenPublishingStream(OpenedDirectory directory, OpenedDirectory volume,
                                            const HostName& name,
                                            const std::optional<struct stat>& replaced,
                                            Failure& failure) override;
    void CopyDirectoryAttributes(const OpenedDirectory& old, const struct stat& status,
                                 const OpenedDirectory& made) override;

    using Node = std::shared_ptr<RehearsedDirectory>;

    // The changes that are known of a directory by now: another opening of it may have got the
    // first one.
    const Node& Current(const Node& node) const;

  private:
    const Node& NodeOf(const OpenedDirectory& directory) const;
    Node Child(const Node& parent, const std::string& realPath) const;
    Result<OpenedDirectory> OpenReal(const Node& node, OpenFor purpose, Mounts mounts) const;
    Result<OpenedDirectory> OpenNode(const Node& node, OpenFor purpose) const;
    void Note(const Node& node);
    Status CheckChange(const OpenedDirectory& directory) const;
    dev_t VolumeOf(const OpenedDirectory& directory) const;
    Status CheckEmpty(const OpenedDirectory& directory, const char* name) const;
    Status CheckRoom(const OpenedDirectory& directory, const EntryFacts& facts);
    void TakeAway(const OpenedDirectory& directory, const char* name);
    Status MoveEntry(const OpenedDirectory& from, const char* name, const OpenedDirectory& to,
                     const char* newName);

    std::unordered_map<std::string, Node> changed_;  // by their real paths
    std::unordered_map<dev_t, std::int64_t> freed_;  // bytes of each volume, negative where filled
    Node rootNode_;
    ino_t made_ = 0;
};

}  // namespace platform
