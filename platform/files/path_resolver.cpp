#include "platform/files/path_resolver.h"

#include <cerrno>
#include <span>
#include <string>
#include <vector>

#include "platform/text/device_paths.h"

namespace platform {

namespace {

// A name that is missing on the way to an entry.
tl::unexpected<Failure> MissingOnTheWay(Failure failure) {
    failure.error = failure.error == ENOENT ? ENOTDIR : failure.error;
    return tl::unexpected<Failure>(std::move(failure));
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

Result<OpenedDirectory> PathResolver::OpenDirectory(std::u16string_view path,
                                                    OpenFor purpose) const {
    const std::vector<std::u16string_view> components = ComponentsOf(path);
    if (!tree_.root().descriptor) {
        return Fail("open", ENOTDIR);
    }
    Result<OpenedDirectory> opened =
        components.empty() ? OpenRoot(purpose) : OpenAsSpelt(components, purpose);
    if (!opened && opened.error().error == ENOENT && !components.empty()) {
        opened = OpenStepByStep(components, purpose);
    }
    if (!opened) {
        return MissingOnTheWay(std::move(opened.error()));
    }
    return opened;
}

Result<OpenedDirectory> PathResolver::OpenRoot(OpenFor purpose) const {
    Result<OpenedDirectory> root = tree_.Open(tree_.root(), ".", purpose, Mounts::Refused);
    if (root) {
        root->isRoot = true;
    }
    return root;
}

// Mostly one call. Only where the first component is a volume, it takes one more.
Result<OpenedDirectory> PathResolver::OpenAsSpelt(std::span<const std::u16string_view> components,
                                                  OpenFor purpose) const {
    const std::optional<std::string> path = ExactPath(components);
    if (!path) {
        return Fail("open", ENOTDIR);
    }
    Result<OpenedDirectory> opened =
        tree_.Open(tree_.root(), path->c_str(), purpose, Mounts::Refused);
    if (opened || opened.error().error != EXDEV) {
        return opened;
    }
    const std::size_t slash = path->find('/');
    const std::string volume = path->substr(0, slash);
    if (slash == std::string::npos) {
        return OpenSubdirectory(tree_.root(), volume.c_str(), purpose);
    }
    const Result<OpenedDirectory> mounted =
        OpenSubdirectory(tree_.root(), volume.c_str(), OpenFor::Reaching);
    if (!mounted) {
        return tl::unexpected<Failure>(mounted.error());
    }
    return tree_.Open(*mounted, path->c_str() + slash + 1, purpose, Mounts::Refused);
}

Result<OpenedDirectory> PathResolver::OpenStepByStep(
    std::span<const std::u16string_view> components, OpenFor purpose) const {
    OpenedDirectory parent;
    for (const std::u16string_view& component : components) {
        const bool isFirst = &component == &components.front();
        const bool isLast = &component == &components.back();
        Result<OpenedDirectory> opened = OpenNamed(isFirst ? tree_.root() : parent, component,
                                                   isLast ? purpose : OpenFor::Reaching);
        if (!opened || isLast) {
            return opened;
        }
        parent = std::move(*opened);
    }
    return Fail("open", ENOENT);
}

Result<OpenedDirectory> PathResolver::OpenNamed(const OpenedDirectory& parent,
                                                std::u16string_view name, OpenFor purpose) const {
    HostName host;
    if (!HostNameOf(name, host)) {
        return Fail("open", ENOENT);
    }
    Result<OpenedDirectory> opened = OpenSubdirectory(parent, host.c_str(), purpose);
    if (opened || opened.error().error != ENOENT) {
        return opened;
    }
    const Result<std::optional<HostName>> spelling = lookup_.Find(tree_, parent, name);
    if (!spelling) {
        return tl::unexpected<Failure>(spelling.error());
    }
    return *spelling ? OpenSubdirectory(parent, (*spelling)->c_str(), purpose) : std::move(opened);
}

Result<OpenedDirectory> PathResolver::OpenSubdirectory(const OpenedDirectory& parent,
                                                       const char* name, OpenFor purpose) const {
    return tree_.Open(parent, name, purpose, parent.isRoot ? Mounts::Entered : Mounts::Refused);
}

Result<OpenedDirectory> PathResolver::OpenVolume(std::u16string_view path) const {
    const std::vector<std::u16string_view> components = ComponentsOf(path);
    if (components.size() > 1) {
        Result<OpenedDirectory> first =
            OpenNamed(tree_.root(), components.front(), OpenFor::Reading);
        if (!first || tree_.IsMountPoint(*first, "")) {
            return first;
        }
    }
    return OpenRoot(OpenFor::Reading);
}

}  // namespace platform
