#include "platform/files/path_resolver.h"

#include <fcntl.h>

#include <cerrno>
#include <span>
#include <string>
#include <vector>

#include "platform/io/entry_facts.h"
#include "platform/io/open_beneath.h"
#include "platform/text/device_paths.h"

namespace platform {

namespace {

// A name that is missing on the way to an entry.
tl::unexpected<Failure> MissingOnTheWay(Failure failure) {
    failure.error = failure.error == ENOENT ? ENOTDIR : failure.error;
    return tl::unexpected<Failure>(std::move(failure));
}

int DirectoryFlags(OpenFor purpose) {
    return O_DIRECTORY | (purpose == OpenFor::Reading ? O_RDONLY | O_NONBLOCK : O_PATH);
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
    if (!root_) {
        return Fail("open", ENOTDIR);
    }
    Result<Descriptor> opened =
        components.empty() ? OpenBeneath(root_.get(), ".", DirectoryFlags(purpose), Mounts::Refused)
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
        OpenBeneath(root_.get(), path->c_str(), DirectoryFlags(purpose), Mounts::Refused);
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
                       Mounts::Refused);
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
    return OpenBeneath(parent, name, DirectoryFlags(purpose),
                       parentIsRoot ? Mounts::Entered : Mounts::Refused);
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
    return OpenBeneath(root_.get(), ".", DirectoryFlags(OpenFor::Reading), Mounts::Refused);
}

}  // namespace platform
