#pragma once

#include <cstdint>
#include <random>
#include <string>

#include "tests/support/mounted_device.h"

// The user to whom devices belong on which permissions count.
inline constexpr uid_t kOrdinaryUser = 4711;

// A device as nobody would make it: names that differ in case, links, pipes, second names, files
// that are alike, read-only and immutable files, mounts, other users' directories, volumes with
// little room, and a registry and settings that lead all over it. The same for the same seed.
class RandomDevice {
  public:
    // Mounts, so the process must be in a mount namespace of its own. `parent` is where it is made,
    // on a small volume of its own where that is to be almost full.
    RandomDevice(std::uint64_t seed, const std::string& parent, bool isFull);
    ~RandomDevice();

    const MountedDevice& device() const { return device_; }

    // The run that it is for.
    uid_t user() const { return user_; }  // 0, or kOrdinaryUser
    bool allowsRestart() const { return allowsRestart_; }
    bool isErased() const { return isErased_; }  // after the run

  private:
    std::uint32_t Below(std::uint32_t limit) {
        return static_cast<std::uint32_t>(random_() % limit);
    }
    bool Chance(std::uint32_t percent) { return Below(100) < percent; }
    template <typename List>
    std::string Pick(const List& list) {
        return list[Below(static_cast<std::uint32_t>(std::size(list)))];
    }

    void MakeTree();
    void MakeCard();
    void Fill(const std::string& directory, int depth);
    void MakeEntry(const std::string& path, int depth);
    void MakeShortcuts();
    void MakeHazards();
    std::string Directory();
    std::string DevicePath();
    std::string Value();
    std::string Registry();
    std::string Settings();
    void LeaveRoom(std::uint64_t bytes) const;
    void HandOver();

    std::mt19937_64 random_;
    MountedDevice device_;
    uid_t user_;
    bool allowsRestart_;
    bool isErased_;
    bool isForFewFiles_ = false;  // the card
    std::string lastFile_;        // of those made
    // Where not everything fits, what is moved depends on the order in a directory, and that on
    // what has moved there before; so only one folder moves.
    bool isTight_;
};
