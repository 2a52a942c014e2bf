#pragma once

#include <cstdint>
#include <random>
#include <string>

#include "tests/support/mounted_device.h"

// The user to whom devices belong on which permissions count.
inline constexpr uid_t kOrdinaryUser = 4711;

// A device as nobody would make it: files of all names, shortcuts of all forms, a registry in
// either form and settings that lead all over it. The same for the same seed.
class RandomDevice {
  public:
    enum class Kind {
        // With names that differ in case, links, pipes, second names, immutable files, mounts,
        // other users' directories and a card with little room.
        OfThisPlatform,
        AlmostFull,  // as this, with little room for everything
        // Only with what the second platform has as well; see docs/platform.md.
        OfTwoPlatforms
    };

    // `parent` is where it is made, on a small volume of its own where that is to be almost full.
    // Unless it is for two platforms it mounts, so the process must be in a mount namespace of its
    // own.
    RandomDevice(std::uint64_t seed, const std::string& parent, Kind kind);
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
    void MakeLink(const std::string& path, std::uint32_t kind);
    void MakeFile(const std::string& path, const std::string& content);
    void MakeShortcuts();
    void MakeHazards();
    std::string DevicePath();
    std::string Shortcut();
    std::string Encoded(const std::string& text) const;
    std::string Path();
    std::string Key(const std::string& key);
    std::string Keys();
    std::string Settings();
    void LeaveRoom(std::uint64_t bytes) const;
    void HandOver();

    std::mt19937_64 random_;
    MountedDevice device_;
    bool isOfTwoPlatforms_;
    Entries names_;
    Entries subdirectories_;
    uid_t user_;
    bool allowsRestart_;
    bool isErased_;
    bool hasNarrowRegistry_;
    bool isForFewFiles_ = false;  // the card
    std::string lastFile_;        // of those made
    // Where not everything fits, what is moved depends on the order in a directory, and that on
    // what has moved there before; so only one folder moves.
    bool isTight_;
};
