#include "platform/host/device_choice.h"

#include <sysexits.h>

#include "platform/device/device_directory.h"
#include "platform/diagnostics/run_log.h"
#include "platform/display/window_module_loader.h"
#include "platform/host/device_run.h"
#include "platform/host/make_sample_device.h"
#include "platform/text/readable_text.h"

namespace platform {

namespace {

std::string InWords(const CommandLine& line, const Failure& failure) {
    return ReadableBytes(line.device) + ": " + Describe(failure);
}

// Whether the chosen folder is a device, or has become one.
bool IsDevice(const CommandLine& line, DeviceDialogs& dialogs) {
    const Result<DeviceDirectory> device = OpenDeviceDirectory(line.device.c_str());
    if (device) {
        return true;
    }
    const std::string wrong = InWords(line, device.error());
    if (!CanBecomeDevice(line.device.c_str())) {
        dialogs.ShowText(wrong);
        return false;
    }
    if (!dialogs.Confirm(wrong + ".\n\nDo you want to make a sample device there?")) {
        return false;
    }
    const Status made = MakeSampleDevice(line);
    if (!made) {
        dialogs.ShowText(InWords(line, made.error()));
    }
    return made.has_value();
}

// False when the user cancels.
bool ChooseDevice(CommandLine& line, DeviceDialogs& dialogs) {
    do {
        line.device = dialogs.ChooseFolder();
    } while (!line.device.empty() && !IsDevice(line, dialogs));
    return !line.device.empty();
}

}  // namespace

int RunOnChosenDevice(CommandLine& line) {
    auto dialogs = OpenDeviceDialogs(line.scale);
    if (!dialogs) {
        RunLog("").Say(Describe(dialogs.error()));
        return EX_UNAVAILABLE;
    }
    const bool isChosen = ChooseDevice(line, **dialogs);
    dialogs->reset();
    return isChosen ? RunOnDevice(line) : 0;
}

}  // namespace platform
