#include "platform/device/assembled_device.h"

#include <sysexits.h>

#include <utility>

#include "platform/diagnostics/run_log.h"

namespace platform {

namespace {

std::function<void(const Failure&)> EndUnchanged(std::function<void(int)> exit) {
    return [exit = std::move(exit)](const Failure& failure) {
        LogInUse::Current().Say("nothing was changed, because the registry could not be stored: " +
                                Describe(failure));
        exit(EX_CANTCREAT);
    };
}

}  // namespace

DeviceParts::DeviceParts(Descriptor root, std::u16string modulePath,
                         std::unique_ptr<Registry> ownRegistry, std::function<void(int)> exit)
    : keys(std::move(ownRegistry)),
      guard(*keys, EndUnchanged(exit)),
      tree(std::move(root), &guard),
      handheld({tree, *keys, guard}, std::move(modulePath),
               [exit = std::move(exit)] { exit(EXIT_SUCCESS); }) {}

}  // namespace platform
