#include "platform/unpublished_file.h"

#include <dirent.h>
#include <fcntl.h>

#include <cerrno>
#include <string>

#include "platform/device_tree.h"
#include "platform/directory_reader.h"
#include "platform/moves.h"

namespace platform {

namespace {

constexpr mode_t kNewFileMode = 0666;

// The only way by which everyone may give a nameless file a name.
constexpr char kOpenFiles[] = "/proc/self/fd/";

void RemoveLeftBehind(int volume, const char* name) {
    const Result<EntryFacts> facts = FactsOf(volume, name);
    if (facts && facts->isRegularFile()) {
        unlinkat(volume, name, 0);
    }
}

bool MayBeDirectory(const DirectoryReader::Entry& entry) {
    return entry.type == DT_DIR || entry.type == DT_UNKNOWN;
}

}  // namespace

Result<std::unique_ptr<UnpublishedFile>> UnpublishedFile::Create(int directory, int volume) {
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
    return std::unique_ptr<UnpublishedFile>(new UnpublishedFile(std::move(file), volume, reserved));
}

UnpublishedFile::~UnpublishedFile() {
    if (reserved_) {
        unlinkat(volume_, reserved_->c_str(), 0);
    }
}

Status UnpublishedFile::Link(int directory, const char* name) const {
    const std::string path = kOpenFiles + std::to_string(descriptor());
    if (linkat(AT_FDCWD, path.c_str(), directory, name, AT_SYMLINK_FOLLOW) != 0) {
        return Fail("name the new file", errno);
    }
    return {};
}

// A link cannot replace a file, only a renaming can: so the file needs a name first.
Status UnpublishedFile::Reserve() {
    const HostName reserved = NewReservedName();
    const Status linked = Link(volume_, reserved.c_str());
    if (linked) {
        reserved_ = reserved;
    }
    return linked;
}

Status UnpublishedFile::PublishNew(int directory, const char* name) {
    if (fsync(descriptor()) != 0) {
        return Fail("store the new file", errno);
    }
    if (!reserved_) {
        return Link(directory, name);
    }
    const Status renamed = RenameWithoutReplacing(volume_, reserved_->c_str(), directory, name);
    if (renamed) {
        reserved_.reset();
    }
    return renamed;
}

Status UnpublishedFile::PublishInPlace(int directory, const char* name) {
    if (fsync(descriptor()) != 0) {
        return Fail("store the new file", errno);
    }
    if (const Status named = reserved_ ? Status() : Reserve(); !named) {
        return named;
    }
    if (renameat(volume_, reserved_->c_str(), directory, name) != 0) {
        return Fail("replace the old file", errno);
    }
    reserved_.reset();
    return {};
}

void TakeModeAndOwner(int file, const struct stat& from) {
    // Only root can give a file away; everyone else goes on being its owner.
    [[maybe_unused]] const int given = fchown(file, from.st_uid, from.st_gid);
    fchmod(file, from.st_mode & 0777);
}

void RemoveUnpublishedFilesIn(int directory) {
    DirectoryReader reader(DirectoryReader::Names::All);
    while (reader.Next(directory).value_or(false)) {
        if (IsReservedName(reader.entry().name)) {
            RemoveLeftBehind(directory, reader.entry().name);
        }
    }
}

void RemoveUnpublishedFiles(const DeviceTree& tree) {
    const Result<OpenedDirectory> root = tree.OpenDirectory(u"", OpenFor::Reading);
    if (!root) {
        return;
    }
    const int directory = root->descriptor.get();
    DirectoryReader reader(DirectoryReader::Names::All);
    while (reader.Next(directory).value_or(false)) {
        const DirectoryReader::Entry& entry = reader.entry();
        if (IsReservedName(entry.name)) {
            RemoveLeftBehind(directory, entry.name);
        } else if (MayBeDirectory(entry) && IsMountPoint(directory, entry.name)) {
            const Result<Descriptor> volume =
                tree.OpenSubdirectory(directory, true, entry.name, OpenFor::Reading);
            if (volume) {
                RemoveUnpublishedFilesIn(volume->get());
            }
        }
    }
}

namespace {

struct PublishingStream {
    Descriptor directory;
    Descriptor volume;
    HostName name;
    std::optional<struct stat> replaced;
    Failure& failure;
    std::unique_ptr<UnpublishedFile> file;
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
    TakeModeAndOwner(stream.file->descriptor(), *stream.replaced);
    return stream.file->PublishInPlace(stream.directory.get(), stream.name.c_str());
}

Status Publish(const PublishingStream& stream) {
    if (!stream.written) {
        return stream.written;
    }
    const Status published =
        stream.replaced ? Replace(stream)
                        : stream.file->PublishNew(stream.directory.get(), stream.name.c_str());
    if (published) {
        fsync(stream.directory.get());
    }
    return published;
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
    auto file = UnpublishedFile::Create(directory.get(), volume.get());
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
