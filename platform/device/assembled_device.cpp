#include "platform/device/assembled_device.h"

#include <sysexits.h>

#include <utility>

#include "platform/diagnostics/run_log.h"

namespace platform {

namespace {

std::function<void(const Failure&)> EndUnchanged(AssembledDevice::Exit exit) {
    return [exit = std::move(exit)](const Failure& failure) {
        LogInUse::Current().Say("nothing was changed, because the registry could not be stored: " +
                                Describe(failure));
        exit(EX_CANTCREAT);
    };
}

}  // namespace

AssembledDevice::AssembledDevice(Descriptor files, std::u16string modulePath,
                                 std::unique_ptr<Registry> registry, Exit exit)
    : ForwardingStore(files_, *registry, system_),
      registry_(std::move(registry)),
      guard_(*registry_, EndUnchanged(exit)),
      files_(std::move(files), &guard_),
      system_({files_, *registry_, guard_}, std::move(modulePath),
              [exit = std::move(exit)] { exit(EXIT_SUCCESS); }) {}

}  // namespace platform
