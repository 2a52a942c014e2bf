#pragma once

#include <string>

#include "platform/device/device_directory.h"
#include "platform/io/descriptor.h"

namespace platform {

// Where the page of a report will be.
struct PagePlace {
    Descriptor directory;
    std::string name;  // of the page in it
};

// Opens the directory of the page `file`.
Result<PagePlace> OpenPagePlace(const std::string& file);

// Fails where the page would be in the device, or replace its registry: nothing of the device may
// be replaced by a report, and no run is to find one among the files that it cleans.
Status CheckOutside(const PagePlace& place, const DeviceDirectory& device);

}  // namespace platform
