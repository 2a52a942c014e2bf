#include "platform/report/page_place.h"

#include <fcntl.h>

#include <cerrno>
#include <optional>
#include <vector>

#include "platform/io/file_identity.h"

namespace platform {

namespace {

constexpr const char* kWritePage = "write the report";

}  // namespace

Result<PagePlace> OpenPagePlace(const std::string& file) {
    const std::size_t slash = file.rfind('/');
    const std::string parent = slash == std::string::npos ? "." : file.substr(0, slash + 1);
    PagePlace place{Descriptor(open(parent.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC)),
                    file.substr(slash + 1)};
    if (!place.directory) {
        return Fail(kWritePage, errno);
    }
    return place;
}

Status CheckOutside(const PagePlace& place, const DeviceDirectory& device) {
    std::vector<FileIdentity> places;
    const auto whole = device.isByHalves ? std::nullopt : IdentityOf(device.directory.get());
    if (!device.isByHalves && !whole) {
        return Fail(kWritePage, errno);
    }
    for (const std::optional<FileIdentity>& part : {device.tree, whole}) {
        if (part) {
            places.push_back(*part);
        }
    }
    const Result<bool> isInside = IsWithin(place.directory.get(), places);
    if (!isInside) {
        return tl::unexpected<Failure>(isInside.error());
    }
    if (*isInside) {
        return FailBecause(kWritePage, device.isByHalves ? "it would be among the device's files"
                                                         : "it would be in the device directory");
    }
    return IsSameFile(IdentityOf(place.directory.get(), place.name.c_str()),
                      IdentityOf(device.directory.get(), device.registryName.c_str()))
               ? FailBecause(kWritePage, "it is the device's registry")
               : Status();
}

}  // namespace platform
