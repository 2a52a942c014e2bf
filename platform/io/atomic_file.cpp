#include "platform/io/atomic_file.h"

#include <fcntl.h>

#include <cerrno>
#include <string>

#include "platform/io/attribute_copy.h"
#include "platform/io/file_identity.h"
#include "platform/io/open_beneath.h"
#include "platform/io/rename_without_replacing.h"
#include "platform/io/stream_to_sink.h"
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

class NewFileSink : public StreamSink {
  public:
    NewFileSink(Descriptor directory, Descriptor volume, const HostName& name,
                const std::optional<struct stat>& replaced, std::unique_ptr<AtomicFile> file)
        : directory_(std::move(directory)),
          volume_(std::move(volume)),
          name_(name),
          replaced_(replaced),
          file_(std::move(file)) {}

    Status Write(std::string_view bytes) override { return WriteWhole(file_->descriptor(), bytes); }
    Status Close() override {
        return replaced_ ? Replace() : file_->PublishNew(directory_.get(), name_.c_str());
    }

  private:
    Status Replace();

    Descriptor directory_;
    Descriptor volume_;
    HostName name_;
    std::optional<struct stat> replaced_;
    std::unique_ptr<AtomicFile> file_;
};

Status NewFileSink::Replace() {
    const Result<Descriptor> old = OpenRegularFile(directory_.get(), name_.c_str());
    if (old) {
        CopyUserAttributes(old->get(), file_->descriptor());
    }
    ApplyModeAndOwner(file_->descriptor(), *replaced_);
    return file_->PublishInPlace(directory_.get(), name_.c_str());
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
    return OpenStreamTo(std::make_unique<NewFileSink>(std::move(directory), std::move(volume), name,
                                                      replaced, std::move(*file)),
                        failure);
}

}  // namespace platform
