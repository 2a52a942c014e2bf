#include "platform/device/assembled_device.h"

#include <sysexits.h>

#include <utility>

#include "platform/diagnostics/run_log.h"
#include "platform/rehearsal/rehearsed_tree.h"

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
    : AssembledDevice(std::make_unique<FileTree>(std::move(files)), std::move(modulePath),
                      std::move(registry), std::move(exit)) {}

std::unique_ptr<AssembledDevice> AssembledDevice::Rehearsed(Descriptor files,
                                                            std::u16string modulePath,
                                                            std::unique_ptr<Registry> registry,
                                                            Exit exit) {
    registry->Rehearse();
    return std::unique_ptr<AssembledDevice>(
        new AssembledDevice(std::make_unique<RehearsedTree>(std::move(files)),
                            std::move(modulePath), std::move(registry), std::move(exit)));
}

AssembledDevice::AssembledDevice(std::unique_ptr<FileTree> tree, std::u16string modulePath,
                                 std::unique_ptr<Registry> registry, Exit exit)
    : ForwardingStore(files_, *registry, system_),
      registry_(std::move(registry)),
      guard_(*registry_, EndUnchanged(exit)),
      files_(std::move(tree), &guard_),
      system_({files_, *registry_, guard_}, std::move(modulePath),
              [exit = std::move(exit)] { exit(EXIT_SUCCESS); }) {}

}  // namespace platform
