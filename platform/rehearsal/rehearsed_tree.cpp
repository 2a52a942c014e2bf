#include "platform/rehearsal/rehearsed_tree.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <string_view>
#include <utility>

#include "platform/io/whole_file.h"
#include "platform/text/reserved_names.h"

namespace platform {

namespace {

constexpr std::int64_t kBlock = 4096;  // bytes; what a file takes is a multiple

std::int64_t RoomFor(const EntryFacts& facts) {
    return (static_cast<std::int64_t>(facts.size) + kBlock - 1) / kBlock * kBlock;
}

const RehearsedEntry* FindAdded(const RehearsedDirectory& node, const char* name) {
    const auto found = node.added.find(name);
    return found == node.added.end() ? nullptr : &found->second;
}

// Whether the real directory's entry of that name shows.
bool ShowsReal(const RehearsedDirectory& node, const char* name) {
    return node.realPath.has_value() && !node.hidden.contains(name);
}

std::string Below(const std::string& path, std::string_view name) {
    return path.empty() ? std::string(name) : (path + '/').append(name);
}

// The real entries that show, and then those that were added.
class RehearsedListing : public DirectoryListing {
  public:
    RehearsedListing(const RehearsedTree& tree, RehearsedTree::Node node,
                     std::unique_ptr<DirectoryListing> real)
        : tree_(tree), node_(std::move(node)), real_(std::move(real)) {}

    Result<bool> Next() override {
        const RehearsedDirectory& node = *tree_.Current(node_);
        while (real_ != nullptr) {
            Result<bool> more = real_->Next();
            if (!more) {
                return more;
            }
            if (!*more) {
                real_.reset();
            } else if (!node.hidden.contains(real_->entry().name)) {
                entry_ = real_->entry();
                return true;
            }
        }
        // By name, because entries come and go while a directory is walked.
        const auto next = node.added.upper_bound(last_);
        if (next == node.added.end()) {
            return false;
        }
        last_ = next->first;
        entry_ = {last_.c_str(), static_cast<unsigned char>(IFTODT(next->second.facts.mode))};
        return true;
    }

  private:
    const RehearsedTree& tree_;
    RehearsedTree::Node node_;
    std::unique_ptr<DirectoryListing> real_;  // null once it has ended
    std::string last_;
};

}  // namespace

RehearsedTree::RehearsedTree(Descriptor root)
    : FileTree(std::move(root), O_NOATIME), rootNode_(std::make_shared<RehearsedDirectory>()) {
    rootNode_->realPath = "";
    rootNode_->isNoted = true;
    changed_.emplace("", rootNode_);
}

const RehearsedTree::Node& RehearsedTree::NodeOf(const OpenedDirectory& directory) const {
    return directory.rehearsed != nullptr ? Current(directory.rehearsed) : rootNode_;
}

const RehearsedTree::Node& RehearsedTree::Current(const Node& node) const {
    if (node->isNoted || !node->realPath) {
        return node;
    }
    const auto noted = changed_.find(*node->realPath);
    return noted == changed_.end() ? node : noted->second;
}

// The node of a real directory: what is known of its changes, or a new one for none.
RehearsedTree::Node RehearsedTree::Child(const Node& parent, const std::string& realPath) const {
    const auto found = changed_.find(realPath);
    if (found != changed_.end()) {
        return found->second;
    }
    auto node = std::make_shared<RehearsedDirectory>();
    node->parent = parent;
    node->realPath = realPath;
    return node;
}

// From here on the directory's node is found again.
void RehearsedTree::Note(const Node& node) {
    ++node->changes;
    if (node->realPath && !node->isNoted) {
        node->isNoted = true;
        changed_.emplace(*node->realPath, node);
    }
}

Result<OpenedDirectory> RehearsedTree::OpenNode(const Node& node, OpenFor purpose) const {
    if (!node->realPath) {
        return OpenedDirectory{Descriptor(), false, node};
    }
    const std::string& path = *node->realPath;
    Result<OpenedDirectory> opened =
        FileTree::Open(root(), path.empty() ? "." : path.c_str(), purpose, Mounts::Entered);
    if (opened) {
        opened->rehearsed = node;
    }
    return opened;
}

// Mostly the real call alone. Only what has changed on the way is reached by another one.
Result<OpenedDirectory> RehearsedTree::Open(const OpenedDirectory& parent, const char* path,
                                            OpenFor purpose, Mounts mounts) const {
    Node node = NodeOf(parent);
    bool isMoved = !node->realPath;
    std::string_view rest = path == std::string_view(".") ? "" : path;
    while (!rest.empty()) {
        const std::size_t end = std::min(rest.find('/'), rest.size());
        const std::string name(rest.substr(0, end));
        rest.remove_prefix(std::min(end + 1, rest.size()));
        const RehearsedEntry* const added = FindAdded(*node, name.c_str());
        if (added != nullptr && added->directory == nullptr) {
            return Fail("open", S_ISLNK(added->facts.mode) ? ELOOP : ENOTDIR);
        }
        if (added == nullptr && !ShowsReal(*node, name.c_str())) {
            return Fail("open", ENOENT);
        }
        isMoved = isMoved || added != nullptr;
        node = added != nullptr ? added->directory : Child(node, Below(*node->realPath, name));
    }
    if (isMoved || !parent.descriptor) {
        return OpenNode(node, purpose);
    }
    Result<OpenedDirectory> opened = FileTree::Open(parent, path, purpose, mounts);
    if (opened) {
        opened->rehearsed = std::move(node);
    }
    return opened;
}

std::unique_ptr<DirectoryListing> RehearsedTree::List(const OpenedDirectory& directory) const {
    return std::make_unique<RehearsedListing>(
        *this, NodeOf(directory), directory.descriptor ? FileTree::List(directory) : nullptr);
}

Result<EntryFacts> RehearsedTree::FactsOf(const OpenedDirectory& directory,
                                          const char* name) const {
    const RehearsedDirectory& node = *NodeOf(directory);
    if (const RehearsedEntry* const added = FindAdded(node, name)) {
        return added->facts;
    }
    return ShowsReal(node, name) ? FileTree::FactsOf(directory, name)
                                 : Result<EntryFacts>(Fail("look at", ENOENT));
}

// The time of its last change is one that no other state of the directory has.
Result<struct stat> RehearsedTree::StatusOf(const OpenedDirectory& directory,
                                            const char* name) const {
    const RehearsedDirectory& node = *NodeOf(directory);
    struct stat status {};
    if (*name == '\0') {
        if (node.realPath) {
            return FileTree::StatusOf(directory, name).map([&](struct stat real) {
                real.st_ctim.tv_sec -= node.changes;
                return real;
            });
        }
        status.st_mode = S_IFDIR | S_IRWXU;
        return status;
    }
    if (const RehearsedEntry* const added = FindAdded(node, name)) {
        status.st_mode = added->facts.mode;
        status.st_size = static_cast<off_t>(added->facts.size);
        return status;
    }
    return ShowsReal(node, name) ? FileTree::StatusOf(directory, name)
                                 : Result<struct stat>(Fail("look at", ENOENT));
}

std::optional<FileIdentity> RehearsedTree::Identity(const OpenedDirectory& directory) const {
    const RehearsedDirectory& node = *NodeOf(directory);
    return node.realPath ? FileTree::Identity(directory) : std::optional(node.identity);
}

std::optional<FileIdentity> RehearsedTree::Identity(const OpenedDirectory& directory,
                                                    const char* name) const {
    const RehearsedDirectory& node = *NodeOf(directory);
    if (const RehearsedEntry* const added = FindAdded(node, name)) {
        return FileIdentity{0, reinterpret_cast<std::uintptr_t>(added)};
    }
    return ShowsReal(node, name) ? FileTree::Identity(directory, name) : std::nullopt;
}

bool RehearsedTree::IsMountPoint(const OpenedDirectory& directory, const char* name) const {
    const RehearsedDirectory& node = *NodeOf(directory);
    return FindAdded(node, name) == nullptr && ShowsReal(node, name) &&
           FileTree::IsMountPoint(directory, name);
}

DWORD RehearsedTree::HiddenAndSystem(const OpenedDirectory& directory) const {
    return directory.descriptor ? FileTree::HiddenAndSystem(directory) : 0;
}

Result<Descriptor> RehearsedTree::OpenFile(const OpenedDirectory& directory,
                                           const char* name) const {
    const RehearsedDirectory& node = *NodeOf(directory);
    const RehearsedEntry* const added = FindAdded(node, name);
    if (added == nullptr) {
        return ShowsReal(node, name) ? FileTree::OpenFile(directory, name)
                                     : Result<Descriptor>(Fail("open", ENOENT));
    }
    if (added->content == nullptr) {
        const Result<OpenedDirectory> old = OpenNode(added->oldDirectory, OpenFor::Reaching);
        return old ? FileTree::OpenFile(*old, added->oldName.c_str())
                   : tl::unexpected<Failure>(old.error());
    }
    Descriptor file(memfd_create("rehearsed file", MFD_CLOEXEC));
    if (!file) {
        return Fail("open", errno);
    }
    if (const Status written = WriteWhole(file.get(), *added->content); !written) {
        return tl::unexpected<Failure>(written.error());
    }
    lseek(file.get(), 0, SEEK_SET);
    return file;
}

Status RehearsedTree::CheckWritable(const OpenedDirectory& directory, const char* name,
                                    mode_t mode) const {
    if (FindAdded(*NodeOf(directory), name) != nullptr) {
        return (mode & (S_IWUSR | S_IWGRP | S_IWOTH)) != 0
                   ? Status()
                   : FailBecause("write it", "it is read-only", ERROR_ACCESS_DENIED);
    }
    Status writable = FileTree::CheckWritable(directory, name, mode);
    return !writable && writable.error().error == EROFS ? Status() : writable;
}

// Asked once for each directory.
Status RehearsedTree::CheckChange(const OpenedDirectory& directory) const {
    RehearsedDirectory& node = *NodeOf(directory);
    if (!node.refusal) {
        const bool isRefused = directory.descriptor &&
                               faccessat(directory.get(), ".", W_OK | X_OK, AT_EACCESS) != 0 &&
                               errno != EROFS;
        node.refusal = isRefused ? errno : 0;
    }
    return *node.refusal == 0 ? Status() : Fail("change the directory", *node.refusal);
}

dev_t RehearsedTree::VolumeOf(const OpenedDirectory& directory) const {
    RehearsedDirectory& node = *NodeOf(directory);
    if (!node.volume) {
        const auto identity = FileTree::Identity(directory);
        node.volume = identity ? identity->device : 0;
    }
    return *node.volume;
}

Status RehearsedTree::CheckRoom(const OpenedDirectory& directory, const EntryFacts& facts) {
    struct statvfs volume {};
    if (!directory.descriptor || fstatvfs(directory.get(), &volume) != 0) {
        return {};
    }
    const auto free =
        static_cast<std::int64_t>(volume.f_bavail * volume.f_frsize) + freed_[VolumeOf(directory)];
    return RoomFor(facts) <= free ? Status() : Fail("write", ENOSPC);
}

void RehearsedTree::TakeAway(const OpenedDirectory& directory, const char* name) {
    const Node& node = NodeOf(directory);
    if (node->added.erase(name) == 0) {
        node->hidden.insert(name);
    }
    Note(node);
}

Status RehearsedTree::Unlink(const OpenedDirectory& directory, const char* name) {
    const Result<EntryFacts> facts = FactsOf(directory, name);
    if (!facts) {
        return tl::unexpected<Failure>(facts.error());
    }
    if (Status allowed = CheckChange(directory); !allowed) {
        return allowed;
    }
    freed_[VolumeOf(directory)] += RoomFor(*facts);
    TakeAway(directory, name);
    return {};
}

Status RehearsedTree::CheckEmpty(const OpenedDirectory& directory, const char* name) const {
    const Result<OpenedDirectory> opened = Open(directory, name, OpenFor::Reading, Mounts::Entered);
    if (!opened) {
        return tl::unexpected<Failure>(opened.error());
    }
    const Result<bool> more = List(*opened)->Next();
    if (!more) {
        return tl::unexpected<Failure>(more.error());
    }
    return *more ? Fail("remove", ENOTEMPTY) : Status();
}

Status RehearsedTree::RemoveDirectory(const OpenedDirectory& directory, const char* name) {
    if (Status allowed = CheckChange(directory); !allowed) {
        return allowed;
    }
    if (IsMountPoint(directory, name)) {
        return Fail("remove", EBUSY);
    }
    if (Status empty = CheckEmpty(directory, name); !empty) {
        return empty;
    }
    TakeAway(directory, name);
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
    const Node& parent = NodeOf(directory);
    auto made = std::make_shared<RehearsedDirectory>();
    made->parent = parent;
    made->identity = {0, ++made_};
    made->volume = VolumeOf(directory);
    parent->added.emplace(name,
                          RehearsedEntry{{S_IFDIR | mode}, std::move(made), nullptr, nullptr, {}});
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

Status RehearsedTree::MoveEntry(const OpenedDirectory& from, const char* name,
                                const OpenedDirectory& to, const char* newName) {
    const Result<EntryFacts> facts = FactsOf(from, name);
    if (!facts) {
        return tl::unexpected<Failure>(facts.error());
    }
    for (const OpenedDirectory* const directory : {&from, &to}) {
        if (Status allowed = CheckChange(*directory); !allowed) {
            return allowed;
        }
    }
    if (FactsOf(to, newName)) {
        return Fail("move", EEXIST);
    }
    RehearsedEntry moved{*facts, nullptr, nullptr, NodeOf(from), name};
    if (const RehearsedEntry* const added = FindAdded(*NodeOf(from), name)) {
        moved = *added;
    } else if (facts->isDirectory()) {
        if (IsMountPoint(from, name)) {
            return Fail("move", EBUSY);
        }
        moved.directory = Child(NodeOf(from), Below(*NodeOf(from)->realPath, name));
    }
    for (Node above = NodeOf(to); above != nullptr && moved.directory != nullptr;
         above = above->parent) {
        if (above->realPath == moved.directory->realPath &&
            above->identity == moved.directory->identity) {
            return Fail("move", EINVAL);
        }
    }
    TakeAway(from, name);
    if (moved.directory != nullptr) {
        moved.directory->parent = NodeOf(to);
        Note(moved.directory);
    } else if (moved.oldDirectory != nullptr) {
        Note(moved.oldDirectory);
    }
    NodeOf(to)->added.emplace(newName, std::move(moved));
    Note(NodeOf(to));
    return {};
}

Status RehearsedTree::MoveToVolume(const FileMove& move) {
    const Result<EntryFacts> facts = FactsOf(move.from, move.name);
    if (!facts) {
        return tl::unexpected<Failure>(facts.error());
    }
    if (const Result<Descriptor> readable = OpenFile(move.from, move.name); !readable) {
        return tl::unexpected<Failure>(readable.error());
    }
    if (Status allowed = CheckChange(move.to); !allowed) {
        return allowed;
    }
    if (Status room = CheckRoom(*move.toVolume, *facts); !room) {
        return room;
    }
    Status moved = MoveEntry(move.from, move.name, move.to, move.newName);
    if (moved) {
        freed_[VolumeOf(move.from)] += RoomFor(*facts);
        freed_[VolumeOf(move.to)] -= RoomFor(*facts);
    }
    return moved;
}

Status RehearsedTree::FinishMove(const FileMove& /*move*/) {
    return Fail("move", EEXIST);
}

void RehearsedTree::CopyDirectoryAttributes(const OpenedDirectory& /*old*/,
                                            const struct stat& /*status*/,
                                            const OpenedDirectory& /*made*/) {}

namespace {

// A file that is being written. It shows when it is closed.
struct RehearsedStream {
    std::shared_ptr<RehearsedDirectory> directory;
    std::string name;
    std::string content;
};

ssize_t WriteStream(void* cookie, const char* bytes, std::size_t count) {
    static_cast<RehearsedStream*>(cookie)->content.append(bytes, count);
    return static_cast<ssize_t>(count);
}

int CloseStream(void* cookie) {
    const std::unique_ptr<RehearsedStream> stream(static_cast<RehearsedStream*>(cookie));
    RehearsedDirectory& directory = *stream->directory;
    if (directory.realPath) {
        directory.hidden.insert(stream->name);
    }
    const EntryFacts facts{S_IFREG | S_IRUSR | S_IWUSR, stream->content.size()};
    directory.added.insert_or_assign(
        stream->name, RehearsedEntry{facts,
                                     nullptr,
                                     std::make_shared<std::string>(std::move(stream->content)),
                                     nullptr,
                                     {}});
    ++directory.changes;
    return 0;
}

}  // namespace

Result<std::FILE*> RehearsedTree::OpenPublishingStream(OpenedDirectory directory,
                                                       OpenedDirectory /*volume*/,
                                                       const HostName& name,
                                                       const std::optional<struct stat>& /*old*/,
                                                       Failure& /*failure*/) {
    if (Status allowed = CheckChange(directory); !allowed) {
        return tl::unexpected<Failure>(allowed.error());
    }
    Note(NodeOf(directory));
    auto stream =
        std::make_unique<RehearsedStream>(RehearsedStream{NodeOf(directory), name.c_str(), {}});
    std::FILE* const opened =
        fopencookie(stream.get(), "w",
                    {.read = nullptr, .write = WriteStream, .seek = nullptr, .close = CloseStream});
    if (opened == nullptr) {
        return Fail("open", errno);
    }
    static_cast<void>(stream.release());
    return opened;
}

}  // namespace platform
