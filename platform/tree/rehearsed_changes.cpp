// The changes of a rehearsed tree, and what the kernel would say to them.

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <string_view>
#include <utility>

#include "platform/io/stream_to_sink.h"
#include "platform/tree/rehearsed_tree.h"

namespace platform {

// Asked once for each directory.
void RehearsedTree::AskRules(const OpenedDirectory& directory) const {
    RehearsedDirectory& node = *NodeOf(directory);
    if (!node.isReal()) {
        const bool isAllowed =
            isSuperuser_ || (node.mode & (S_IWUSR | S_IXUSR)) == (S_IWUSR | S_IXUSR);
        node.refusal = isAllowed ? 0 : EACCES;
        return;
    }
    const bool isAllowed = faccessat(directory.get(), ".", W_OK | X_OK, AT_EACCESS) == 0;
    node.refusal = !isAllowed && IsRefusal(errno) ? errno : 0;
    if (!isOnReadOnly_ && IsOnReadOnly(directory.get())) {
        node.refusal = EROFS;  // which the kernel says first
    }
    struct statx entry {};
    if (statx(directory.get(), "", AT_EMPTY_PATH, STATX_BASIC_STATS | STATX_MNT_ID, &entry) == 0) {
        node.volume = platform::VolumeOf(entry);
        node.mount = entry.stx_mnt_id;
        node.takesBlock = entry.stx_blocks > 0;
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

// A file's volume gets its room back with its last name.
void RehearsedTree::FreeRoomOf(const struct statx& entry, const OpenedDirectory& directory) {
    const dev_t volume = VolumeOf(directory);
    if (!S_ISDIR(entry.stx_mode) && entry.stx_nlink > 1 &&
        ++namesGone_[{volume, entry.stx_ino}] < entry.stx_nlink) {
        return;
    }
    room_.Free(volume, entry.stx_blocks * kStatBlock);
}

Status RehearsedTree::Unlink(const OpenedDirectory& directory, const char* name) {
    if (Status allowed = CheckTaking(directory, name); !allowed) {
        return allowed;
    }
    if (const Result<struct statx> entry = LastLook(directory, name)) {
        FreeRoomOf(*entry, directory);
    }
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
    if (const Result<struct statx> entry = LastLook(directory, name)) {
        FreeRoomOf(*entry, directory);
    }
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
    const dev_t volume = VolumeOf(directory);
    if (Status room = room_.Take(directory.get(), volume, parent->takesBlock ? 1 : 0); !room) {
        return room;
    }
    auto made = std::make_shared<RehearsedDirectory>();
    made->parent = parent;
    made->number = ++made_;
    made->mode = S_IFDIR | mode;
    made->volume = volume;
    made->mount = parent->mount;
    made->takesBlock = parent->takesBlock;
    parent->AddedEntries().emplace(name, RehearsedEntry{{S_IFDIR | mode}, std::move(made), {}});
    Note(parent);
    return {};
}

Status RehearsedTree::Rename(const OpenedDirectory& from, const char* name,
                             const OpenedDirectory& to, const char* newName) {
    return AreOnOneMount(from, to) ? MoveEntry(from, name, to, newName)
                                   : Status(Fail("move", EXDEV));
}

// The kernel renames within a mount alone, even where two show the same volume.
bool RehearsedTree::AreOnOneMount(const OpenedDirectory& one, const OpenedDirectory& other) const {
    return VolumeOf(one) == VolumeOf(other) && NodeOf(one)->mount == NodeOf(other)->mount;
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
    const Result<RealPlace> real = RealPlaceOf(directory, name);
    const bool isReadable = !real || faccessat(real->directory, real->name, R_OK,
                                               AT_EACCESS | AT_SYMLINK_NOFOLLOW) == 0;
    return isReadable ? Status() : Fail("open", errno);
}

// A new file begins in its directory or else in its volume's root.
Status RehearsedTree::CheckNewFile(const OpenedDirectory& directory,
                                   const OpenedDirectory& volume) {
    const bool isMade = CheckChange(directory) && room_.HasFile(volume.get(), VolumeOf(volume));
    return isMade ? Status() : CheckChange(volume);
}

// Whether the file can be deleted when its copy is there: first it is set aside in its volume's
// root, with a record. Where there is no room for that, it takes a lease, which is for its owner.
Status RehearsedTree::CheckDeleting(const FileMove& move) {
    const dev_t volume = VolumeOf(move.from);
    const Result<struct statx> entry = LastLook(move.from, move.name);
    const uid_t owner = entry ? entry->stx_uid : geteuid();
    const bool isOneMount = AreOnOneMount(move.from, move.fromVolume);  // asks both for their rules
    if (IsOthers(*NodeOf(move.fromVolume), owner)) {
        return Fail("move", EPERM);
    }
    if (!isOneMount) {
        return Fail("move", EXDEV);
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
    const Result<struct statx> entry = LastLook(move.from, move.name);
    Status possible = entry ? CheckReadable(move.from, move.name)
                            : Status(tl::unexpected<Failure>(entry.error()));
    possible = possible ? CheckNewFile(move.to, *move.toVolume) : std::move(possible);
    if (!possible) {
        return possible;
    }
    const dev_t volume = VolumeOf(*move.toVolume);
    if (Status room = room_.Take(move.toVolume->get(), volume, entry->stx_size); !room) {
        return room;
    }
    possible = CheckChange(move.to);
    possible = possible ? CheckDeleting(move) : std::move(possible);
    possible =
        possible ? MoveEntry(move.from, move.name, move.to, move.newName) : std::move(possible);
    if (possible) {
        FreeRoomOf(*entry, move.from);
    } else {
        room_.Free(volume, room_.RoomFor(volume, entry->stx_size));
    }
    return possible;
}

// What has the name may be what a killed run has left, or a file just like this one.
Status RehearsedTree::FinishMove(const FileMove& move) {
    const Result<RealPlace> from = RealPlaceOf(move.from, move.name);
    const Result<RealPlace> to = RealPlaceOf(move.to, move.newName);
    if (!from || !to) {
        return Fail("move", EEXIST);
    }
    const SourceFile source{from->directory, from->name, move.fromVolume.get(), move.path};
    const Twin twin = AreOnOneMount(move.from, move.to) ? Twin::SecondName : Twin::Copy;
    const bool isFinished = IsMovedAlready(source, to->directory, to->name, twin) &&
                            CheckReadable(move.from, move.name) && CheckDeleting(move) &&
                            Unlink(move.from, move.name);
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
        static_cast<void>(Unlink(directory, name.c_str()));
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
