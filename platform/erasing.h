#pragma once

#include <cstddef>
#include <string>

#include "platform/descriptor.h"
#include "platform/failure.h"

namespace platform {

// The erasing of a device: its file tree and its registry move into a folder of their own beside
// them, "erased-DATE", and an empty tree stands in their place. Nothing is destroyed.
//
// After every single step, however a process ends there, the device directory opens as a device,
// and so does the folder from the moment when it holds something.
class DeviceErasing {
  public:
    // `device` is the open device directory; it stays the caller's and must outlive the object.
    // `date` is part of the folder's name.
    DeviceErasing(int device, std::string date) : device_(device), date_(std::move(date)) {}

    // Erases the device. After a failure it is as it was.
    Status CarryOut();

    // Fails for a device that is not to be erased: a file system is mounted on its tree or directly
    // in it, as a storage card is.
    Status Check() const;

    // The single steps in their order, for CarryOut. `number` counts from 0.
    static constexpr std::size_t kSteps = 5;
    Status Take(std::size_t number);
    void Undo(std::size_t number);  // of a step that was taken, the last one first

    // The name of the folder, once there is one.
    const std::string& folder() const { return name_; }

  private:
    struct Step;
    static const Step kTable[kSteps];

    Status EnsureRegistry();
    Status MakeFolder();
    Status MoveFiles();
    Status MakeFiles();
    Status MoveRegistry();
    void RemoveMadeRegistry();
    void RemoveFolder();
    void MoveFilesBack();
    void RemoveFiles();
    void MoveRegistryBack();

    int device_;
    std::string date_;
    std::string name_;
    Descriptor folder_;
    bool hasFiles_ = false;      // the device had a tree, which was moved
    bool madeRegistry_ = false;  // it had no registry
};

// The date of today as YYYY-MM-DD, where this machine is.
std::string Today();

}  // namespace platform
