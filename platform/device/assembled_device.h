#pragma once

#include <cstdlib>
#include <functional>
#include <memory>

#include "platform/device/handheld_system.h"
#include "platform/device/registry_guard.h"
#include "platform/files/host_files.h"
#include "platform/registry/registry_key_operations.h"
#include "platform/seam/forwarding_store.h"

namespace platform {

// The device of a device directory on this machine: its files, its registry, and its system.
class AssembledDevice : public ForwardingStore {
  public:
    // Ends the run on the spot with this exit code, 0 for a restart of the device; does not return.
    // The default ends the process.
    using Exit = std::function<void(int)>;

    // `files` is the root of the device's files, `modulePath` that of HandheldSystem.
    AssembledDevice(
        Descriptor files, std::u16string modulePath, std::unique_ptr<Registry> registry,
        Exit exit = [](int code) { std::_Exit(code); });

    // A device on which every change takes effect in memory alone; the same otherwise.
    static std::unique_ptr<AssembledDevice> Rehearsed(Descriptor files, std::u16string modulePath,
                                                      std::unique_ptr<Registry> registry,
                                                      Exit exit);

    Status CheckStorable() { return guard_.CheckStorable(); }  // see RegistryGuard
    void OfferHelp(std::unique_ptr<HelpViewers> viewers) { system_.OfferHelp(std::move(viewers)); }
    void RecoverFromKilledRuns() { files_.RecoverFromKilledRuns(); }

  private:
    AssembledDevice(std::unique_ptr<FileTree> tree, std::u16string modulePath,
                    std::unique_ptr<Registry> registry, Exit exit);

    std::unique_ptr<Registry> registry_;
    RegistryGuard guard_;
    HostFiles files_;
    HandheldSystem system_;
};

}  // namespace platform
