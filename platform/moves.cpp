#include "platform/moves.h"

#include <fcntl.h>
#include <linux/fs.h>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdio>
#include <memory>
#include <vector>

#include "platform/device_tree.h"
#include "platform/unpublished_file.h"

namespace platform {

namespace {

constexpr std::size_t kCopyBlock = 65536;
constexpr std::size_t kLargestAttribute = 65536;  // the kernel's own limit

bool CopyContent(int from, int to) {
    const auto block = std::make_unique<std::array<char, kCopyBlock>>();
    for (;;) {
        const ssize_t length = read(from, block->data(), block->size());
        if (length <= 0) {
            return length == 0;
        }
        if (!WriteWhole(to, {block->data(), static_cast<std::size_t>(length)})) {
            return false;
        }
    }
}

// Whether the name still stands for the file that was copied, and nobody wrote to it since.
bool IsUnchanged(int directory, const char* name, const struct stat& copied) {
    struct stat now {};
    return fstatat(directory, name, &now, AT_SYMLINK_NOFOLLOW) == 0 &&
           now.st_dev == copied.st_dev && now.st_ino == copied.st_ino &&
           now.st_size == copied.st_size && now.st_mtim.tv_sec == copied.st_mtim.tv_sec &&
           now.st_mtim.tv_nsec == copied.st_mtim.tv_nsec;
}

// An empty file of our own keeps the name for the moment in which nothing has it yet.
bool RenameOverPlaceholder(int fromDirectory, const char* from, int toDirectory, const char* to) {
    const Descriptor placeholder(
        openat(toDirectory, to, O_CREAT | O_EXCL | O_WRONLY | O_NOFOLLOW | O_CLOEXEC, 0600));
    if (!placeholder) {
        return false;
    }
    if (renameat(fromDirectory, from, toDirectory, to) == 0) {
        return true;
    }
    unlinkat(toDirectory, to, 0);
    return false;
}

bool CopyWhole(int from, const struct stat& facts, int to) {
    if (!CopyContent(from, to)) {
        return false;
    }
    CopyUserAttributes(from, to);  // while the mode still allows it
    TakeModeAndOwner(to, facts);
    const std::array<timespec, 2> times = {facts.st_atim, facts.st_mtim};
    futimens(to, times.data());
    return true;
}

}  // namespace

bool RenameWithoutReplacing(int fromDirectory, const char* from, int toDirectory, const char* to) {
    if (renameat2(fromDirectory, from, toDirectory, to, RENAME_NOREPLACE) == 0) {
        return true;
    }
    if (errno != EINVAL) {
        return false;
    }
    // The file system does not know the flag, or a directory would go into itself.
    const std::optional<EntryFacts> facts = FactsOf(fromDirectory, from);
    if (facts && !facts->isDirectory() &&
        RenameOverPlaceholder(fromDirectory, from, toDirectory, to)) {
        return true;
    }
    errno = EINVAL;
    return false;
}

bool MoveToVolume(int fromDirectory, const char* from, int toDirectory, const char* to,
                  int volume) {
    const Descriptor source = OpenRegularFile(fromDirectory, from);
    struct stat facts {};
    if (!source || fstat(source.get(), &facts) != 0) {
        return false;
    }
    const std::unique_ptr<UnpublishedFile> copy = UnpublishedFile::Create(toDirectory, volume);
    if (copy == nullptr || !CopyWhole(source.get(), facts, copy->descriptor()) ||
        !copy->PublishNew(toDirectory, to)) {
        return false;
    }
    if (fsync(toDirectory) == 0 && IsUnchanged(fromDirectory, from, facts) &&
        unlinkat(fromDirectory, from, 0) == 0) {
        return true;
    }
    unlinkat(toDirectory, to, 0);
    return false;
}

void CopyUserAttributes(int from, int to) {
    std::vector<char> names(kLargestAttribute);
    std::vector<char> value(kLargestAttribute);
    const ssize_t length = flistxattr(from, names.data(), names.size());
    for (ssize_t at = 0; at < length;) {
        const char* const name = &names[static_cast<std::size_t>(at)];
        const std::string_view text(name);
        at += static_cast<ssize_t>(text.size()) + 1;
        const ssize_t size =
            text.starts_with("user.") ? fgetxattr(from, name, value.data(), value.size()) : -1;
        if (size >= 0) {
            fsetxattr(to, name, value.data(), static_cast<std::size_t>(size), 0);
        }
    }
}

bool WriteWhole(int file, std::string_view bytes) {
    while (!bytes.empty()) {
        const ssize_t written = write(file, bytes.data(), bytes.size());
        if (written < 0 && errno == EINTR) {
            continue;
        }
        if (written <= 0) {
            return false;
        }
        bytes.remove_prefix(static_cast<std::size_t>(written));
    }
    return true;
}

}  // namespace platform
