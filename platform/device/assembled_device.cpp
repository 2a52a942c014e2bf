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

DeviceParts::DeviceParts(std::unique_ptr<FileTree> files, std::u16string modulePath,
                         std::unique_ptr<Registry> ownRegistry, std::function<void(int)> exit)
    : keys(std::move(ownRegistry)),
      guard(*keys, EndUnchanged(exit)),
      tree(std::move(files), &guard),
      handheld({tree, *keys, guard}, std::move(modulePath),
               [exit = std::move(exit)] { exit(EXIT_SUCCESS); }) {}

std::unique_ptr<AssembledDevice> AssembledDevice::Rehearsed(std::unique_ptr<RehearsedTree> tree,
                                                            std::u16string modulePath,
                                                            std::unique_ptr<Registry> registry,
                                                            Exit exit) {
    const int directory = registry->directory();
    const dev_t volume = IdentityOf(directory).value_or(FileIdentity()).device;
    RehearsedRoom& room = tree->room();
    registry->Rehearse(
        {[&room, directory, volume](std::size_t size) {
             return room.Take(directory, volume, size);
         },
         [&room, volume](std::size_t size) { room.Free(volume, room.RoomFor(volume, size)); }});
    return std::make_unique<AssembledDevice>(std::move(tree), std::move(modulePath),
                                             std::move(registry), std::move(exit));
}

}  // namespace platform
