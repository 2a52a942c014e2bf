#include "platform/io/atomic_file.h"

#include <fcntl.h>

#include <cerrno>
#include <string>

#include "platform/io/attribute_copy.h"
#include "platform/io/file_identity.h"
#include "platform/io/open_beneath.h"
#include "platform/io/rename_without_replacing.h"
#include "platform/io/whole_file.h"
#include "platform/text/reserved_names.h"

namespace platform {

namespace {

constexpr char kStore[] = "store the new file";
constexpr mode_t kNewFileMode = 0666;

// The only way by which everyone may give a nameless file a name.
constexpr char kOpenFiles[] = "/proc/self/fd/";

}  // namespace

Result<std::unique_ptr<AtomicFile>> AtomicFile::Create(int directory, int volume,
                                                       Survives survives) {
    std::optional<HostName> reserved;
    Descriptor file;
    if (access(kOpenFiles, F_OK) == 0) {
        file = Descriptor(openat(directory, ".", O_TMPFILE | O_RDWR | O_CLOEXEC, kNewFileMode));
    }
    if (!file) {
        reserved = NewReservedName();
        file = Descriptor(openat(volume, reserved->c_str(),
                                 O_CREAT | O_EXCL | O_RDWR | O_NOFOLLOW | O_CLOEXEC, kNewFileMode));
    }
    if (!file) {
        return Fail("make a file", errno);
    }
    return std::unique_ptr<AtomicFile>(new AtomicFile(std::move(file), volume, reserved, survives));
}

AtomicFile::~AtomicFile() {
    if (reserved_) {
        unlinkat(volume_, reserved_->c_str(), 0);
    }
}

Status AtomicFile::SyncContent() const {
    const bool isSafe = survives_ == Survives::Kill || fsync(descriptor()) == 0;
    return isSafe ? Status() : Fail(kStore, errno);
}

Status AtomicFile::SyncNames(int directory) const {
    return survives_ == Survives::Kill ? Status() : SyncEntries(directory);
}

Status AtomicFile::Link(int directory, const char* name) const {
    const std::string path = kOpenFiles + std::to_string(descriptor());
    if (linkat(AT_FDCWD, path.c_str(), directory, name, AT_SYMLINK_FOLLOW) != 0) {
        return Fail("name the new file", errno);
    }
    return {};
}

// A link cannot replace a file, only a renaming can: so the file needs a name first.
Status AtomicFile::Reserve() {
    const HostName reserved = NewReservedName();
    Status linked = Link(volume_, reserved.c_str());
    if (linked) {
        reserved_ = reserved;
    }
    return linked;
}

Status AtomicFile::PublishNew(int directory, const char* name) {
    if (Status synced = SyncContent(); !synced) {
        return synced;
    }
    if (!reserved_) {
        if (Status linked = Link(directory, name); !linked) {
            return linked;
        }
    } else if (Status renamed =
                   RenameWithoutReplacing(volume_, reserved_->c_str(), directory, name);
               !renamed) {
        return renamed;
    }
    reserved_.reset();
    Status synced = SyncNames(directory);
    if (!synced) {
        Withdraw(directory, name);
    }
    return synced;
}

void AtomicFile::Withdraw(int directory, const char* name) const {
    struct stat mine {};
    if (fstat(descriptor(), &mine) == 0 && StandsFor(directory, name, mine)) {
        unlinkat(directory, name, 0);
    }
}

// With the name that publishing needs: nothing that takes time is left to be done then.
Status AtomicFile::Store() {
    if (isStored_) {
        return {};
    }
    if (Status synced = SyncContent(); !synced) {
        return synced;
    }
    Status named = reserved_ ? Status() : Reserve();
    isStored_ = named.has_value();
    return named;
}

Status AtomicFile::PublishInPlace(int directory, const char* name) {
    if (Status stored = Store(); !stored) {
        return stored;
    }
    if (renameat(volume_, reserved_->c_str(), directory, name) != 0) {
        return Fail("replace the old file", errno);
    }
    reserved_.reset();
    return SyncNames(directory);
}

namespace {

struct PublishingStream {
    Descriptor directory;
    Descriptor volume;
    HostName name;
    std::optional<struct stat> replaced;
    Failure& failure;
    std::unique_ptr<AtomicFile> file;
    Status written;
};

ssize_t WriteStream(void* cookie, const char* bytes, std::size_t count) {
    auto& stream = *static_cast<PublishingStream*>(cookie);
    if (stream.written) {
        stream.written = WriteWhole(stream.file->descriptor(), {bytes, count});
    }
    return stream.written ? static_cast<ssize_t>(count) : 0;
}

Status Replace(const PublishingStream& stream) {
    const Result<Descriptor> old = OpenRegularFile(stream.directory.get(), stream.name.c_str());
    if (old) {
        CopyUserAttributes(old->get(), stream.file->descriptor());
    }
    ApplyModeAndOwner(stream.file->descriptor(), *stream.replaced);
    return stream.file->PublishInPlace(stream.directory.get(), stream.name.c_str());
}

Status Publish(const PublishingStream& stream) {
    if (!stream.written) {
        return stream.written;
    }
    return stream.replaced ? Replace(stream)
                           : stream.file->PublishNew(stream.directory.get(), stream.name.c_str());
}

int CloseStream(void* cookie) {
    const std::unique_ptr<PublishingStream> stream(static_cast<PublishingStream*>(cookie));
    const Status published = Publish(*stream);
    if (published) {
        return 0;
    }
    stream->failure = published.error();
    errno = published.error().error;
    return -1;
}

}  // namespace

Result<std::FILE*> OpenPublishingStream(Descriptor directory, Descriptor volume,
                                        const HostName& name,
                                        const std::optional<struct stat>& replaced,
                                        Failure& failure) {
    auto file = AtomicFile::Create(directory.get(), volume.get());
    if (!file) {
        return tl::unexpected<Failure>(file.error());
    }
    auto stream = std::unique_ptr<PublishingStream>(
        new PublishingStream{std::move(directory), std::move(volume), name, replaced, failure,
                             std::move(*file), Status()});
    std::FILE* const opened =
        fopencookie(stream.get(), "w",
                    {.read = nullptr, .write = WriteStream, .seek = nullptr, .close = CloseStream});
    if (opened == nullptr) {
        return Fail("open", errno);
    }
    static_cast<void>(stream.release());
    return opened;
}

}  // namespace platform
