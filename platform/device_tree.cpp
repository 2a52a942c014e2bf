#include "platform/device_tree.h"

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

Descriptor OpenBeneath(int parent, const char* path, int flags, std::uint64_t resolve) {
    open_how how{};
    how.flags = static_cast<std::uint64_t>(flags | O_CLOEXEC | O_NOFOLLOW);
    how.resolve = resolve;
    return Descriptor(static_cast<int>(syscall(SYS_openat2, parent, path, &how, sizeof how)));
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

OpenedDirectory DeviceTree::OpenDirectory(std::u16string_view path, OpenFor purpose) const {
    const std::vector<std::u16string_view> components = ComponentsOf(path);
    if (components.empty()) {
        return {OpenBeneath(root_.get(), ".", DirectoryFlags(purpose), kOnVolume), true};
    }
    OpenedDirectory opened{OpenAsSpelt(components, purpose)};
    if (opened.descriptor || errno != ENOENT) {
        return opened;
    }
    int parent = root_.get();
    for (const std::u16string_view& component : components) {
        const bool isLast = &component == &components.back();
        opened.descriptor = OpenNamed(parent, parent == root_.get(), component,
                                      isLast ? purpose : OpenFor::Reaching);
        if (!opened.descriptor) {
            break;
        }
        parent = opened.descriptor.get();
    }
    return opened;
}

// Mostly one call. Only where the first component is a volume, it takes one more. Sets errno.
Descriptor DeviceTree::OpenAsSpelt(std::span<const std::u16string_view> components,
                                   OpenFor purpose) const {
    const std::optional<std::string> path = ExactPath(components);
    if (!path) {
        errno = EINVAL;
        return Descriptor();
    }
    Descriptor opened = OpenBeneath(root_.get(), path->c_str(), DirectoryFlags(purpose), kOnVolume);
    if (opened || errno != EXDEV) {
        return opened;
    }
    const std::size_t slash = path->find('/');
    const std::string volume = path->substr(0, slash);
    if (slash == std::string::npos) {
        return OpenSubdirectory(root_.get(), true, volume.c_str(), purpose);
    }
    const Descriptor mounted =
        OpenSubdirectory(root_.get(), true, volume.c_str(), OpenFor::Reaching);
    return OpenBeneath(mounted.get(), path->c_str() + slash + 1, DirectoryFlags(purpose),
                       kOnVolume);
}

Descriptor DeviceTree::OpenNamed(int parent, bool parentIsRoot, std::u16string_view name,
                                 OpenFor purpose) const {
    HostName host;
    if (!HostNameOf(name, host)) {
        return Descriptor();
    }
    Descriptor opened = OpenSubdirectory(parent, parentIsRoot, host.c_str(), purpose);
    if (!opened && errno == ENOENT) {
        if (const std::optional<HostName> spelling = spellings_.Find(parent, name)) {
            opened = OpenSubdirectory(parent, parentIsRoot, spelling->c_str(), purpose);
        }
    }
    return opened;
}

Descriptor DeviceTree::OpenSubdirectory(int parent, bool parentIsRoot, const char* name,
                                        OpenFor purpose) const {
    return OpenBeneath(parent, name, DirectoryFlags(purpose), parentIsRoot ? kBeneath : kOnVolume);
}

Descriptor DeviceTree::OpenVolume(std::u16string_view path) const {
    const std::vector<std::u16string_view> components = ComponentsOf(path);
    if (components.size() > 1) {
        Descriptor first = OpenNamed(root_.get(), true, components.front(), OpenFor::Reading);
        if (first && IsMountPoint(first.get(), "")) {
            return first;
        }
    }
    return OpenBeneath(root_.get(), ".", DirectoryFlags(OpenFor::Reading), kOnVolume);
}

Descriptor OpenRegularFile(int directory, const char* name) {
    // The name can have been given to something else since it was looked at.
    Descriptor file = OpenBeneath(directory, name, O_RDONLY | O_NONBLOCK | O_NOCTTY, kOnVolume);
    struct stat opened {};
    const bool isRegular = file && fstat(file.get(), &opened) == 0 && S_ISREG(opened.st_mode);
    return isRegular ? std::move(file) : Descriptor();
}

bool IsMountPoint(int directory, const char* name) {
    struct statx entry {};
    return statx(directory, name, AT_EMPTY_PATH | AT_SYMLINK_NOFOLLOW | AT_NO_AUTOMOUNT, 0,
                 &entry) == 0 &&
           (entry.stx_attributes & STATX_ATTR_MOUNT_ROOT) != 0;
}

std::optional<EntryFacts> FactsOf(int directory, const char* name) {
    struct stat entry {};
    if (fstatat(directory, name, &entry, AT_SYMLINK_NOFOLLOW | AT_NO_AUTOMOUNT) != 0) {
        return std::nullopt;
    }
    return EntryFacts{entry.st_mode,
                      S_ISDIR(entry.st_mode) ? 0 : static_cast<std::uint64_t>(entry.st_size)};
}

}  // namespace platform
