#include "platform/tree/rehearsed_tree.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/sysmacros.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <string_view>
#include <utility>

#include "platform/tree/rehearsed_stream.h"

namespace platform {

namespace {

constexpr std::uint64_t kFileSystemBlock = 512;  // bytes in which statx counts

tl::unexpected<Failure> NotThere(const char* tried) {
    return Fail(tried, ENOENT);
}

EntryFacts FactsFrom(const struct statx& entry) {
    return {entry.stx_mode, S_ISDIR(entry.stx_mode) ? 0 : entry.stx_size};
}

dev_t VolumeOf(const struct statx& entry) {
    return makedev(entry.stx_dev_major, entry.stx_dev_minor);
}

// The real entries that show, and then those that were added.
class RehearsedListing : public DirectoryListing {
  public:
    RehearsedListing(const RehearsedTree& tree, const OpenedDirectory& directory,
                     std::unique_ptr<DirectoryListing> real)
        : tree_(tree), directory_(directory), real_(std::move(real)) {}

    Result<bool> Next() override {
        while (real_ != nullptr) {
            Result<bool> more = real_->Next();
            if (!more) {
                return more;
            }
            if (!*more) {
                real_.reset();
            } else if (tree_.ShowsReal(directory_, real_->entry().name)) {
                entry_ = real_->entry();
                return true;
            }
        }
        return NextAdded(*tree_.NodeOf(directory_));
    }

  private:
    // By name, because entries come and go while a directory is walked.
    bool NextAdded(const RehearsedDirectory& node) {
        if (node.added == nullptr) {
            return false;
        }
        const auto next = node.added->upper_bound(last_);
        if (next == node.added->end()) {
            return false;
        }
        last_ = next->first;
        entry_ = {last_.c_str(), static_cast<unsigned char>(IFTODT(next->second.facts.mode))};
        return true;
    }

    const RehearsedTree& tree_;
    const OpenedDirectory& directory_;
    std::unique_ptr<DirectoryListing> real_;  // null once it has ended
    std::string last_;
};

}  // namespace

RehearsedTree::RehearsedTree(Descriptor root)
    : FileTree(std::move(root), AccessTime::Kept),
      root_(std::make_shared<RehearsedDirectory>()),
      isSuperuser_(geteuid() == 0),
      isOnReadOnly_(IsOnReadOnly(this->root().get())) {
    changed_.Keep(root_);
}

const RehearsedNode& RehearsedTree::NodeOf(const OpenedDirectory& directory) const {
    return directory.rehearsed != nullptr ? Current(directory.rehearsed) : root_;
}

const RehearsedNode& RehearsedTree::Current(const RehearsedNode& node) const {
    if (node->isKept || !node->isReal()) {
        return node;
    }
    const RehearsedNode* const kept = changed_.Find(node->pathHash, node->realPath);
    return kept == nullptr ? node : *kept;
}

// Whether the real directory's entry of that name shows. Where the file system takes no account of
// case, it finds an entry that is hidden by another spelling too.
bool RehearsedTree::ShowsReal(const OpenedDirectory& directory, const char* name) const {
    const RehearsedDirectory& node = *NodeOf(directory);
    if (!node.isReal() || node.isRemoved || node.hidden.contains(name)) {
        return false;
    }
    const std::string* const other = node.HiddenInOtherCase(name);
    if (other == nullptr) {
        return true;
    }
    const Result<struct stat> status = FileTree::StatusOf(directory, name);
    const bool hasMoreNames = status && !S_ISDIR(status->st_mode) && status->st_nlink > 1;
    return !status || hasMoreNames ||
           FileTree::Identity(directory, other->c_str()) != IdentityOf(*status);
}

RehearsedNode RehearsedTree::NewNode(const RehearsedNode& parent, std::string_view name) const {
    auto node = std::make_shared<RehearsedDirectory>();
    node->parent = parent;
    node->realPath = parent->PathOf(name);
    node->pathHash = PathHash(parent->pathHash, name);
    return node;
}

// The node of a real subdirectory: the one of its changes, whatever spelling led to them.
RehearsedNode RehearsedTree::ChildOf(const OpenedDirectory& parent, const char* name) const {
    RehearsedNode node = NewNode(NodeOf(parent), name);
    if (const RehearsedNode* const known = changed_.Find(node->pathHash, node->realPath)) {
        return *known;
    }
    std::optional<FileIdentity> identity;
    const RehearsedNode other =
        changed_.FindInOtherCase(node->pathHash, [&](const RehearsedDirectory& each) {
            identity = identity ? identity : FileTree::Identity(parent, name);
            return IsSameFile(FileTree::Identity(root(), each.realPath.c_str()), identity);
        });
    return other != nullptr ? other : node;
}

// From here on the directory's node is found again.
void RehearsedTree::Note(const RehearsedNode& node) {
    ++node->changes;
    if (node->isReal() && !node->isKept) {
        changed_.Keep(node);
    }
}

Result<OpenedDirectory> RehearsedTree::OpenNode(const RehearsedNode& node, OpenFor purpose) const {
    if (node->isRemoved) {
        return NotThere("open");
    }
    if (!node->isReal()) {
        if (purpose == OpenFor::Reading && (node->mode & S_IRUSR) == 0 && !isSuperuser_) {
            return Fail("open", EACCES);
        }
        return OpenedDirectory{Descriptor(), false, node};
    }
    const char* const path = node->realPath.empty() ? "." : node->realPath.c_str();
    Result<OpenedDirectory> opened = FileTree::Open(root(), path, purpose, Mounts::Entered);
    if (opened) {
        opened->rehearsed = node;
    }
    return opened;
}

Result<OpenedDirectory> RehearsedTree::OpenEntry(const OpenedDirectory& parent, const char* name,
                                                 OpenFor purpose, Mounts mounts) const {
    const RehearsedNode& around = NodeOf(parent);
    if (std::string_view(name) == ".") {
        if (!parent.descriptor) {
            return OpenNode(around, purpose);
        }
        Result<OpenedDirectory> again = FileTree::Open(parent, name, purpose, mounts);
        if (again) {
            again->rehearsed = around;
        }
        return again;
    }
    if (const RehearsedEntry* const added = around->Added(name)) {
        return added->facts.isDirectory()
                   ? OpenNode(added->node, purpose)
                   : Fail("open", S_ISLNK(added->facts.mode) ? ELOOP : ENOTDIR);
    }
    if (!ShowsReal(parent, name)) {
        return NotThere("open");
    }
    Result<OpenedDirectory> opened = FileTree::Open(parent, name, purpose, mounts);
    if (opened) {
        opened->rehearsed = ChildOf(parent, name);
    }
    return opened;
}

// The node of a path on which nothing has changed as yet, its last directory aside; null where
// something has, or may have by another spelling.
RehearsedNode RehearsedTree::FindUntouched(const OpenedDirectory& parent,
                                           std::string_view path) const {
    RehearsedNode node = NodeOf(parent);
    while (!path.empty() && node != nullptr) {
        const std::size_t end = std::min(path.find('/'), path.size());
        const std::string name(path.substr(0, end));
        path.remove_prefix(std::min(end + 1, path.size()));
        const bool isTouched = !node->isReal() || node->isRemoved || node->Added(name) != nullptr ||
                               node->hidden.contains(name) ||
                               node->HiddenInOtherCase(name) != nullptr;
        if (isTouched) {
            return nullptr;
        }
        RehearsedNode child = NewNode(node, name);
        const RehearsedNode* const known = changed_.Find(child->pathHash, child->realPath);
        const bool mayBeOther = known == nullptr && changed_.HasHash(child->pathHash);
        node = mayBeOther ? nullptr : known != nullptr ? *known : std::move(child);
    }
    return node;
}

// Mostly the real call alone. Only where something has changed on the way it goes step by step.
Result<OpenedDirectory> RehearsedTree::Open(const OpenedDirectory& parent, const char* path,
                                            OpenFor purpose, Mounts mounts) const {
    const std::string_view whole = path;
    const std::size_t slash = whole.find('/');
    if (slash == std::string_view::npos) {
        return OpenEntry(parent, path, purpose, mounts);
    }
    RehearsedNode node = FindUntouched(parent, path);
    if (node != nullptr) {
        Result<OpenedDirectory> opened = FileTree::Open(parent, path, purpose, mounts);
        if (opened) {
            opened->rehearsed = std::move(node);
        }
        return opened;
    }
    Result<OpenedDirectory> next =
        OpenEntry(parent, std::string(whole.substr(0, slash)).c_str(), OpenFor::Reaching, mounts);
    return next ? Open(*next, path + slash + 1, purpose, mounts) : std::move(next);
}

std::unique_ptr<DirectoryListing> RehearsedTree::List(const OpenedDirectory& directory) const {
    return std::make_unique<RehearsedListing>(
        *this, directory, directory.descriptor ? FileTree::List(directory) : nullptr);
}

Result<struct statx> RehearsedTree::LookAtReal(const OpenedDirectory& directory,
                                               const char* name) const {
    if (!ShowsReal(directory, name)) {
        return NotThere("look at");
    }
    Look look{NodeOf(directory), name, {}};
    if (statx(directory.get(), name, AT_SYMLINK_NOFOLLOW | AT_NO_AUTOMOUNT, STATX_BASIC_STATS,
              &look.entry) != 0) {
        return Fail("look at", errno);
    }
    last_ = std::move(look);
    return last_.entry;
}

// Where an entry really is that may have moved.
Result<RehearsedTree::RealPlace> RehearsedTree::RealPlaceOf(const OpenedDirectory& directory,
                                                            const char* name) const {
    const RehearsedEntry* const added = NodeOf(directory)->Added(name);
    if (added == nullptr) {
        return ShowsReal(directory, name) ? Result<RealPlace>({{}, directory.get(), name})
                                          : NotThere("look at");
    }
    if (added->isWritten() || !added->node->isReal()) {
        return NotThere("look at");
    }
    // Removed or not, the real directory is still there.
    const char* const path = added->node->realPath.empty() ? "." : added->node->realPath.c_str();
    const bool isDirectory = added->facts.isDirectory();
    Result<OpenedDirectory> old = FileTree::Open(root(), path, OpenFor::Reaching, Mounts::Entered);
    return std::move(old).map([&](OpenedDirectory opened) {
        const int descriptor = opened.get();
        const char* const oldName = added->text ? added->text->c_str() : name;
        return RealPlace{std::move(opened), descriptor, isDirectory ? "" : oldName};
    });
}

// What was made, and the copy of what has come from another volume, is the user's own.
Result<struct statx> RehearsedTree::LookAtAdded(const OpenedDirectory& directory,
                                                const char* name) const {
    const Result<RealPlace> real = RealPlaceOf(directory, name);
    const dev_t volume = VolumeOf(directory);
    struct statx entry {};
    if (real &&
        statx(real->directory, real->name, AT_EMPTY_PATH | AT_SYMLINK_NOFOLLOW, STATX_BASIC_STATS,
              &entry) == 0 &&
        platform::VolumeOf(entry) == volume) {
        return entry;
    }
    const RehearsedEntry& added = *NodeOf(directory)->Added(name);
    const EntryFacts& facts = added.facts;
    const bool takesBlock = facts.isDirectory() && added.node->takesBlock;
    entry = {};
    entry.stx_mode = static_cast<std::uint16_t>(facts.mode);
    entry.stx_uid = geteuid();
    entry.stx_nlink = 1;
    entry.stx_size = facts.size;
    entry.stx_blocks = room_.RoomFor(volume, takesBlock ? 1 : facts.size) / kFileSystemBlock;
    return entry;
}

Result<struct statx> RehearsedTree::LastLook(const OpenedDirectory& directory,
                                             const char* name) const {
    if (NodeOf(directory)->Added(name) != nullptr) {
        return LookAtAdded(directory, name);
    }
    const bool isLast = last_.directory == NodeOf(directory) && last_.name == name;
    return isLast ? last_.entry : LookAtReal(directory, name);
}

Result<EntryFacts> RehearsedTree::FactsOf(const OpenedDirectory& directory,
                                          const char* name) const {
    if (const RehearsedEntry* const added = NodeOf(directory)->Added(name)) {
        return added->facts;
    }
    return LookAtReal(directory, name).map(FactsFrom);
}

// The time of its last change is one that no other state of the directory has.
Result<struct stat> RehearsedTree::StatusOf(const OpenedDirectory& directory,
                                            const char* name) const {
    const RehearsedDirectory& node = *NodeOf(directory);
    struct stat status {};
    if (*name == '\0' && node.isReal()) {
        return FileTree::StatusOf(directory, name).map([&](struct stat real) {
            real.st_ctim.tv_sec -= node.changes;
            return real;
        });
    }
    if (*name == '\0') {
        status.st_mode = node.mode;
        status.st_ino = node.number;
        status.st_ctim.tv_sec = node.changes;
        return status;
    }
    if (const RehearsedEntry* const added = node.Added(name)) {
        status.st_mode = added->facts.mode;
        status.st_size = static_cast<off_t>(added->facts.size);
        return status;
    }
    return ShowsReal(directory, name) ? FileTree::StatusOf(directory, name)
                                      : Result<struct stat>(NotThere("look at"));
}

std::optional<FileIdentity> RehearsedTree::Identity(const OpenedDirectory& directory) const {
    const RehearsedDirectory& node = *NodeOf(directory);
    return node.isReal() ? FileTree::Identity(directory)
                         : std::optional(FileIdentity{0, node.number});
}

std::optional<FileIdentity> RehearsedTree::Identity(const OpenedDirectory& directory,
                                                    const char* name) const {
    if (const RehearsedEntry* const added = NodeOf(directory)->Added(name)) {
        return FileIdentity{0, reinterpret_cast<std::uintptr_t>(added)};
    }
    return ShowsReal(directory, name) ? FileTree::Identity(directory, name) : std::nullopt;
}

bool RehearsedTree::IsMountPoint(const OpenedDirectory& directory, const char* name) const {
    const RehearsedDirectory& node = *NodeOf(directory);
    const bool isReal =
        *name == '\0' ? node.isReal() : node.Added(name) == nullptr && ShowsReal(directory, name);
    return isReal && FileTree::IsMountPoint(directory, name);
}

DWORD RehearsedTree::HiddenAndSystem(const OpenedDirectory& directory) const {
    const RehearsedDirectory& node = *NodeOf(directory);
    return node.isReal() ? FileTree::HiddenAndSystem(directory) : node.attributes;
}

Result<Descriptor> RehearsedTree::OpenFile(const OpenedDirectory& directory,
                                           const char* name) const {
    const RehearsedEntry* const added = NodeOf(directory)->Added(name);
    if (added == nullptr) {
        return ShowsReal(directory, name) ? FileTree::OpenFile(directory, name)
                                          : Result<Descriptor>(NotThere("open"));
    }
    if (added->isWritten()) {
        return OpenFileInMemory(*added->text);
    }
    const Result<RealPlace> real = RealPlaceOf(directory, name);
    return real ? OpenRegularFile(real->directory, real->name, Mounts::Refused, accessTime())
                : tl::unexpected<Failure>(real.error());
}

Status RehearsedTree::CheckWritable(const OpenedDirectory& directory, const char* name,
                                    mode_t mode) const {
    if (NodeOf(directory)->Added(name) != nullptr) {
        return (mode & (S_IWUSR | S_IWGRP | S_IWOTH)) != 0
                   ? Status()
                   : FailBecause("write it", "it is read-only", ERROR_ACCESS_DENIED);
    }
    Status writable = FileTree::CheckWritable(directory, name, mode);
    return writable || IsRefusal(writable.error().error) ? std::move(writable) : Status();
}

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
        return NotThere("change the directory");
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
    room_.Free(volume, entry.stx_blocks * kFileSystemBlock);
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
    moved.facts = added != nullptr ? added->facts : FactsFrom(last_.entry);
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
    if (!AreOnOneMount(move.from, move.fromVolume)) {
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
