#include "platform/registry/registry_file_on_disk.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <utility>

#include "platform/io/attribute_copy.h"
#include "platform/io/entry_facts.h"
#include "platform/io/whole_file.h"
#include "platform/registry/text/registry_parser.h"
#include "platform/text/readable_text.h"

namespace platform {
namespace {

// What the entry is, without opening it. `st_mode` is 0 when there is none.
Result<struct stat> LookAt(int directory, const std::string& name) {
    struct stat status {};
    if (directory < 0) {
        return status;
    }
    if (fstatat(directory, name.c_str(), &status, AT_SYMLINK_NOFOLLOW) != 0) {
        if (errno != ENOENT) {
            return FailOf({"look at it", {}, errno}, ReadableBytes(name));
        }
        status = {};
        return status;
    }
    if (!S_ISREG(status.st_mode)) {
        return FailOf({"use it", {}, 0, "it is no regular file", ERROR_ACCESS_DENIED},
                      ReadableBytes(name));
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

std::string RegistryFileOnDisk::name() const {
    return ReadableBytes(name_);
}

Result<FileVersion> RegistryFileOnDisk::Look() const {
    return LookAt(directory_, name_).map([](const struct stat& status) {
        return FileVersion(status);
    });
}

Result<RegistryFileOnDisk::Content> RegistryFileOnDisk::Read() const {
    const Result<struct stat> found = LookAt(directory_, name_);
    if (!found) {
        return tl::unexpected<Failure>(found.error());
    }
    if (found->st_mode == 0) {
        return Content();
    }
    const Result<Descriptor> file =
        OpenRegularFile(directory_, name_.c_str(), Mounts::Entered, accessTime_);
    if (!file) {
        return FailOf(file.error(), name());
    }
    struct stat status {};
    if (fstat(file->get(), &status) != 0) {
        return FailOf({"look at it", {}, errno}, name());
    }
    if (static_cast<std::size_t>(status.st_size) > kRegistryTextLimit) {
        return FailOf({"read it", {}, 0, "it is too large for a registry", ERROR_BAD_FORMAT},
                      name());
    }
    const FileVersion version(status);
    Result<std::string> bytes = ReadToEnd(file->get(), kRegistryTextLimit, version.size());
    if (!bytes) {
        return FailOf(bytes.error(), name());
    }
    return Content{std::move(*bytes), version};
}

Status RegistryFileOnDisk::CheckAllowed() const {
    const Result<struct stat> old = LookAt(directory_, name_);
    if (!old) {
        return tl::unexpected<Failure>(old.error());
    }
    if (old->st_mode == 0) {
        return {};
    }
    Status possible = CheckWritable(directory_, name_.c_str(), old->st_mode);
    possible = possible ? CheckChangeable(directory_, name_.c_str()) : std::move(possible);
    if (!possible) {
        return FailOf(possible.error(), name());
    }
    possible = CheckChangeable(directory_, "");
    possible = possible ? CheckOwned(directory_, *old) : std::move(possible);
    return possible ? possible : FailOf(possible.error(), "beside " + name());
}

Status RegistryFileOnDisk::CheckNewFile() const {
    const Result<struct stat> old = LookAt(directory_, name_);
    if (!old || old->st_mode == 0) {
        return old.map([](const auto& /*status*/) {});
    }
    const auto file = AtomicFile::Create(directory_, directory_);
    return file ? Status() : FailOf(file.error(), "beside " + name());
}

// The same, without a new file.
Status RegistryFileOnDisk::RehearseNewFile() const {
    const Result<struct stat> old = LookAt(directory_, name_);
    if (!old || old->st_mode == 0) {
        return old.map([](const auto& /*status*/) {});
    }
    if (faccessat(directory_, ".", W_OK | X_OK, AT_EACCESS) != 0) {
        return FailOf({"make a file", {}, errno}, "beside " + name());
    }
    if (const Status taken = rehearsed_->take(0); !taken) {
        return FailOf({"make a file", {}, taken.error().error}, "beside " + name());
    }
    rehearsed_->giveBack(0);
    return {};
}

Status RegistryFileOnDisk::CheckReplaceable() const {
    Status allowed = CheckAllowed();
    if (!isRehearsed()) {
        return allowed ? CheckNewFile() : allowed;
    }
    allowed = allowed ? RehearseNewFile() : std::move(allowed);
    return !allowed && allowed.error().error == EROFS ? Status() : allowed;
}

Status RegistryFileOnDisk::TakeRoom(std::size_t size) {
    if (const Status taken = rehearsed_->take(size); !taken) {
        return FailOf({"keep room for it", {}, taken.error().error}, name());
    }
    rehearsedSize_ = size;
    return {};
}

// The old file and the new one are there at the same time for a while.
Status RegistryFileOnDisk::RehearseReplacing(std::size_t size, const FileVersion& replaced) {
    if (rehearsedSize_ > 0) {
        rehearsed_->giveBack(std::exchange(rehearsedSize_, 0));
    }
    if (Status possible = CheckReplaceable(); !possible) {
        return possible;
    }
    if (const Status taken = rehearsed_->take(size); !taken) {
        return FailOf({"write", {}, taken.error().error}, name());
    }
    if (replaced.exists()) {
        rehearsed_->giveBack(std::exchange(rehearsedStored_, size).value_or(replaced.size()));
    }
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
        return FailOf(file.error(), "beside " + name());
    }
    const int error = posix_fallocate((*file)->descriptor(), 0, static_cast<off_t>(size));
    if (error != 0) {
        return FailOf({"keep room for it", {}, error}, name());
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
        return RehearseReplacing(bytes.size(), replaced).map([&] {
            return std::optional(replaced);
        });
    }
    const Result<struct stat> old = LookAt(directory_, name_);
    if (!old) {
        return tl::unexpected<Failure>(old.error());
    }
    const bool exists = old->st_mode != 0;
    if (const Status writable =
            exists ? CheckWritable(directory_, name_.c_str(), old->st_mode) : Status();
        !writable) {
        return FailOf(writable.error(), name());
    }
    const auto file = NewFile();
    if (!file) {
        return FailOf(file.error(), "beside " + name());
    }
    if (exists) {
        ApplyModeAndOwner((*file)->descriptor(), *old);
    }
    if (const Status written = Write(**file, bytes); !written) {
        return FailOf(written.error(), name());
    }
    const Result<FileVersion> current = Look();
    if (!current || !(*current == replaced)) {
        return current.map(
            [](const FileVersion& /*other*/) { return std::optional<FileVersion>(); });
    }
    if (const Status published = (*file)->PublishInPlace(directory_, name_.c_str()); !published) {
        return FailOf(published.error(), name());
    }
    struct stat status {};
    if (fstat((*file)->descriptor(), &status) != 0) {
        return FailOf({"look at it", {}, errno}, name());
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
