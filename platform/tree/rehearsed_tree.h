#pragma once

#include <sys/stat.h>

#include <cerrno>
#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <utility>

#include "platform/tree/file_tree.h"
#include "platform/tree/rehearsed_directory.h"
#include "platform/tree/rehearsed_room.h"

namespace platform {

// A tree on which every change takes effect in memory alone, and is seen from then on. The real
// tree is read, and its times of access are left alone where that is allowed. What the kernel would
// refuse is refused as far as it can be asked for: permissions, attributes, names that are taken,
// directories that are not empty, mount points, and room. Where the root is on a read-only file
// system, nothing is refused for that, so that a device on it can be rehearsed.
//
// Memory grows with each entry that is changed, and each directory in which one is, by their names
// and at most 200 bytes; with nothing else.
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

    RehearsedRoom& room() { return room_; }

    // What is known of a directory's changes by now: another opening of it may have got the first
    // one.
    const RehearsedNode& NodeOf(const OpenedDirectory& directory) const;

    // Whether an entry of the real directory is still there.
    bool ShowsReal(const OpenedDirectory& directory, const char* name) const;

  private:
    // What was looked at last, which is mostly what is changed next.
    struct Look {
        RehearsedNode directory;
        std::string name;
        struct statx entry {};
    };

    // An entry on the disk; `name` is "" for the directory itself.
    struct RealPlace {
        OpenedDirectory owned;  // empty where the caller has the directory
        int directory;
        const char* name;
    };

    const RehearsedNode& Current(const RehearsedNode& node) const;
    Result<struct statx> LookAtReal(const OpenedDirectory& directory, const char* name) const;
    Result<struct statx> LastLook(const OpenedDirectory& directory, const char* name) const;
    Result<struct statx> LookAtAdded(const OpenedDirectory& directory, const char* name) const;
    Result<RealPlace> RealPlaceOf(const OpenedDirectory& directory, const char* name) const;
    RehearsedNode FindUntouched(const OpenedDirectory& parent, std::string_view path) const;
    RehearsedNode NewNode(const RehearsedNode& parent, std::string_view name) const;
    RehearsedNode ChildOf(const OpenedDirectory& parent, const char* name) const;
    Result<OpenedDirectory> OpenEntry(const OpenedDirectory& parent, const char* name,
                                      OpenFor purpose, Mounts mounts) const;
    Result<OpenedDirectory> OpenNode(const RehearsedNode& node, OpenFor purpose) const;
    bool IsRefusal(int error) const { return error != EROFS || !isOnReadOnly_; }
    void AskRules(const OpenedDirectory& directory) const;
    Status CheckChange(const OpenedDirectory& directory) const;
    Status CheckTaking(const OpenedDirectory& directory, const char* name) const;
    bool IsOthers(const RehearsedDirectory& node, uid_t owner) const;
    Status CheckEmpty(const OpenedDirectory& directory, const char* name) const;
    Status CheckNewFile(const OpenedDirectory& directory, const OpenedDirectory& volume);
    Status CheckDeleting(const FileMove& move);
    Status CheckReadable(const OpenedDirectory& directory, const char* name) const;
    dev_t VolumeOf(const OpenedDirectory& directory) const;
    bool AreOnOneMount(const OpenedDirectory& one, const OpenedDirectory& other) const;
    void Note(const RehearsedNode& node);
    Status Show(const OpenedDirectory& directory, const OpenedDirectory& volume,
                const std::string& name, const EntryFacts& facts, std::string content);
    void TakeAway(const OpenedDirectory& directory, const char* name);
    void FreeRoomOf(const struct statx& entry, const OpenedDirectory& directory);
    bool IsWithin(const OpenedDirectory& directory, const RehearsedDirectory& other);
    Status MoveEntry(const OpenedDirectory& from, const char* name, const OpenedDirectory& to,
                     const char* newName);

    ChangedDirectories changed_;
    RehearsedRoom room_;
    std::map<std::pair<dev_t, std::uint64_t>, std::uint32_t> namesGone_;  // of files with several
    RehearsedNode root_;
    mutable Look last_;
    std::uint32_t made_ = 0;
    bool isSuperuser_;
    bool isOnReadOnly_;
};

}  // namespace platform
