#include "platform/device/device_halves.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <iterator>
#include <memory>

#include "platform/device/user_directories.h"
#include "platform/io/file_identity.h"
#include "platform/text/readable_text.h"
#include "platform/text/reserved_names.h"

namespace platform {

namespace {

constexpr const char* kUseFiles = "be used as the files of a device";
constexpr const char* kUseRegistry = "be used as the registry";

// Fails where one of the places that are dear to their owners is the tree or is in it.
Status CheckNotPrecious(const FileIdentity& tree) {
    for (const PreciousDirectory& place : PreciousDirectories(Homes::All)) {
        const Descriptor there = OpenDirectoryPath(place.path);
        const Result<bool> isInside = there ? IsWithin(there.get(), {&tree, 1}) : false;
        if (!isInside) {
            return tl::unexpected<Failure>(isInside.error());
        }
        if (*isInside) {
            return FailBecause(kUseFiles, IsSameFile(IdentityOf(there.get()), tree)
                                              ? place.isIt
                                              : place.containsIt);
        }
    }
    return {};
}

// No handheld has both.
Status CheckNoSystem(const Descriptor& files) {
    const char* const names[] = {"etc", "usr"};
    const bool isSystem = std::ranges::all_of(names, [&files](const char* name) {
        struct stat entry {};
        return fstatat(files.get(), name, &entry, AT_SYMLINK_NOFOLLOW) == 0;
    });
    return isSystem
               ? FailBecause(kUseFiles, "\"etc\" and \"usr\" are in it, as in the root of a system")
               : Status();
}

Status CheckStateOutside(const std::string& state, const FileIdentity& tree) {
    const Result<bool> isInside = LeadsInto(state, tree);
    if (!isInside) {
        return tl::unexpected<Failure>(isInside.error());
    }
    return *isInside ? FailBecause(kUseFiles,
                                   "what is kept of its runs would be in it; name another "
                                   "directory with --state")
                     : Status();
}

std::string AbsolutePath(const std::string& path) {
    const std::unique_ptr<char, decltype(&std::free)> whole(realpath(path.c_str(), nullptr),
                                                            &std::free);
    return whole != nullptr ? whole.get() : "";
}

Status OpenFilesHalf(const DeviceHalves& halves, DeviceDirectory& device) {
    const Descriptor named = OpenDirectoryPath(halves.files);
    if (!named) {
        return errno == ENOTDIR ? FailBecause(kUseFiles, "it is not a directory")
                                : Fail(kUseFiles, errno);
    }
    Result<Descriptor> files = OpenFileTree(named.get(), ".");
    device.tree = IdentityOf(named.get());
    if (!files || !device.tree) {
        return files ? Fail(kUseFiles, errno) : tl::unexpected<Failure>(files.error());
    }
    device.files = std::move(*files);
    const std::string path = AbsolutePath(halves.files);
    device.statePath =
        !halves.state.empty() || path.empty() ? halves.state : StateDirectoryFor(path);
    Status meant = CheckNotPrecious(*device.tree);
    meant = meant ? CheckNoSystem(device.files) : meant;
    return meant ? CheckStateOutside(device.statePath, *device.tree) : meant;
}

Status CheckRegistryPlace(const DeviceDirectory& device) {
    const Result<bool> isInside = IsWithin(device.directory.get(), {&*device.tree, 1});
    if (!isInside) {
        return tl::unexpected<Failure>(isInside.error());
    }
    if (*isInside) {
        return FailBecause(kUseRegistry,
                           "it is among the files that are cleaned; name a copy outside of them");
    }
    if (IsReservedName(device.registryName)) {
        return FailBecause(kUseRegistry, "files with such names are removed after a killed run");
    }
    struct stat entry {};
    return fstatat(device.directory.get(), device.registryName.c_str(), &entry,
                   AT_SYMLINK_NOFOLLOW) == 0
               ? Status()
               : Fail(kUseRegistry, errno);
}

Status OpenRegistryHalf(const std::string& file, DeviceDirectory& device) {
    const std::size_t slash = file.rfind('/');
    const std::string parent = slash == std::string::npos ? "." : file.substr(0, slash + 1);
    device.registryName = file.substr(slash + 1);
    device.directory = Descriptor(open(parent.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    const Status found =
        device.directory ? CheckRegistryPlace(device) : Status(Fail(kUseRegistry, errno));
    return found ? found : FailOf(found.error(), ReadableBytes(file));
}

}  // namespace

Result<DeviceDirectory> OpenDeviceHalves(const DeviceHalves& halves) {
    DeviceDirectory device;
    device.isByHalves = true;
    Status opened = OpenFilesHalf(halves, device);
    if (opened && !halves.registry.empty()) {
        opened = OpenRegistryHalf(halves.registry, device);
    }
    if (!opened) {
        return tl::unexpected<Failure>(opened.error());
    }
    return device;
}

Result<Descriptor> OpenKeptDirectory(const DeviceDirectory& device) {
    if (device.statePath.empty()) {
        return FailBecause("keep anything of the run",
                           "there is no home directory for it; name a directory with --state");
    }
    Result<Descriptor> state = OpenStateDirectory(device.statePath, *device.tree);
    return state ? std::move(state) : FailOf(state.error(), ReadableBytes(device.statePath));
}

}  // namespace platform
