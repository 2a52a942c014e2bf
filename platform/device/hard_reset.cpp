#include "platform/device/hard_reset.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <ctime>
#include <iterator>

#include "platform/device/device_directory.h"
#include "platform/io/attribute_copy.h"
#include "platform/io/descriptor.h"
#include "platform/io/directory_reader.h"
#include "platform/io/entry_facts.h"
#include "platform/io/open_beneath.h"
#include "platform/io/rename_without_replacing.h"
#include "platform/io/whole_file.h"
#include "platform/text/readable_text.h"

namespace platform {

namespace {

constexpr const char* kErase = "erase the device";

Descriptor OpenDirectory(int parent, const char* name) {
    return Descriptor(openat(parent, name, O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
}

Status RefuseCard(const std::string& name) {
    return FailOf({kErase, {}, 0, "a file system is mounted there", ERROR_SHARING_VIOLATION}, name);
}

Status CheckNoCard(const Descriptor& files) {
    if (IsMountPoint(files.get(), "")) {
        return RefuseCard(kFilesName);
    }
    Status cards;
    const auto isNoCard = [&](const DirectoryReader::Entry& entry) {
        if (IsMountPoint(files.get(), entry.name)) {
            cards = RefuseCard(ReadableBytes(std::string("\\").append(entry.name)));
        }
        return cards.has_value();
    };
    const Result<bool> read = ReadEntries(files.get(), DirectoryReader::Names::All, isNoCard);
    return read ? cards : Status(tl::unexpected<Failure>(read.error()));
}

// A file system that is read-only is met later, by what is made first.
bool IsWritable(int directory, const char* name) {
    return faccessat(directory, name, W_OK | X_OK, AT_EACCESS) == 0 || errno == EROFS;
}

// The steps of one erasing, and how each one is undone.
class Erasing {
  public:
    Erasing(int device, const std::string& date) : device_(device), name_("erased-" + date) {}

    Result<std::string> CarryOut();

  private:
    struct Step {
        Status (Erasing::*take)();
        void (Erasing::*undo)();
    };

    Status EnsureRegistry();
    Status MakeFolder();
    Status OpenFolder();
    Status MoveFiles();
    Status MakeFiles();
    Status KeepAccess();
    Status MoveRegistry();
    void RemoveMadeRegistry();
    void RemoveFolder();
    void CloseFolder() { folder_.Close(); }
    void MoveFilesBack();
    void RemoveFiles();
    void Leave() {}

    // A directory is a device by its tree or by its registry, so each one goes only while the other
    // is there: a device without a registry has an empty one for the time in which it has no tree.
    static constexpr Step kSteps[] = {
        {&Erasing::EnsureRegistry, &Erasing::RemoveMadeRegistry},
        {&Erasing::MakeFolder, &Erasing::RemoveFolder},
        {&Erasing::OpenFolder, &Erasing::CloseFolder},
        {&Erasing::MoveFiles, &Erasing::MoveFilesBack},
        {&Erasing::MakeFiles, &Erasing::RemoveFiles},
        {&Erasing::KeepAccess, &Erasing::Leave},
        {&Erasing::MoveRegistry, &Erasing::Leave},
    };

    int device_;
    std::string name_;  // of the folder
    Descriptor folder_;
    bool hasFiles_ = false;      // the device had a tree, which was moved
    bool madeRegistry_ = false;  // it had no registry
};

Result<std::string> Erasing::CarryOut() {
    if (const Status allowed = CheckErasable(device_); !allowed) {
        return tl::unexpected<Failure>(allowed.error());
    }
    for (const Step* step = std::begin(kSteps); step != std::end(kSteps); ++step) {
        if (const Status taken = (this->*step->take)(); !taken) {
            while (step != std::begin(kSteps)) {
                (this->*(--step)->undo)();
            }
            return tl::unexpected<Failure>(taken.error());
        }
    }
    // Should the power fail before, the directories hold one of the states on the way.
    for (const int directory : {folder_.get(), device_}) {
        [[maybe_unused]] const Status stored = SyncEntries(directory);
    }
    return name_;
}

Status Erasing::EnsureRegistry() {
    const Descriptor made(
        openat(device_, kRegistryName, O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666));
    madeRegistry_ = static_cast<bool>(made);
    return made || errno == EEXIST ? Status() : Fail(kErase, errno);
}

void Erasing::RemoveMadeRegistry() {
    if (madeRegistry_) {
        unlinkat(device_, kRegistryName, 0);
    }
}

Status Erasing::MakeFolder() {
    const std::string first = name_;
    int made = mkdirat(device_, name_.c_str(), 0777);
    for (int number = 2; made != 0 && errno == EEXIST; ++number) {
        name_ = first + '-' + std::to_string(number);
        made = mkdirat(device_, name_.c_str(), 0777);
    }
    return made == 0 ? Status() : Fail(kErase, errno);
}

void Erasing::RemoveFolder() {
    unlinkat(device_, name_.c_str(), AT_REMOVEDIR);
}

Status Erasing::OpenFolder() {
    folder_ = OpenDirectory(device_, name_.c_str());
    return folder_ ? Status() : Fail(kErase, errno);
}

Status Erasing::MoveFiles() {
    Status moved = RenameIfFree(device_, kFilesName, folder_.get(), kFilesName);
    hasFiles_ = moved.has_value();
    return moved || moved.error().error == ENOENT ? Status() : moved;
}

void Erasing::MoveFilesBack() {
    if (hasFiles_) {
        [[maybe_unused]] const Status back =
            RenameIfFree(folder_.get(), kFilesName, device_, kFilesName);
    }
}

Status Erasing::MakeFiles() {
    return mkdirat(device_, kFilesName, 0777) == 0 ? Status() : Fail(kErase, errno);
}

void Erasing::RemoveFiles() {
    unlinkat(device_, kFilesName, AT_REMOVEDIR);
}

// The same users as before can use the new tree.
Status Erasing::KeepAccess() {
    struct stat old {};
    const Descriptor files = OpenDirectory(device_, kFilesName);
    if (!files) {
        return Fail(kErase, errno);
    }
    if (hasFiles_ && fstatat(folder_.get(), kFilesName, &old, AT_SYMLINK_NOFOLLOW) == 0) {
        ApplyModeAndOwner(files.get(), old);
    }
    return {};
}

Status Erasing::MoveRegistry() {
    return RenameIfFree(device_, kRegistryName, folder_.get(), kRegistryName);
}

}  // namespace

Status CheckErasable(int device) {
    const Result<Descriptor> files = OpenBeneathToRead(device, kFilesName, O_DIRECTORY | O_NONBLOCK,
                                                       Mounts::Entered, AccessTime::Kept);
    const bool isMissing = !files && files.error().error == ENOENT;
    if (!files && !isMissing) {
        return Fail(kErase, files.error().error);
    }
    if (Status noCard = isMissing ? Status() : CheckNoCard(*files); !noCard) {
        return noCard;
    }
    const bool isAllowed = IsWritable(device, ".") && (isMissing || IsWritable(device, kFilesName));
    return isAllowed ? Status() : Fail(kErase, errno);
}

Result<std::string> EraseDevice(int device, const std::string& date) {
    return Erasing(device, date).CarryOut();
}

std::string Today() {
    const std::time_t now = std::time(nullptr);
    std::tm local{};
    localtime_r(&now, &local);
    std::array<char, 16> text{};
    const std::size_t length = std::strftime(text.data(), text.size(), "%Y-%m-%d", &local);
    return {text.data(), length};
}

}  // namespace platform
