#pragma once

#include <sys/stat.h>

#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "platform/files/destination_directories.h"
#include "platform/files/killed_run_recovery.h"
#include "platform/files/moved_directory_attributes.h"
#include "platform/files/open_searches.h"
#include "platform/files/path_resolver.h"
#include "platform/io/entry_facts.h"
#include "platform/seam/device_store.h"
#include "platform/text/device_paths.h"

namespace platform {

// What has to be asked before the file tree changes. Where it fails, nothing is changed.
class ChangeGuard {
  public:
    ChangeGuard() = default;
    virtual ~ChangeGuard() = default;
    ChangeGuard(const ChangeGuard&) = delete;
    ChangeGuard& operator=(const ChangeGuard&) = delete;

    virtual Status BeforeChange() = 0;  // of any kind
    virtual Status BeforeMove() = 0;    // of an entry, and before a directory is made
};

// The handheld's files: the host's files below one root directory.
class HostFiles : public DeviceFiles {
  public:
    // `root` is the open root directory of the device's files, none for a device without files.
    // `guard` stays the caller's; null where nothing has to be asked.
    explicit HostFiles(Descriptor root, ChangeGuard* guard = nullptr)
        : HostFiles(std::make_unique<FileTree>(std::move(root)), guard) {}
    HostFiles(std::unique_ptr<FileTree> tree, ChangeGuard* guard)
        : tree_(std::move(tree)), paths_(*tree_), guard_(guard) {}

    HANDLE FindFirstFileW(const WCHAR* pattern, WIN32_FIND_DATA* data) override;
    BOOL FindNextFileW(HANDLE find, WIN32_FIND_DATA* data) override;
    BOOL FindClose(HANDLE find) override;
    BOOL DeleteFileW(const WCHAR* path) override;
    BOOL RemoveDirectoryW(const WCHAR* path) override;
    BOOL CreateDirectoryW(const WCHAR* path, void* security) override;
    BOOL MoveFileW(const WCHAR* oldPath, const WCHAR* newPath) override;
    std::FILE* _wfopen(const WCHAR* path, const WCHAR* mode) override;
    BOOL SHGetShortcutTarget(const WCHAR* path, WCHAR* buffer, int limit) override;
    BOOL SHCreateShortcut(const WCHAR* path, const WCHAR* target) override;

    const Failure& LastFailure() const override { return lastFailure_; }
    std::optional<std::uint64_t> DeletedSize() const override { return deletedSize_; }
    void DirectoryMoves(const WCHAR* oldPath, const WCHAR* newPath) override;
    void DirectoryMoved(const WCHAR* oldPath, const WCHAR* newPath) override;
    void NothingToClean(const WCHAR* /*directory*/) override {}
    void NothingMoves(const WCHAR* /*source*/, const WCHAR* /*destination*/) override {}

    // Clears up after processes that were killed: removes what they left unpublished and gives the
    // sources that they had set aside their names back. Only while no other process is at work on
    // the device.
    void RecoverFromKilledRuns();

    // Whether that would find anything to do.
    bool HaveLeftovers() const { return platform::HaveLeftovers(paths_); }

    // The content of a file of at most `limit` bytes.
    Result<std::string> ReadWhole(std::u16string_view path, std::size_t limit);

    // Keeps the reason of a failure for LastFailure. Returns whether there was none, as the
    // platform has it.
    BOOL KeepFailure(const Status& done);

  private:
    // An entry that is there, reached through its open directory.
    struct Place {
        const OpenedDirectory& directory() const {
            return search != nullptr ? search->directory() : owned;
        }
        const Search* search = nullptr;  // that has the directory open
        OpenedDirectory owned;           // empty where a search has it
        HostName name;
        EntryFacts facts;
    };
    // A name in a directory that is being filled.
    struct Target {
        DestinationDirectory* directory;
        std::u16string_view device;
        HostName host;
    };
    // Whether facts that a search found a moment ago will do.
    enum class Knowledge { Fresh, OfSearch };
    // What becomes of a file that has the name of the one to be written.
    enum class Existing { Replaced, Kept };

    // The volume of the directory that files are moved from or to, opened once.
    struct KeptVolume {
        std::u16string directory;
        std::optional<OpenedDirectory> root;
    };

    Status BeforeChange() { return guard_ == nullptr ? Status() : guard_->BeforeChange(); }
    Status BeforeMove() { return guard_ == nullptr ? Status() : guard_->BeforeMove(); }
    Status ReachDirectory(std::u16string_view path, Place& place);
    Result<Place> Locate(std::u16string_view path, Knowledge knowledge);
    Status Examine(Place& place, std::u16string_view device) const;
    Result<Target> LocateTarget(std::u16string_view path);
    Result<OpenedDirectory> OpenForSearch(std::u16string_view path);
    Result<HANDLE> FindInDirectory(const SplitPath& pattern, WIN32_FIND_DATA& data);
    Result<HANDLE> FindEntry(std::u16string_view path, WIN32_FIND_DATA& data);
    Result<HANDLE> FindFirst(std::u16string_view pattern, WIN32_FIND_DATA& data);
    Status FindNext(HANDLE find, WIN32_FIND_DATA& data);
    Status Delete(std::u16string_view path);
    Status RemoveDirectory(std::u16string_view path);
    Status CreateDirectory(std::u16string_view path);
    Status Move(const Place& source, std::u16string_view oldPath, std::u16string_view newPath);
    Status MoveTo(const Place& source, std::u16string_view oldPath, std::u16string_view newPath,
                  const Target& target);
    Result<const OpenedDirectory*> VolumeOf(std::u16string_view path, KeptVolume& kept) const;
    Status FinishMoveTo(const Place& source, std::u16string_view oldPath, const Target& target);
    void ForgetDestinationDirectories();
    Result<Descriptor> OpenFile(std::u16string_view path, Knowledge knowledge);
    Result<std::FILE*> OpenForReading(std::u16string_view path);
    Result<std::FILE*> OpenForWriting(std::u16string_view path, Existing existing);
    Result<std::optional<struct stat>> Replaced(Place& place, std::u16string_view device,
                                                Existing existing) const;
    Result<std::u16string> TargetOf(std::u16string_view path, int limit);
    Status CreateShortcut(std::u16string_view path, std::u16string_view target);

    std::unique_ptr<FileTree> tree_;
    PathResolver paths_;
    ChangeGuard* guard_;
    OpenSearches searches_;
    DestinationDirectories filled_;
    MovedDirectoryAttributes moved_;
    KeptVolume from_;
    KeptVolume to_;
    Failure lastFailure_;
    std::optional<std::uint64_t> deletedSize_;
};

}  // namespace platform
