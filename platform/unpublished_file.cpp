#include "platform/unpublished_file.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/file.h>

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

// Keeps other processes from taking a file for one that was left behind.
bool Lock(int file) {
    return flock(file, LOCK_EX | LOCK_NB) == 0;
}

void RemoveIfLeftBehind(int volume, const char* name) {
    const std::optional<EntryFacts> facts = FactsOf(volume, name);
    if (!facts || !facts->isRegularFile()) {
        return;
    }
    const Descriptor file = OpenRegularFile(volume, name);
    if (file && Lock(file.get())) {
        unlinkat(volume, name, 0);
    }
}

void RemoveUnpublishedFilesOf(int volume) {
    DirectoryReader reader(DirectoryReader::Names::All);
    while (reader.Next(volume)) {
        if (IsReservedName(reader.entry().name)) {
            RemoveIfLeftBehind(volume, reader.entry().name);
        }
    }
}

bool MayBeDirectory(const DirectoryReader::Entry& entry) {
    return entry.type == DT_DIR || entry.type == DT_UNKNOWN;
}

}  // namespace

std::unique_ptr<UnpublishedFile> UnpublishedFile::Create(int directory, int volume) {
    Descriptor unnamed;
    if (access(kOpenFiles, F_OK) == 0) {
        unnamed = Descriptor(openat(directory, ".", O_TMPFILE | O_RDWR | O_CLOEXEC, kNewFileMode));
    }
    if (unnamed) {
        return std::unique_ptr<UnpublishedFile>(
            new UnpublishedFile(std::move(unnamed), volume, std::nullopt));
    }
    const HostName reserved = NewReservedName();
    Descriptor named(openat(volume, reserved.c_str(),
                            O_CREAT | O_EXCL | O_RDWR | O_NOFOLLOW | O_CLOEXEC, kNewFileMode));
    if (!named) {
        return nullptr;
    }
    Lock(named.get());
    return std::unique_ptr<UnpublishedFile>(
        new UnpublishedFile(std::move(named), volume, reserved));
}

UnpublishedFile::~UnpublishedFile() {
    if (reserved_) {
        unlinkat(volume_, reserved_->c_str(), 0);
    }
}

bool UnpublishedFile::Link(int directory, const char* name) const {
    const std::string path = kOpenFiles + std::to_string(descriptor());
    return linkat(AT_FDCWD, path.c_str(), directory, name, AT_SYMLINK_FOLLOW) == 0;
}

// A link cannot replace a file, only a renaming can: so the file needs a name first.
bool UnpublishedFile::Reserve() {
    const HostName reserved = NewReservedName();
    if (!Lock(descriptor()) || !Link(volume_, reserved.c_str())) {
        return false;
    }
    reserved_ = reserved;
    return true;
}

bool UnpublishedFile::PublishNew(int directory, const char* name) {
    if (fsync(descriptor()) != 0) {
        return false;
    }
    if (!reserved_) {
        return Link(directory, name);
    }
    if (!RenameWithoutReplacing(volume_, reserved_->c_str(), directory, name)) {
        return false;
    }
    reserved_.reset();
    return true;
}

bool UnpublishedFile::PublishInPlace(int directory, const char* name) {
    if (fsync(descriptor()) != 0 || (!reserved_ && !Reserve()) ||
        renameat(volume_, reserved_->c_str(), directory, name) != 0) {
        return false;
    }
    reserved_.reset();
    return true;
}

void TakeModeAndOwner(int file, const struct stat& from) {
    // Only root can give a file away; everyone else goes on being its owner.
    [[maybe_unused]] const int given = fchown(file, from.st_uid, from.st_gid);
    fchmod(file, from.st_mode & 0777);
}

void RemoveUnpublishedFiles(const DeviceTree& tree) {
    const OpenedDirectory root = tree.OpenDirectory(u"", OpenFor::Reading);
    DirectoryReader reader(DirectoryReader::Names::All);
    while (root.descriptor && reader.Next(root.descriptor.get())) {
        const DirectoryReader::Entry& entry = reader.entry();
        if (IsReservedName(entry.name)) {
            RemoveIfLeftBehind(root.descriptor.get(), entry.name);
        } else if (MayBeDirectory(entry) && IsMountPoint(root.descriptor.get(), entry.name)) {
            const Descriptor volume =
                tree.OpenSubdirectory(root.descriptor.get(), true, entry.name, OpenFor::Reading);
            if (volume) {
                RemoveUnpublishedFilesOf(volume.get());
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
    std::unique_ptr<UnpublishedFile> file;
    bool failed = false;
};

ssize_t WriteStream(void* cookie, const char* bytes, std::size_t count) {
    auto& stream = *static_cast<PublishingStream*>(cookie);
    if (!WriteWhole(stream.file->descriptor(), {bytes, count})) {
        stream.failed = true;
        return 0;
    }
    return static_cast<ssize_t>(count);
}

bool Publish(const PublishingStream& stream) {
    if (stream.failed) {
        return false;
    }
    bool published = false;
    if (stream.replaced) {
        const Descriptor old = OpenRegularFile(stream.directory.get(), stream.name.c_str());
        if (old) {
            CopyUserAttributes(old.get(), stream.file->descriptor());
        }
        TakeModeAndOwner(stream.file->descriptor(), *stream.replaced);
        published = stream.file->PublishInPlace(stream.directory.get(), stream.name.c_str());
    } else {
        published = stream.file->PublishNew(stream.directory.get(), stream.name.c_str());
    }
    if (published) {
        fsync(stream.directory.get());
    }
    return published;
}

int CloseStream(void* cookie) {
    const std::unique_ptr<PublishingStream> stream(static_cast<PublishingStream*>(cookie));
    return Publish(*stream) ? 0 : -1;
}

}  // namespace

std::FILE* OpenPublishingStream(Descriptor directory, Descriptor volume, const HostName& name,
                                const std::optional<struct stat>& replaced) {
    auto stream = std::make_unique<PublishingStream>();
    stream->directory = std::move(directory);
    stream->volume = std::move(volume);
    stream->name = name;
    stream->replaced = replaced;
    stream->file = UnpublishedFile::Create(stream->directory.get(), stream->volume.get());
    if (stream->file == nullptr) {
        return nullptr;
    }
    std::FILE* const file =
        fopencookie(stream.get(), "w",
                    {.read = nullptr, .write = WriteStream, .seek = nullptr, .close = CloseStream});
    if (file != nullptr) {
        static_cast<void>(stream.release());
    }
    return file;
}

}  // namespace platform
