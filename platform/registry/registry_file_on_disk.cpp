#include "platform/registry/registry_file_on_disk.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <utility>

#include "platform/io/attribute_copy.h"
#include "platform/io/entry_facts.h"
#include "platform/io/whole_file.h"
#include "platform/registry/text/registry_parser.h"

namespace platform {
namespace {

constexpr const char* kName = "registry.reg";

// What the entry is, without opening it. `st_mode` is 0 when there is none.
Result<struct stat> LookAt(int directory) {
    struct stat status {};
    if (fstatat(directory, kName, &status, AT_SYMLINK_NOFOLLOW) != 0) {
        if (errno != ENOENT) {
            return FailOf({"look at it", {}, errno}, kName);
        }
        status = {};
        return status;
    }
    if (!S_ISREG(status.st_mode)) {
        return FailOf({"use it", {}, 0, "it is no regular file", ERROR_ACCESS_DENIED}, kName);
    }
    return status;
}

// What only shows in attributes beside the mode; `name` is "" for the directory itself.
Status CheckChangeable(int directory, const char* name) {
    struct statx entry {};
    if (statx(directory, name, AT_EMPTY_PATH | AT_SYMLINK_NOFOLLOW, 0, &entry) != 0) {
        return Fail("look at it", errno);
    }
    if ((entry.stx_attributes & (STATX_ATTR_IMMUTABLE | STATX_ATTR_APPEND)) != 0) {
        return FailBecause("replace it", "it is immutable", ERROR_ACCESS_DENIED);
    }
    const bool isFile = *name != '\0';
    if (isFile && (entry.stx_attributes & STATX_ATTR_MOUNT_ROOT) != 0) {
        return FailBecause("replace it", "it is a mount point", ERROR_SHARING_VIOLATION);
    }
    return {};
}

// In a directory where users may replace only their own files, another user's file stays.
Status CheckOwned(int directory, const struct stat& old) {
    struct stat around {};
    if (fstat(directory, &around) != 0) {
        return Fail("look at it", errno);
    }
    const bool isShared = (around.st_mode & S_ISVTX) != 0 && geteuid() != 0;
    return isShared && geteuid() != old.st_uid && geteuid() != around.st_uid
               ? Fail("replace it", EPERM)
               : Status();
}

}  // namespace

Result<FileVersion> RegistryFileOnDisk::Look() const {
    return LookAt(directory_).map([](const struct stat& status) { return FileVersion(status); });
}

Result<RegistryFileOnDisk::Content> RegistryFileOnDisk::Read() const {
    const Result<struct stat> found = LookAt(directory_);
    if (!found) {
        return tl::unexpected<Failure>(found.error());
    }
    if (found->st_mode == 0) {
        return Content();
    }
    const Result<Descriptor> file =
        OpenRegularFile(directory_, kName, Mounts::Entered, accessTime_);
    if (!file) {
        return FailOf(file.error(), kName);
    }
    struct stat status {};
    if (fstat(file->get(), &status) != 0) {
        return FailOf({"look at it", {}, errno}, kName);
    }
    if (static_cast<std::size_t>(status.st_size) > kRegistryTextLimit) {
        return FailOf({"read it", {}, 0, "it is too large for a registry", ERROR_BAD_FORMAT},
                      kName);
    }
    const FileVersion version(status);
    Result<std::string> bytes = ReadToEnd(file->get(), kRegistryTextLimit, version.size());
    if (!bytes) {
        return FailOf(bytes.error(), kName);
    }
    return Content{std::move(*bytes), version};
}

Status RegistryFileOnDisk::CheckAllowed() const {
    const Result<struct stat> old = LookAt(directory_);
    if (!old) {
        return tl::unexpected<Failure>(old.error());
    }
    if (old->st_mode == 0) {
        return {};
    }
    Status possible = CheckWritable(directory_, kName, old->st_mode);
    possible = possible ? CheckChangeable(directory_, kName) : std::move(possible);
    if (!possible) {
        return FailOf(possible.error(), kName);
    }
    possible = CheckChangeable(directory_, "");
    possible = possible ? CheckOwned(directory_, *old) : std::move(possible);
    return possible ? possible : FailOf(possible.error(), std::string("beside ") + kName);
}

Status RegistryFileOnDisk::CheckNewFile() const {
    const Result<struct stat> old = LookAt(directory_);
    if (!old || old->st_mode == 0) {
        return old.map([](const auto& /*status*/) {});
    }
    const auto file = AtomicFile::Create(directory_, directory_);
    return file ? Status() : FailOf(file.error(), std::string("beside ") + kName);
}

Status RegistryFileOnDisk::CheckReplaceable() const {
    Status allowed = CheckAllowed();
    if (isRehearsed()) {
        return !allowed && allowed.error().error == EROFS ? Status() : allowed;
    }
    return allowed ? CheckNewFile() : allowed;
}

Status RegistryFileOnDisk::TakeRoom(std::size_t size) {
    if (const Status taken = rehearsed_->take(size); !taken) {
        return FailOf({"keep room for it", {}, taken.error().error}, kName);
    }
    rehearsedSize_ = size;
    return {};
}

// The old file and the new one are there at the same time for a while.
Status RegistryFileOnDisk::RehearseReplacing(std::size_t size) {
    if (rehearsedSize_ == 0) {
        if (const Status taken = rehearsed_->take(size); !taken) {
            return FailOf({"write", {}, taken.error().error}, kName);
        }
        rehearsedSize_ = size;
    }
    rehearsed_->giveBack(std::exchange(rehearsedSize_, 0));
    return {};
}

Status RegistryFileOnDisk::ReserveRoom(std::size_t size) {
    if (reserved_ != nullptr || rehearsedSize_ > 0) {
        return {};
    }
    if (isRehearsed()) {
        return TakeRoom(size);
    }
    auto file = AtomicFile::Create(directory_, directory_);
    if (!file) {
        return FailOf(file.error(), std::string("beside ") + kName);
    }
    const int error = posix_fallocate((*file)->descriptor(), 0, static_cast<off_t>(size));
    if (error != 0) {
        return FailOf({"keep room for it", {}, error}, kName);
    }
    reserved_ = std::move(*file);
    return {};
}

Result<std::unique_ptr<AtomicFile>> RegistryFileOnDisk::NewFile() {
    if (reserved_ != nullptr) {
        return std::exchange(reserved_, nullptr);
    }
    return AtomicFile::Create(directory_, directory_);
}

Result<std::optional<FileVersion>> RegistryFileOnDisk::Replace(std::string_view bytes,
                                                               const FileVersion& replaced) {
    if (isRehearsed()) {
        return RehearseReplacing(bytes.size()).map([&] { return std::optional(replaced); });
    }
    const Result<struct stat> old = LookAt(directory_);
    if (!old) {
        return tl::unexpected<Failure>(old.error());
    }
    const bool exists = old->st_mode != 0;
    if (const Status writable = exists ? CheckWritable(directory_, kName, old->st_mode) : Status();
        !writable) {
        return FailOf(writable.error(), kName);
    }
    const auto file = NewFile();
    if (!file) {
        return FailOf(file.error(), std::string("beside ") + kName);
    }
    if (exists) {
        ApplyModeAndOwner((*file)->descriptor(), *old);
    }
    if (const Status written = Write(**file, bytes); !written) {
        return FailOf(written.error(), kName);
    }
    const Result<FileVersion> current = Look();
    if (!current || !(*current == replaced)) {
        return current.map(
            [](const FileVersion& /*other*/) { return std::optional<FileVersion>(); });
    }
    if (const Status published = (*file)->PublishInPlace(directory_, kName); !published) {
        return FailOf(published.error(), kName);
    }
    struct stat status {};
    if (fstat((*file)->descriptor(), &status) != 0) {
        return FailOf({"look at it", {}, errno}, kName);
    }
    return FileVersion(status);
}

// Writes the whole content and stores it; what was kept as room and is not needed goes.
Status RegistryFileOnDisk::Write(AtomicFile& file, std::string_view bytes) const {
    if (Status written = WriteWhole(file.descriptor(), bytes); !written) {
        return written;
    }
    if (ftruncate(file.descriptor(), static_cast<off_t>(bytes.size())) != 0) {
        return Fail("write", errno);
    }
    return file.Store();
}

}  // namespace platform
