#include "platform/files/path_resolver.h"

#include <fcntl.h>
#include <linux/openat2.h>
#include <sys/stat.h>
#include <sys/syscall.h>

#include <cerrno>
#include <span>
#include <string>
#include <vector>

namespace platform {

namespace {

constexpr std::uint64_t kBeneath = RESOLVE_BENEATH | RESOLVE_NO_SYMLINKS | RESOLVE_NO_MAGICLINKS;
constexpr std::uint64_t kOnVolume = kBeneath | RESOLVE_NO_XDEV;

// Without the flag that keeps links from being followed: the resolution refuses them, and says so
// also where a directory is wanted.
Result<Descriptor> OpenBeneath(int parent, const char* path, int flags, std::uint64_t resolve) {
    open_how how{};
    how.flags = static_cast<std::uint64_t>(flags | O_CLOEXEC);
    how.resolve = resolve;
    Descriptor opened(static_cast<int>(syscall(SYS_openat2, parent, path, &how, sizeof how)));
    if (!opened) {
        return Fail("open", errno);
    }
    return opened;
}

// A name that is missing on the way to an entry.
tl::unexpected<Failure> MissingOnTheWay(Failure failure) {
    failure.error = failure.error == ENOENT ? ENOTDIR : failure.error;
    return tl::unexpected<Failure>(std::move(failure));
}

int DirectoryFlags(OpenFor purpose) {
    return O_DIRECTORY | (purpose == OpenFor::Reading ? O_RDONLY | O_NONBLOCK : O_PATH);
}

// The components of a path, without the empty ones that doubled backslashes make.
std::vector<std::u16string_view> ComponentsOf(std::u16string_view path) {
    std::vector<std::u16string_view> components;
    std::size_t begin = path.find_first_not_of(u'\\');
    while (begin != std::u16string_view::npos) {
        const std::size_t end = std::min(path.find(u'\\', begin), path.size());
        components.push_back(path.substr(begin, end - begin));
        begin = path.find_first_not_of(u'\\', end);
    }
    return components;
}

// The host path that names the components in exactly their spelling, if they can name anything.
std::optional<std::string> ExactPath(std::span<const std::u16string_view> components) {
    std::string path;
    for (const std::u16string_view component : components) {
        HostName name;
        if (!HostNameOf(component, name)) {
            return std::nullopt;
        }
        path += path.empty() ? "" : "/";
        path += name.view();
    }
    return path;
}

}  // namespace

bool EntryFacts::isDirectory() const {
    return S_ISDIR(mode);
}

bool EntryFacts::isRegularFile() const {
    return S_ISREG(mode);
}

bool EntryFacts::isReadOnly() const {
    return !S_ISDIR(mode) && (mode & (S_IWUSR | S_IWGRP | S_IWOTH)) == 0;
}

SplitPath SplitAtName(std::u16string_view path) {
    const std::size_t last = path.find_last_not_of(u'\\');
    const std::size_t end = last == std::u16string_view::npos ? 0 : last + 1;
    const std::size_t backslash = path.substr(0, end).rfind(u'\\');
    const std::size_t begin = backslash == std::u16string_view::npos ? 0 : backslash + 1;
    return {path.substr(0, begin), path.substr(begin, end - begin), end < path.size()};
}

Result<OpenedDirectory> PathResolver::OpenDirectory(std::u16string_view path,
                                                    OpenFor purpose) const {
    const std::vector<std::u16string_view> components = ComponentsOf(path);
    if (!root_) {
        return Fail("open", ENOTDIR);
    }
    Result<Descriptor> opened =
        components.empty() ? OpenBeneath(root_.get(), ".", DirectoryFlags(purpose), kOnVolume)
                           : OpenAsSpelt(components, purpose);
    if (!opened && opened.error().error == ENOENT && !components.empty()) {
        opened = OpenStepByStep(components, purpose);
    }
    if (!opened) {
        return MissingOnTheWay(std::move(opened.error()));
    }
    return OpenedDirectory{std::move(*opened), components.empty()};
}

// Mostly one call. Only where the first component is a volume, it takes one more.
Result<Descriptor> PathResolver::OpenAsSpelt(std::span<const std::u16string_view> components,
                                             OpenFor purpose) const {
    const std::optional<std::string> path = ExactPath(components);
    if (!path) {
        return Fail("open", ENOTDIR);
    }
    Result<Descriptor> opened =
        OpenBeneath(root_.get(), path->c_str(), DirectoryFlags(purpose), kOnVolume);
    if (opened || opened.error().error != EXDEV) {
        return opened;
    }
    const std::size_t slash = path->find('/');
    const std::string volume = path->substr(0, slash);
    if (slash == std::string::npos) {
        return OpenSubdirectory(root_.get(), true, volume.c_str(), purpose);
    }
    const Result<Descriptor> mounted =
        OpenSubdirectory(root_.get(), true, volume.c_str(), OpenFor::Reaching);
    if (!mounted) {
        return tl::unexpected<Failure>(mounted.error());
    }
    return OpenBeneath(mounted->get(), path->c_str() + slash + 1, DirectoryFlags(purpose),
                       kOnVolume);
}

Result<Descriptor> PathResolver::OpenStepByStep(std::span<const std::u16string_view> components,
                                                OpenFor purpose) const {
    Descriptor parent;
    for (const std::u16string_view& component : components) {
        const bool isFirst = &component == &components.front();
        const bool isLast = &component == &components.back();
        Result<Descriptor> opened = OpenNamed(isFirst ? root_.get() : parent.get(), isFirst,
                                              component, isLast ? purpose : OpenFor::Reaching);
        if (!opened || isLast) {
            return opened;
        }
        parent = std::move(*opened);
    }
    return Fail("open", ENOENT);
}

Result<Descriptor> PathResolver::OpenNamed(int parent, bool parentIsRoot, std::u16string_view name,
                                           OpenFor purpose) const {
    HostName host;
    if (!HostNameOf(name, host)) {
        return Fail("open", ENOENT);
    }
    Result<Descriptor> opened = OpenSubdirectory(parent, parentIsRoot, host.c_str(), purpose);
    if (opened || opened.error().error != ENOENT) {
        return opened;
    }
    const Result<std::optional<HostName>> spelling = lookup_.Find(parent, name);
    if (!spelling) {
        return tl::unexpected<Failure>(spelling.error());
    }
    return *spelling ? OpenSubdirectory(parent, parentIsRoot, (*spelling)->c_str(), purpose)
                     : std::move(opened);
}

Result<Descriptor> PathResolver::OpenSubdirectory(int parent, bool parentIsRoot, const char* name,
                                                  OpenFor purpose) const {
    return OpenBeneath(parent, name, DirectoryFlags(purpose), parentIsRoot ? kBeneath : kOnVolume);
}

Result<Descriptor> PathResolver::OpenVolume(std::u16string_view path) const {
    const std::vector<std::u16string_view> components = ComponentsOf(path);
    if (components.size() > 1) {
        Result<Descriptor> first =
            OpenNamed(root_.get(), true, components.front(), OpenFor::Reading);
        if (!first || IsMountPoint(first->get(), "")) {
            return first;
        }
    }
    return OpenBeneath(root_.get(), ".", DirectoryFlags(OpenFor::Reading), kOnVolume);
}

Result<Descriptor> OpenRegularFile(int directory, const char* name, Mounted mounted) {
    // The name can have been given to something else since it was looked at.
    Result<Descriptor> file = OpenBeneath(directory, name, O_RDONLY | O_NONBLOCK | O_NOCTTY,
                                          mounted == Mounted::Allowed ? kBeneath : kOnVolume);
    struct stat opened {};
    if (file && fstat(file->get(), &opened) != 0) {
        return Fail("open", errno);
    }
    if (file && !S_ISREG(opened.st_mode)) {
        return FailBecause("open", "it is no regular file");
    }
    return file;
}

bool IsMountPoint(int directory, const char* name) {
    struct statx entry {};
    return statx(directory, name, AT_EMPTY_PATH | AT_SYMLINK_NOFOLLOW | AT_NO_AUTOMOUNT, 0,
                 &entry) == 0 &&
           (entry.stx_attributes & STATX_ATTR_MOUNT_ROOT) != 0;
}

Result<EntryFacts> FactsOf(int directory, const char* name) {
    struct stat entry {};
    if (fstatat(directory, name, &entry, AT_SYMLINK_NOFOLLOW | AT_NO_AUTOMOUNT) != 0) {
        return Fail("look at", errno);
    }
    return EntryFacts{entry.st_mode,
                      S_ISDIR(entry.st_mode) ? 0 : static_cast<std::uint64_t>(entry.st_size)};
}

}  // namespace platform
