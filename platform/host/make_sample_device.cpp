#include "platform/host/make_sample_device.h"

#include <sysexits.h>

#include <utility>

#include "platform/device/assembled_device.h"
#include "platform/device/device_directory.h"
#include "platform/diagnostics/run_log.h"
#include "platform/sample/sample_files.h"
#include "platform/sample/sample_registry.h"

namespace platform {

namespace {

Status FillSample(DeviceDirectory& device, const CommandLine& line) {
    if (Status written = WriteSampleRegistry(device.directory.get()); !written) {
        return written;
    }
    auto registry = Registry::Open(device.directory.get());
    if (!registry) {
        return tl::unexpected<Failure>(registry.error());
    }
    AssembledDevice store(std::move(device.files), line.modulePath, std::move(*registry));
    const StoreInUse inUse(store);
    return FillSampleDevice(store);
}

}  // namespace

Status MakeSampleDevice(const CommandLine& line) {
    Result<DeviceDirectory> device = MakeDeviceDirectory(line.device.c_str());
    return device ? FillSample(*device, line) : Status(tl::unexpected<Failure>(device.error()));
}

int RunMakeSampleDevice(const CommandLine& line) {
    RunLog log(line.device);
    const LogInUse logInUse(log);
    Result<DeviceDirectory> device = MakeDeviceDirectory(line.device.c_str());
    if (!device) {
        log.Say(Describe(device.error()));
        return EX_CANTCREAT;
    }
    if (const Status filled = FillSample(*device, line); !filled) {
        log.Say("the sample device is incomplete: " + Describe(filled.error()));
        return EX_CANTCREAT;
    }
    return 0;
}

}  // namespace platform
