#pragma once

#include <functional>
#include <optional>

#include "platform/files/host_files.h"
#include "platform/registry/registry_key_operations.h"

namespace platform {

// Keeps the order between registry and files. Changes of the registry are gathered, and stored
// before the next change of the file tree. Nothing at all changes unless the registry can be
// stored.
class RegistryGuard : public ChangeGuard {
  public:
    // `registry` stays the caller's. `cannotStore` is called before the first change of all where
    // the registry cannot be stored; it has to end the run.
    RegistryGuard(Registry& registry, std::function<void(const Failure&)> cannotStore);

    // Whether the registry can be stored, but for the room. Asked once by the guard itself before
    // the first change, unless it was asked before.
    Status CheckStorable();

    Status BeforeChange() override;
    Status BeforeMove() override;

  private:
    void EnsureStorable();
    Status RefuseMove(const Failure& failure);

    Registry& registry_;
    std::function<void(const Failure&)> cannotStore_;
    bool isChecked_ = false;
    std::optional<unsigned> refusedInStep_;  // the step in which a move was refused, counted
};

}  // namespace platform
