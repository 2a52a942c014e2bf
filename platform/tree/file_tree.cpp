#include "platform/tree/file_tree.h"

#include <fcntl.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <utility>

#include "platform/io/atomic_file.h"
#include "platform/io/attribute_copy.h"
#include "platform/io/rename_without_replacing.h"
#include "platform/text/name_matching.h"
#include "platform/tree/dos_attributes.h"

namespace platform {

namespace {

class RealListing : public DirectoryListing {
  public:
    explicit RealListing(int directory) : directory_(directory) {}

    Result<bool> Next() override {
        Result<bool> more = reader_.Next(directory_);
        entry_ = reader_.entry();
        return more;
    }

  private:
    int directory_;
    DirectoryReader reader_;
};

// The name with its letters in another case; the same name when it has no letters.
DeviceName InOtherCase(std::u16string_view name) {
    DeviceName upper;
    for (const WCHAR unit : name) {
        upper.Append(FoldUnit(unit));
    }
    if (upper.view() != name) {
        return upper;
    }
    DeviceName lower;
    for (const WCHAR unit : name) {
        lower.Append(unit >= u'A' && unit <= u'Z' ? static_cast<WCHAR>(unit - u'A' + u'a') : unit);
    }
    return lower;
}

SourceFile SourceOf(const FileMove& move) {
    return {move.from.get(), move.name, move.fromVolume.get(), move.path};
}

}  // namespace

Result<OpenedDirectory> FileTree::Open(const OpenedDirectory& parent, const char* path,
                                       OpenFor purpose, Mounts mounts) const {
    Result<Descriptor> opened =
        purpose == OpenFor::Reading
            ? OpenBeneathToRead(parent.get(), path, O_DIRECTORY | O_NONBLOCK, mounts, accessTime_)
            : OpenBeneath(parent.get(), path, O_DIRECTORY | O_PATH, mounts);
    return std::move(opened).map([](Descriptor descriptor) {
        return OpenedDirectory{std::move(descriptor), false, nullptr};
    });
}

std::unique_ptr<DirectoryListing> FileTree::List(const OpenedDirectory& directory) const {
    return std::make_unique<RealListing>(directory.get());
}

Result<EntryFacts> FileTree::FactsOf(const OpenedDirectory& directory, const char* name) const {
    return platform::FactsOf(directory.get(), name);
}

Result<struct stat> FileTree::StatusOf(const OpenedDirectory& directory, const char* name) const {
    struct stat status {};
    if (fstatat(directory.get(), name, &status, AT_SYMLINK_NOFOLLOW | AT_EMPTY_PATH) != 0) {
        return Fail("look at", errno);
    }
    return status;
}

std::optional<FileIdentity> FileTree::Identity(const OpenedDirectory& directory) const {
    return IdentityOf(directory.get());
}

std::optional<FileIdentity> FileTree::Identity(const OpenedDirectory& directory,
                                               const char* name) const {
    return IdentityOf(directory.get(), name);
}

bool FileTree::IsMountPoint(const OpenedDirectory& directory, const char* name) const {
    return platform::IsMountPoint(directory.get(), name);
}

bool FileTree::IgnoresCase(const OpenedDirectory& directory, const HostName& name) const {
    HostName other;
    if (!HostNameOf(InOtherCase(DeviceNameOf(name.view()).view()).view(), other) ||
        other.view() == name.view()) {
        return false;
    }
    const std::optional<FileIdentity> found = Identity(directory, other.c_str());
    return found && found == Identity(directory, name.c_str());
}

DWORD FileTree::HiddenAndSystem(const OpenedDirectory& directory) const {
    return platform::HiddenAndSystem(directory.get());
}

Result<Descriptor> FileTree::OpenFile(const OpenedDirectory& directory, const char* name) const {
    return OpenRegularFile(directory.get(), name, Mounts::Refused, accessTime_);
}

Status FileTree::CheckWritable(const OpenedDirectory& directory, const char* name,
                               mode_t mode) const {
    return platform::CheckWritable(directory.get(), name, mode);
}

Status FileTree::Unlink(const OpenedDirectory& directory, const char* name) {
    return unlinkat(directory.get(), name, 0) == 0 ? Status() : Fail("delete", errno);
}

Status FileTree::RemoveDirectory(const OpenedDirectory& directory, const char* name) {
    return unlinkat(directory.get(), name, AT_REMOVEDIR) == 0 ? Status() : Fail("remove", errno);
}

Status FileTree::MakeDirectory(const OpenedDirectory& directory, const char* name, mode_t mode) {
    return mkdirat(directory.get(), name, mode) == 0 ? Status() : Fail("make", errno);
}

Status FileTree::Rename(const OpenedDirectory& from, const char* name, const OpenedDirectory& to,
                        const char* newName) {
    return RenameWithoutReplacing(from.get(), name, to.get(), newName);
}

Status FileTree::MoveToVolume(const FileMove& move) {
    return platform::MoveToVolume(SourceOf(move),
                                  {move.to.get(), move.newName, move.toVolume->get()});
}

Status FileTree::FinishMove(const FileMove& move) {
    return platform::FinishMove(SourceOf(move), move.to.get(), move.newName);
}

Result<std::FILE*> FileTree::OpenPublishingStream(OpenedDirectory directory, OpenedDirectory volume,
                                                  const HostName& name,
                                                  const std::optional<struct stat>& replaced,
                                                  Failure& failure) {
    return platform::OpenPublishingStream(std::move(directory.descriptor),
                                          std::move(volume.descriptor), name, replaced, failure);
}

void FileTree::CopyDirectoryAttributes(const OpenedDirectory& old, const struct stat& status,
                                       const OpenedDirectory& made) {
    CopyUserAttributes(old.get(), made.get());
    ApplyModeAndOwner(made.get(), status);
    const std::array<timespec, 2> times = {status.st_atim, status.st_mtim};
    futimens(made.get(), times.data());
}

}  // namespace platform
