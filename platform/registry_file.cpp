#include "platform/registry_file.h"

#include <fcntl.h>
#include <linux/openat2.h>
#include <sys/file.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <chrono>
#include <cinttypes>
#include <cstdio>
#include <cstring>
#include <random>
#include <thread>

#include "platform/registry_text.h"

namespace platform {
namespace {

constexpr const char* kName = "registry.reg";
constexpr std::chrono::seconds kLockPatience{10};
constexpr std::chrono::milliseconds kLockPause{2};

bool Fail(std::string& error, const char* what, int code) {
    error = std::string(kName) + ": " + what;
    if (code != 0) {
        error += std::string(": ") + std::strerror(code);
    }
    return false;
}

// A new file beside the registry. It has no name at first where the file system allows that.
struct NewFile {
    Descriptor descriptor;
    std::string name;
};

std::string ReservedName() {
    std::random_device random;
    std::array<char, 64> name{};
    static_cast<void>(std::snprintf(name.data(), name.size(), ".fennelbright-new-%08x%08x",
                                    unsigned{random()}, unsigned{random()}));
    return name.data();
}

NewFile CreateNamed(int directory, mode_t mode) {
    NewFile file{Descriptor(), ReservedName()};
    file.descriptor = Descriptor(openat(
        directory, file.name.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, mode));
    return file;
}

NewFile Create(int directory, mode_t mode) {
    NewFile file;
    // Without this directory a file could not be given a name later.
    if (access("/proc/self/fd", X_OK) == 0) {
        file.descriptor =
            Descriptor(openat(directory, ".", O_WRONLY | O_TMPFILE | O_CLOEXEC, mode));
    }
    return file.descriptor ? std::move(file) : CreateNamed(directory, mode);
}

bool WriteAll(int descriptor, std::string_view bytes) {
    while (!bytes.empty()) {
        const ssize_t written = write(descriptor, bytes.data(), bytes.size());
        if (written < 0 && errno == EINTR) {
            continue;
        }
        if (written < 0) {
            return false;
        }
        bytes.remove_prefix(static_cast<std::size_t>(written));
    }
    return true;
}

bool ReadAll(int descriptor, std::size_t expected, std::string& bytes) {
    // One byte more than expected, so that the end shows itself with the first reading.
    bytes.resize(expected + 1);
    std::size_t done = 0;
    for (;;) {
        const ssize_t count = read(descriptor, bytes.data() + done, bytes.size() - done);
        if (count < 0 && errno == EINTR) {
            continue;
        }
        if (count < 0) {
            return false;
        }
        done += static_cast<std::size_t>(count);
        if (count == 0 || done > kRegistryTextLimit) {
            bytes.resize(done);
            return true;
        }
        if (done == bytes.size()) {
            bytes.resize(2 * done);
        }
    }
}

// The owner comes first: changing it takes special bits of the mode away. Neither is worth losing
// the changes for.
void TakeOver(int descriptor, const struct stat& old) {
    const bool owned = fchown(descriptor, old.st_uid, old.st_gid) == 0 ||
                       fchown(descriptor, static_cast<uid_t>(-1), old.st_gid) == 0;
    static_cast<void>(owned);
    static_cast<void>(fchmod(descriptor, old.st_mode & 0777U));
}

// Gives an unnamed file a reserved name. Only a named file can take the place of another one.
bool GiveName(int directory, NewFile& file) {
    if (!file.name.empty()) {
        return true;
    }
    const std::string path = "/proc/self/fd/" + std::to_string(file.descriptor.get());
    const std::string name = ReservedName();
    if (linkat(AT_FDCWD, path.c_str(), directory, name.c_str(), AT_SYMLINK_FOLLOW) != 0) {
        return false;
    }
    file.name = name;
    return true;
}

// Puts the file in the registry's place, if all of it can be written; otherwise nothing of it
// stays.
bool Publish(int directory, NewFile& file, std::string_view bytes) {
    if (WriteAll(file.descriptor.get(), bytes) && fsync(file.descriptor.get()) == 0 &&
        GiveName(directory, file) &&
        renameat(directory, file.name.c_str(), directory, kName) == 0) {
        return true;
    }
    const int code = errno;
    if (!file.name.empty()) {
        unlinkat(directory, file.name.c_str(), 0);
    }
    errno = code;
    return false;
}

// Whether the directory's entries are safe; file systems that cannot say so are believed.
bool SyncDirectory(int directory) {
    const Descriptor readable(openat(directory, ".", O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    return fsync(readable.get()) == 0 || errno == EINVAL || errno == ENOTSUP;
}

bool IsWritable(int directory, const struct stat& status) {
    return (status.st_mode & 0222U) != 0 && faccessat(directory, kName, W_OK, AT_EACCESS) == 0;
}

// What the entry is, without opening it. `status.st_mode` is 0 when there is none.
bool LookAt(int directory, struct stat& status, std::string& error) {
    status = {};
    if (fstatat(directory, kName, &status, AT_SYMLINK_NOFOLLOW) != 0) {
        status = {};
        return errno == ENOENT || Fail(error, "cannot be looked at", errno);
    }
    return S_ISREG(status.st_mode) || Fail(error, "is no regular file", 0);
}

}  // namespace

FileVersion::FileVersion(const struct stat& status)
    : exists_(status.st_mode != 0),
      device_(status.st_dev),
      number_(status.st_ino),
      size_(status.st_size),
      modified_(status.st_mtim.tv_sec),
      modifiedNanoseconds_(status.st_mtim.tv_nsec),
      changed_(status.st_ctim.tv_sec),
      changedNanoseconds_(status.st_ctim.tv_nsec) {}

bool RegistryFile::Look(FileVersion& version, std::string& error) const {
    struct stat status {};
    if (!LookAt(directory_, status, error)) {
        return false;
    }
    version = FileVersion(status);
    return true;
}

bool RegistryFile::Read(std::string& bytes, FileVersion& version, std::string& error) const {
    bytes.clear();
    version = FileVersion();
    struct stat status {};
    if (!LookAt(directory_, status, error)) {
        return false;
    }
    if (status.st_mode == 0) {
        return true;
    }
    struct open_how how {};
    how.flags = O_RDONLY | O_NONBLOCK | O_NOCTTY | O_NOFOLLOW | O_CLOEXEC;
    how.resolve = RESOLVE_BENEATH | RESOLVE_NO_SYMLINKS;
    const Descriptor file(
        static_cast<int>(syscall(SYS_openat2, directory_, kName, &how, sizeof how)));
    if (!file || fstat(file.get(), &status) != 0) {
        return Fail(error, "cannot be opened", errno);
    }
    if (!S_ISREG(status.st_mode)) {
        return Fail(error, "is no regular file", 0);
    }
    if (static_cast<std::size_t>(status.st_size) > kRegistryTextLimit) {
        return Fail(error, "is too large for a registry", 0);
    }
    if (!ReadAll(file.get(), static_cast<std::size_t>(status.st_size), bytes)) {
        return Fail(error, "cannot be read", errno);
    }
    version = FileVersion(status);
    return true;
}

bool RegistryFile::Replace(std::string_view bytes, FileVersion& version, std::string& error) const {
    struct stat old {};
    if (!LookAt(directory_, old, error)) {
        return false;
    }
    const bool exists = old.st_mode != 0;
    if (exists && !IsWritable(directory_, old)) {
        return Fail(error, "is read-only", 0);
    }
    NewFile file = Create(directory_, exists ? 0600 : 0666);
    if (!file.descriptor) {
        return Fail(error, "cannot be written", errno);
    }
    if (exists) {
        TakeOver(file.descriptor.get(), old);
    }
    if (!Publish(directory_, file, bytes)) {
        return Fail(error, "cannot be written", errno);
    }
    struct stat status {};
    if (fstat(file.descriptor.get(), &status) == 0) {
        version = FileVersion(status);
    }
    return SyncDirectory(directory_) || Fail(error, "may not survive a power failure", errno);
}

Descriptor RegistryFile::Lock(std::string& error) const {
    // Opened anew, since a lock belongs to an opening: a process that was forked shares the others.
    Descriptor directory(openat(directory_, ".", O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    const auto deadline = std::chrono::steady_clock::now() + kLockPatience;
    while (flock(directory.get(), LOCK_EX | LOCK_NB) != 0) {
        const bool busy = errno == EWOULDBLOCK || errno == EINTR;
        if (!busy || std::chrono::steady_clock::now() > deadline) {
            Fail(error, "the device directory cannot be locked", errno);
            return Descriptor();
        }
        std::this_thread::sleep_for(kLockPause);
    }
    return directory;
}

}  // namespace platform
