#include "platform/moves/move_to_other_volume.h"

#include <fcntl.h>
#include <linux/fs.h>
#include <linux/magic.h>
#include <sys/stat.h>
#include <sys/vfs.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <iterator>
#include <memory>
#include <utility>
#include <vector>

#include "platform/io/atomic_file.h"
#include "platform/io/attribute_copy.h"
#include "platform/io/directory_reader.h"
#include "platform/io/entry_facts.h"
#include "platform/io/file_identity.h"
#include "platform/io/open_beneath.h"
#include "platform/io/whole_file.h"
#include "platform/moves/watched_file.h"

namespace platform {

namespace {

constexpr char kMove[] = "move";
using Block = std::array<char, 65536>;

Result<std::size_t> ReadBlock(int file, Block& block) {
    const ssize_t length = read(file, block.data(), block.size());
    if (length < 0) {
        return Fail("read", errno);
    }
    return static_cast<std::size_t>(length);
}

Status CopyContent(const WatchedFile& from, int to) {
    const auto block = std::make_unique<Block>();
    while (from.IsLeftAlone()) {
        const Result<std::size_t> length = ReadBlock(from.descriptor(), *block);
        if (!length) {
            return tl::unexpected<Failure>(length.error());
        }
        if (*length == 0) {
            return {};
        }
        if (Status written = WriteWhole(to, {block->data(), *length}); !written) {
            return written;
        }
    }
    return Fail(kMove, EBUSY);
}

Status CopyWhole(const WatchedFile& from, int to) {
    if (Status copied = CopyContent(from, to); !copied) {
        return copied;
    }
    CopyUserAttributes(from.descriptor(), to);  // while the mode still allows it
    ApplyModeAndOwner(to, from.facts());
    const std::array<timespec, 2> times = {from.facts().st_atim, from.facts().st_mtim};
    futimens(to, times.data());
    return {};
}

Status DeleteSetAside(const WatchedFile& file, const SourceFile& source, const SetAside& aside) {
    return file.IsWholeAt(source.volume, aside.name()) ? aside.Delete() : Fail(kMove, EBUSY);
}

// A full volume has no room for the record of a file set aside. A lease does without.
Status DeleteInPlace(const WatchedFile& file, const SourceFile& source) {
    const bool deleted = file.isLeased() && file.IsWholeAt(source.directory, source.name) &&
                         unlinkat(source.directory, source.name, 0) == 0;
    return deleted ? Status() : Fail(kMove, EBUSY);
}

bool IsForWantOfRoom(const Failure& failure) {
    return failure.error == ENOSPC || failure.error == EDQUOT;
}

// Deletes the file unless it has changed since it was copied. After a failure, `copy` goes if the
// file has its name for sure.
Status DeleteCopied(const WatchedFile& file, const SourceFile& source, const Destination& to,
                    const AtomicFile& copy) {
    const Result<SetAside> aside =
        file.IsUntouched() ? SetAside::Create(source) : Result<SetAside>(Fail(kMove, EBUSY));
    Status deleted;
    if (aside) {
        deleted = DeleteSetAside(file, source, *aside);
    } else if (IsForWantOfRoom(aside.error())) {
        deleted = DeleteInPlace(file, source);
    } else {
        deleted = tl::unexpected<Failure>(aside.error());
    }
    if (deleted) {
        return deleted;
    }
    const bool isBack =
        aside ? aside->GiveBack().has_value() : FactsOf(source.directory, source.name).has_value();
    if (isBack) {
        copy.Withdraw(to.directory, to.name);
    }
    return deleted;
}

// Whether a file system that keeps times in coarser steps shows `time` as `shown`.
bool IsShownAs(const timespec& time, const timespec& shown) {
    constexpr long kSteps[] = {1, 100, 1'000, 10'000'000, 1'000'000'000};  // nanoseconds
    const timespec even = {time.tv_sec - (time.tv_sec & 1), 0};
    return IsEqual(even, shown) ||
           std::any_of(std::begin(kSteps), std::end(kSteps), [&](long step) {
               return IsEqual({time.tv_sec, time.tv_nsec - time.tv_nsec % step}, shown);
           });
}

bool HaveSameContent(int left, int right) {
    const auto one = std::make_unique<Block>();
    const auto other = std::make_unique<Block>();
    for (;;) {
        const Result<std::size_t> length = ReadBlock(left, *one);
        const Result<std::size_t> otherLength = ReadBlock(right, *other);
        if (!length || !otherLength || *length != *otherLength ||
            std::memcmp(one->data(), other->data(), *length) != 0) {
            return false;
        }
        if (*length == 0) {
            return true;
        }
    }
}

// What an overlay shows may lie in the very directory that the file is in.
bool IsCopy(int file, int copy) {
    struct statfs system {};
    const bool isOverlay = fstatfs(copy, &system) != 0 || system.f_type == OVERLAYFS_SUPER_MAGIC;
    return !isOverlay && HaveSameContent(file, copy);
}

// What may be a copy of a file, or a second name of it.
struct Candidate {
    int directory;
    const char* name;
    struct stat facts {};
};

// By what can be seen without opening them.
bool LooksLike(const SourceFile& source, Candidate& candidate) {
    struct stat file {};
    return fstatat(source.directory, source.name, &file, AT_SYMLINK_NOFOLLOW) == 0 &&
           fstatat(candidate.directory, candidate.name, &candidate.facts, AT_SYMLINK_NOFOLLOW) ==
               0 &&
           S_ISREG(file.st_mode) && S_ISREG(candidate.facts.st_mode) &&
           file.st_size == candidate.facts.st_size &&
           IsShownAs(file.st_mtim, candidate.facts.st_mtim);
}

// Whether it holds, safely stored, what the file holds.
bool IsStoredCopy(const WatchedFile& file, const Candidate& candidate) {
    const Result<Descriptor> copy = OpenRegularFile(candidate.directory, candidate.name);
    return copy && IsCopy(file.descriptor(), copy->get()) && fsync(copy->get()) == 0 &&
           SyncEntries(candidate.directory).has_value();
}

// Whether it still has its name. What was remembered of another view of the same files may be
// out of date, so it is asked for in ways that go past that.
bool IsStillThere(const Candidate& candidate) {
    struct statx now {};
    return IsListed(candidate.directory, candidate.name) &&
           statx(candidate.directory, candidate.name, AT_SYMLINK_NOFOLLOW | AT_STATX_FORCE_SYNC,
                 STATX_BASIC_STATS, &now) == 0 &&
           now.stx_ino == candidate.facts.st_ino &&
           now.stx_size == static_cast<std::uint64_t>(candidate.facts.st_size) &&
           IsEqual({now.stx_mtime.tv_sec, now.stx_mtime.tv_nsec}, candidate.facts.st_mtim);
}

// Two paths can lead to one and the same file, through a second mount: then the copy has vanished
// as soon as the file is set aside.
Status DeleteIfCopyStays(const WatchedFile& file, const SourceFile& source,
                         const Candidate& candidate) {
    const Result<SetAside> aside = SetAside::Create(source);
    if (!aside) {
        return tl::unexpected<Failure>(aside.error());
    }
    Status deleted =
        IsStillThere(candidate) ? DeleteSetAside(file, source, *aside) : Fail(kMove, EEXIST);
    if (!deleted) {
        static_cast<void>(aside->GiveBack());
    }
    return deleted;
}

}  // namespace

Status MoveToVolume(const SourceFile& source, const Destination& destination) {
    const Result<WatchedFile> file = WatchedFile::Open(source.directory, source.name);
    if (!file) {
        return tl::unexpected<Failure>(file.error());
    }
    const auto copy = AtomicFile::Create(destination.directory, destination.volume);
    if (!copy) {
        return tl::unexpected<Failure>(copy.error());
    }
    if (Status copied = CopyWhole(*file, (*copy)->descriptor()); !copied) {
        return copied;
    }
    if (Status published = (*copy)->PublishNew(destination.directory, destination.name);
        !published) {
        return published;
    }
    return DeleteCopied(*file, source, destination, **copy);
}

bool IsMovedAlready(const SourceFile& source, int directory, const char* name, Twin twin) {
    Candidate candidate{directory, name};
    if (!LooksLike(source, candidate)) {
        return false;
    }
    if (twin == Twin::SecondName) {
        return AreTwoNamesOfOneFile(source.directory, source.name, directory, name);
    }
    const Result<Descriptor> file =
        OpenRegularFile(source.directory, source.name, Mounts::Refused, AccessTime::Kept);
    const Result<Descriptor> copy =
        OpenRegularFile(directory, name, Mounts::Refused, AccessTime::Kept);
    return file && copy && IsCopy(file->get(), copy->get());
}

Status FinishMove(const SourceFile& source, int directory, const char* name) {
    Status taken = Fail(kMove, EEXIST);
    Candidate candidate{directory, name};
    if (!LooksLike(source, candidate)) {
        return taken;
    }
    if (renameat2(source.directory, source.name, directory, name, RENAME_NOREPLACE) == 0) {
        return {};  // what had the name went in between
    }
    const bool isElsewhere = errno == EXDEV;
    if (!isElsewhere && !AreTwoNamesOfOneFile(source.directory, source.name, directory, name)) {
        return taken;
    }
    const Result<WatchedFile> file = WatchedFile::Open(source.directory, source.name);
    const bool finished = file && IsStoredCopy(*file, candidate) &&
                          DeleteIfCopyStays(*file, source, candidate).has_value();
    return finished ? Status() : taken;
}

}  // namespace platform
