#pragma once

#include <cstdlib>
#include <functional>
#include <memory>

#include "platform/device/handheld_system.h"
#include "platform/device/registry_guard.h"
#include "platform/files/host_files.h"
#include "platform/registry/registry_key_operations.h"
#include "platform/seam/forwarding_store.h"
#include "platform/tree/rehearsed_tree.h"

namespace platform {

// The parts of a device, in the order in which each needs the ones before it.
struct DeviceParts {
    DeviceParts(std::unique_ptr<FileTree> files, std::u16string modulePath,
                std::unique_ptr<Registry> ownRegistry, std::function<void(int)> exit);

    std::unique_ptr<Registry> keys;
    RegistryGuard guard;
    HostFiles tree;
    HandheldSystem handheld;
};

// The device of a device directory on this machine: its files, its registry, and its system. The
// parts are a base, because they have to be there before what forwards to them.
class AssembledDevice : private DeviceParts, public ForwardingStore {
  public:
    // Ends the run on the spot with this exit code, 0 for a restart of the device; does not return.
    // The default ends the process.
    using Exit = std::function<void(int)>;

    // `files` is the root of the device's files, `modulePath` that of HandheldSystem.
    AssembledDevice(
        Descriptor files, std::u16string modulePath, std::unique_ptr<Registry> registry,
        Exit exit = [](int code) { std::_Exit(code); })
        : AssembledDevice(std::make_unique<FileTree>(std::move(files)), std::move(modulePath),
                          std::move(registry), std::move(exit)) {}
    AssembledDevice(std::unique_ptr<FileTree> files, std::u16string modulePath,
                    std::unique_ptr<Registry> registry, Exit exit)
        : DeviceParts(std::move(files), std::move(modulePath), std::move(registry),
                      std::move(exit)),
          ForwardingStore(tree, *keys, handheld) {}

    // A device on which every change takes effect in memory alone; the same otherwise.
    static std::unique_ptr<AssembledDevice> Rehearsed(std::unique_ptr<RehearsedTree> tree,
                                                      std::u16string modulePath,
                                                      std::unique_ptr<Registry> registry,
                                                      Exit exit);

    Status CheckStorable() { return guard.CheckStorable(); }  // see RegistryGuard
    void KeepFromErasing() { handheld.KeepFromErasing(); }
    void OfferHelp(std::unique_ptr<HelpViewers> viewers) { handheld.OfferHelp(std::move(viewers)); }
    void OfferRetry(std::function<bool(const Failure&)> tryAgain) {  // see Registry
        keys->OfferRetry(std::move(tryAgain));
    }
    void RecoverFromKilledRuns() { tree.RecoverFromKilledRuns(); }
    bool HaveLeftovers() const { return tree.HaveLeftovers(); }
};

}  // namespace platform
