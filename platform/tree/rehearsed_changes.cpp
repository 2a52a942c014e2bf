// The changes of a rehearsed tree, and what the kernel would say to them.

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <unistd.h>

#include <cerrno>
#include <string_view>
#include <utility>

#include "platform/tree/rehearsed_stream.h"
#include "platform/tree/rehearsed_tree.h"

namespace platform {

namespace {

constexpr std::uint64_t kFileSystemBlock = 512;  // bytes in which statx counts

// What the file system gets back with the last name of a file.
std::uint64_t RoomOf(const struct statx& entry) {
    return S_ISREG(entry.stx_mode) && entry.stx_nlink == 1 ? entry.stx_blocks * kFileSystemBlock
                                                           : 0;
}

}  // namespace

// Asked once for each directory.
void RehearsedTree::AskRules(const OpenedDirectory& directory) const {
    RehearsedDirectory& node = *NodeOf(directory);
    if (!node.isReal()) {
        const bool isAllowed =
            isSuperuser_ || (node.mode & (S_IWUSR | S_IXUSR)) == (S_IWUSR | S_IXUSR);
        node.refusal = isAllowed ? 0 : EACCES;
        return;
    }
    node.refusal =
        faccessat(directory.get(), ".", W_OK | X_OK, AT_EACCESS) == 0 || errno == EROFS ? 0 : errno;
    struct statx entry {};
    if (statx(directory.get(), "", AT_EMPTY_PATH, STATX_BASIC_STATS, &entry) == 0) {
        node.volume = makedev(entry.stx_dev_major, entry.stx_dev_minor);
        node.isSticky = (entry.stx_mode & S_ISVTX) != 0;
        node.stickyOwner = entry.stx_uid;
        node.isAppendOnly = (entry.stx_attributes & STATX_ATTR_APPEND) != 0;
    }
}

Status RehearsedTree::CheckChange(const OpenedDirectory& directory) const {
    const RehearsedDirectory& node = *NodeOf(directory);
    if (node.isRemoved) {
        return Fail("change the directory", ENOENT);
    }
    if (node.refusal == RehearsedDirectory::kNotAsked) {
        AskRules(directory);
    }
    return node.refusal == 0 ? Status() : Fail("change the directory", node.refusal);
}

dev_t RehearsedTree::VolumeOf(const OpenedDirectory& directory) const {
    static_cast<void>(CheckChange(directory));
    return NodeOf(directory)->volume;
}

// Whether an entry of that owner is not this user's to take out of the directory.
bool RehearsedTree::IsOthers(const RehearsedDirectory& node, uid_t owner) const {
    return node.isSticky && !isSuperuser_ && owner != geteuid() && node.stickyOwner != geteuid();
}

// What is asked before an entry loses its name.
Status RehearsedTree::CheckTaking(const OpenedDirectory& directory, const char* name) const {
    if (Status allowed = CheckChange(directory); !allowed) {
        return allowed;
    }
    const RehearsedDirectory& node = *NodeOf(directory);
    if (node.Added(name) != nullptr) {
        return {};
    }
    const Result<struct statx> entry = LastLook(directory, name);
    if (!entry) {
        return tl::unexpected<Failure>(entry.error());
    }
    // What is said of a mount point is said of what is mounted there; below it is mostly root's.
    const bool isMounted = (entry->stx_attributes & STATX_ATTR_MOUNT_ROOT) != 0;
    constexpr std::uint64_t kKept = STATX_ATTR_IMMUTABLE | STATX_ATTR_APPEND;
    const bool isKept = !isMounted && (entry->stx_attributes & kKept) != 0;
    if (node.isAppendOnly || isKept || IsOthers(node, isMounted ? 0 : entry->stx_uid)) {
        return Fail("take away", EPERM);
    }
    return isMounted ? Fail("take away", EBUSY) : Status();
}

void RehearsedTree::TakeAway(const OpenedDirectory& directory, const char* name) {
    const RehearsedNode& node = NodeOf(directory);
    if (node->Added(name) != nullptr) {
        node->added->erase(name);
    } else {
        node->hidden.insert(name);
    }
    Note(node);
}

// What its volume gets back with an entry that is there.
std::uint64_t RehearsedTree::RoomToFree(const OpenedDirectory& directory, const char* name) {
    if (const RehearsedEntry* const added = NodeOf(directory)->Added(name)) {
        return added->facts.isRegularFile() ? room_.RoomFor(VolumeOf(directory), added->facts.size)
                                            : 0;
    }
    const Result<struct statx> entry = LastLook(directory, name);
    return entry ? RoomOf(*entry) : 0;
}

Status RehearsedTree::Unlink(const OpenedDirectory& directory, const char* name) {
    if (Status allowed = CheckTaking(directory, name); !allowed) {
        return allowed;
    }
    room_.Free(VolumeOf(directory), RoomToFree(directory, name));
    TakeAway(directory, name);
    return {};
}

// Real entries that the device does not list keep a directory, too. What is in one that may not be
// read is not known; it counts as not empty.
Status RehearsedTree::CheckEmpty(const OpenedDirectory& directory, const char* name) const {
    const Result<OpenedDirectory> opened = Open(directory, name, OpenFor::Reading, Mounts::Entered);
    if (!opened) {
        return Fail("remove", opened.error().error == EACCES ? ENOTEMPTY : opened.error().error);
    }
    const RehearsedDirectory& node = *NodeOf(*opened);
    if (node.added != nullptr && !node.added->empty()) {
        return Fail("remove", ENOTEMPTY);
    }
    if (!node.isReal()) {
        return {};
    }
    const Result<bool> allGone =
        ReadEntries(opened->get(), DirectoryReader::Names::All,
                    [&](const auto& entry) { return !ShowsReal(*opened, entry.name); });
    if (!allGone) {
        return tl::unexpected<Failure>(allGone.error());
    }
    return *allGone ? Status() : Fail("remove", ENOTEMPTY);
}

Status RehearsedTree::RemoveDirectory(const OpenedDirectory& directory, const char* name) {
    if (Status allowed = CheckTaking(directory, name); !allowed) {
        return allowed;
    }
    if (Status empty = CheckEmpty(directory, name); !empty) {
        return empty;
    }
    const RehearsedEntry* const added = NodeOf(directory)->Added(name);
    const RehearsedNode removed = added != nullptr ? added->node : ChildOf(directory, name);
    TakeAway(directory, name);
    changed_.Forget(removed);
    removed->isRemoved = true;
    removed->hidden.clear();
    return {};
}

Status RehearsedTree::MakeDirectory(const OpenedDirectory& directory, const char* name,
                                    mode_t mode) {
    if (FactsOf(directory, name)) {
        return Fail("make", EEXIST);
    }
    if (Status allowed = CheckChange(directory); !allowed) {
        return allowed;
    }
    const RehearsedNode& parent = NodeOf(directory);
    auto made = std::make_shared<RehearsedDirectory>();
    made->parent = parent;
    made->number = ++made_;
    made->mode = S_IFDIR | mode;
    made->volume = VolumeOf(directory);
    parent->AddedEntries().emplace(name, RehearsedEntry{{S_IFDIR | mode}, std::move(made), {}});
    Note(parent);
    return {};
}

Status RehearsedTree::Rename(const OpenedDirectory& from, const char* name,
                             const OpenedDirectory& to, const char* newName) {
    if (VolumeOf(from) != VolumeOf(to)) {
        return Fail("move", EXDEV);
    }
    return MoveEntry(from, name, to, newName);
}

// Whether the directory is the other one or lies in it.
bool RehearsedTree::IsWithin(const OpenedDirectory& directory, const RehearsedDirectory& other) {
    const RehearsedDirectory* above = NodeOf(directory).get();
    while (above != nullptr &&
           (above->number != other.number || above->realPath != other.realPath)) {
        above = above->parent.get();
    }
    return above != nullptr;
}

Status RehearsedTree::MoveEntry(const OpenedDirectory& from, const char* name,
                                const OpenedDirectory& to, const char* newName) {
    Status allowed = CheckTaking(from, name);
    allowed = allowed ? CheckChange(to) : std::move(allowed);
    if (!allowed) {
        return allowed;
    }
    const RehearsedNode& target = NodeOf(to);
    const RehearsedEntry* const added = NodeOf(from)->Added(name);
    RehearsedEntry moved;
    moved.facts = added != nullptr ? added->facts : platform::FactsOf(last_.entry);
    moved.node = added != nullptr            ? added->node
                 : moved.facts.isDirectory() ? ChildOf(from, name)
                                             : NodeOf(from);
    if (moved.facts.isDirectory() && IsWithin(to, *moved.node)) {
        return Fail("move", EINVAL);
    }
    if (added != nullptr && added->text != nullptr) {
        moved.text = std::make_unique<std::string>(*added->text);
    } else if (std::string_view(name) != newName) {
        moved.text = std::make_unique<std::string>(name);
    }
    if (moved.facts.isDirectory()) {
        moved.node->parent = target;
        Note(moved.node);
    }
    TakeAway(from, name);
    target->AddedEntries().insert_or_assign(newName, std::move(moved));
    Note(target);
    return {};
}

Status RehearsedTree::CheckReadable(const OpenedDirectory& directory, const char* name) const {
    if (isSuperuser_ || NodeOf(directory)->Added(name) != nullptr) {
        return {};
    }
    return faccessat(directory.get(), name, R_OK, AT_EACCESS | AT_SYMLINK_NOFOLLOW) == 0
               ? Status()
               : Fail("open", errno);
}

// A new file begins in its directory or else in its volume's root.
Status RehearsedTree::CheckNewFile(const OpenedDirectory& directory,
                                   const OpenedDirectory& volume) const {
    return CheckChange(directory) ? Status() : CheckChange(volume);
}

// Whether the file can be deleted when its copy is there: first it is set aside in its volume's
// root, with a record. Where there is no room for that, it takes a lease, which is for its owner.
Status RehearsedTree::CheckDeleting(const FileMove& move) {
    const dev_t volume = VolumeOf(move.from);
    const Result<struct statx> entry = LastLook(move.from, move.name);
    const uid_t owner = entry ? entry->stx_uid : geteuid();
    if (IsOthers(*NodeOf(move.fromVolume), owner)) {
        return Fail("move", EPERM);
    }
    if (Status allowed = CheckChange(move.fromVolume); !allowed) {
        return allowed;
    }
    Status possible = CheckTaking(move.from, move.name);
    if (room_.Take(move.fromVolume.get(), volume, 1)) {
        room_.Free(volume, room_.RoomFor(volume, 1));
        return possible;
    }
    return possible && (isSuperuser_ || owner == geteuid()) ? Status() : Fail("move", EBUSY);
}

// In the order of the calls that such a move takes.
Status RehearsedTree::MoveToVolume(const FileMove& move) {
    const Result<EntryFacts> facts = FactsOf(move.from, move.name);
    Status possible = facts ? CheckReadable(move.from, move.name)
                            : Status(tl::unexpected<Failure>(facts.error()));
    possible = possible ? CheckNewFile(move.to, *move.toVolume) : std::move(possible);
    if (!possible) {
        return possible;
    }
    const dev_t volume = VolumeOf(*move.toVolume);
    if (Status room = room_.Take(move.toVolume->get(), volume, facts->size); !room) {
        return room;
    }
    const std::uint64_t freed = RoomToFree(move.from, move.name);
    possible = CheckChange(move.to);
    possible = possible ? CheckDeleting(move) : std::move(possible);
    possible =
        possible ? MoveEntry(move.from, move.name, move.to, move.newName) : std::move(possible);
    if (possible) {
        room_.Free(VolumeOf(move.from), freed);
    } else {
        room_.Free(volume, room_.RoomFor(volume, facts->size));
    }
    return possible;
}

// What a killed run has left, the rehearsal has found as it is.
Status RehearsedTree::FinishMove(const FileMove& move) {
    const bool isReal = NodeOf(move.from)->Added(move.name) == nullptr &&
                        NodeOf(move.to)->Added(move.newName) == nullptr;
    const SourceFile source{move.from.get(), move.name, move.fromVolume.get(), move.path};
    const bool isFinished = isReal && IsMovedAlready(source, move.to.get(), move.newName) &&
                            CheckChange(move.fromVolume) && Unlink(move.from, move.name);
    return isFinished ? Status() : Fail("move", EEXIST);
}

void RehearsedTree::CopyDirectoryAttributes(const OpenedDirectory& old, const struct stat& status,
                                            const OpenedDirectory& made) {
    RehearsedDirectory& node = *NodeOf(made);
    node.mode = status.st_mode;
    node.attributes = HiddenAndSystem(old);
    node.refusal = RehearsedDirectory::kNotAsked;
}

Status RehearsedTree::Show(const OpenedDirectory& directory, const OpenedDirectory& volume,
                           const std::string& name, const EntryFacts& facts, std::string content) {
    const dev_t number = VolumeOf(volume);
    if (Status room = room_.Take(volume.get(), number, facts.size); !room) {
        return room;
    }
    const bool isReplaced = FactsOf(directory, name.c_str()).has_value();
    Status possible = isReplaced ? CheckTaking(directory, name.c_str()) : CheckChange(directory);
    possible = possible && isReplaced ? CheckChange(volume) : std::move(possible);
    if (!possible) {
        room_.Free(number, room_.RoomFor(number, facts.size));
        return possible;
    }
    if (isReplaced) {
        room_.Free(number, RoomToFree(directory, name.c_str()));
        TakeAway(directory, name.c_str());
    }
    const RehearsedNode& node = NodeOf(directory);
    node->AddedEntries().insert_or_assign(
        name, RehearsedEntry{facts, nullptr, std::make_unique<std::string>(std::move(content))});
    Note(node);
    return {};
}

Result<std::FILE*> RehearsedTree::OpenPublishingStream(OpenedDirectory directory,
                                                       OpenedDirectory volume, const HostName& name,
                                                       const std::optional<struct stat>& replaced,
                                                       Failure& failure) {
    if (Status allowed = CheckNewFile(directory, volume); !allowed) {
        return tl::unexpected<Failure>(allowed.error());
    }
    const auto places = std::make_shared<std::pair<OpenedDirectory, OpenedDirectory>>(
        std::move(directory), std::move(volume));
    const mode_t mode = replaced ? replaced->st_mode : S_IFREG | S_IRUSR | S_IWUSR;
    return OpenStreamInMemory(
        [this, places, name = std::string(name.view()), mode](std::string content) {
            const EntryFacts facts{mode, content.size()};
            return Show(places->first, places->second, name, facts, std::move(content));
        },
        failure);
}

}  // namespace platform
