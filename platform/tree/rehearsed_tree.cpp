#include "platform/tree/rehearsed_tree.h"

#include <dirent.h>
#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <string_view>
#include <utility>

#include "platform/tree/file_in_memory.h"

namespace platform {

namespace {

tl::unexpected<Failure> NotThere(const char* tried) {
    return Fail(tried, ENOENT);
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
        node = mayBeOther ? nullptr : known != nullptr ? *known : child;
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
    entry.stx_blocks = room_.RoomFor(volume, takesBlock ? 1 : facts.size) / kStatBlock;
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
    return LookAtReal(directory, name).map([](const struct statx& entry) {
        return platform::FactsOf(entry);
    });
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

}  // namespace platform
