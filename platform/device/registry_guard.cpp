#include "platform/device/registry_guard.h"

#include <utility>

#include "platform/diagnostics/run_log.h"

namespace platform {

// The registry takes a change into memory alone: that is the time to ask.
RegistryGuard::RegistryGuard(Registry& registry, std::function<void(const Failure&)> cannotStore)
    : registry_(registry), cannotStore_(std::move(cannotStore)) {
    registry_.OnChange([this] { EnsureStorable(); });
}

Status RegistryGuard::CheckStorable() {
    isChecked_ = true;
    return registry_.CheckStorable();
}

void RegistryGuard::EnsureStorable() {
    if (isChecked_) {
        return;
    }
    if (const Status storable = CheckStorable(); !storable) {
        cannotStore_(storable.error());
    }
}

// What could not be stored is tried again once there is more to be stored, not before each of a
// hundred thousand deletions, which may be what makes the room.
Status RegistryGuard::BeforeChange() {
    EnsureStorable();
    if (registry_.HasUntriedChanges()) {
        [[maybe_unused]] const Status stored = registry_.StoreRegistry();
    }
    return {};
}

// A folder that has moved while the registry still names the old place is lost to its owner. So the
// room comes first, and a step in which it is missing moves nothing at all. Outside of the steps
// nothing moves: a directory that is made there is for the settings, which need no such room.
Status RegistryGuard::BeforeMove() {
    if (Status ready = BeforeChange(); !ready || LogInUse::Current().step() == 0) {
        return ready;
    }
    const bool isRefused = refusedInStep_ == LogInUse::Current().stepsBegun();
    Status kept = isRefused ? FailBecause("move", "another move was refused before")
                            : registry_.ReserveRoom();
    return kept ? kept : RefuseMove(kept.error());
}

Status RegistryGuard::RefuseMove(const Failure& failure) {
    RunLog& log = LogInUse::Current();
    if (refusedInStep_ != log.stepsBegun()) {
        refusedInStep_ = log.stepsBegun();
        log.NoteNotStored();
        log.SayUndone("nothing is moved, because the registry could not be stored afterwards: " +
                      Describe(failure));
    }
    return FailBecause("move", "there is no room to store the registry afterwards",
                       ERROR_NO_SYSTEM_RESOURCES);
}

}  // namespace platform
