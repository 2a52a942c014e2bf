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

Status CopyContent(int from, int to) {
    const auto block = std::make_unique<std::array<char, kCopyBlock>>();
    for (;;) {
        const ssize_t length = read(from, block->data(), block->size());
        if (length < 0) {
            return Fail("read", errno);
        }
        if (length == 0) {
            return {};
        }
        if (const Status written =
                WriteWhole(to, {block->data(), static_cast<std::size_t>(length)});
            !written) {
            return written;
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

Status CopyWhole(int from, const struct stat& facts, int to) {
    if (const Status copied = CopyContent(from, to); !copied) {
        return copied;
    }
    CopyUserAttributes(from, to);  // while the mode still allows it
    TakeModeAndOwner(to, facts);
    const std::array<timespec, 2> times = {facts.st_atim, facts.st_mtim};
    futimens(to, times.data());
    return {};
}

}  // namespace

Status RenameWithoutReplacing(int fromDirectory, const char* from, int toDirectory,
                              const char* to) {
    if (renameat2(fromDirectory, from, toDirectory, to, RENAME_NOREPLACE) == 0) {
        return {};
    }
    if (errno != EINVAL) {
        return Fail("move", errno);
    }
    // The file system does not know the flag, or a directory would go into itself.
    const Result<EntryFacts> facts = FactsOf(fromDirectory, from);
    if (facts && !facts->isDirectory() &&
        RenameOverPlaceholder(fromDirectory, from, toDirectory, to)) {
        return {};
    }
    return Fail("move", EINVAL);
}

Status MoveToVolume(int fromDirectory, const char* from, int toDirectory, const char* to,
                    int volume) {
    const Result<Descriptor> source = OpenRegularFile(fromDirectory, from);
    if (!source) {
        return tl::unexpected<Failure>(source.error());
    }
    struct stat facts {};
    if (fstat(source->get(), &facts) != 0) {
        return Fail("move", errno);
    }
    const auto copy = UnpublishedFile::Create(toDirectory, volume);
    if (!copy) {
        return tl::unexpected<Failure>(copy.error());
    }
    if (const Status copied = CopyWhole(source->get(), facts, (*copy)->descriptor()); !copied) {
        return copied;
    }
    if (const Status published = (*copy)->PublishNew(toDirectory, to); !published) {
        return published;
    }
    if (fsync(toDirectory) == 0 && IsUnchanged(fromDirectory, from, facts) &&
        unlinkat(fromDirectory, from, 0) == 0) {
        return {};
    }
    unlinkat(toDirectory, to, 0);
    return Fail("move", EBUSY);
}

void CopyUserAttributes(int from, int to) {
    if (flistxattr(from, nullptr, 0) <= 0) {
        return;
    }
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

Status WriteWhole(int file, std::string_view bytes) {
    while (!bytes.empty()) {
        const ssize_t written = write(file, bytes.data(), bytes.size());
        if (written < 0 && errno == EINTR) {
            continue;
        }
        if (written <= 0) {
            return Fail("write", written == 0 ? ENOSPC : errno);
        }
        bytes.remove_prefix(static_cast<std::size_t>(written));
    }
    return {};
}

}  // namespace platform
