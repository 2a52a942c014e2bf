#pragma once

#include "tests/support/temporary_device.h"

// Puts this process into a mount namespace of its own; as an ordinary user it becomes root of a
// user namespace first. Returns whether it may mount file systems now.
bool EnterMountNamespace();

// A device with file systems mounted in it, until the object goes.
class MountedDevice : public TemporaryDevice {
  public:
    explicit MountedDevice(const std::string& parent = "") : TemporaryDevice({}, parent) {}
    ~MountedDevice();

    std::string HostPath(const std::string& path) const { return files() + '/' + path; }

    // A file system of its own, or that of the directory `source` once more, below files().
    void Mount(const std::string& path, const char* options = "");
    void Bind(const std::string& source, const std::string& path);
    void IsMounted(const std::string& path) { mounted_.push_back(HostPath(path)); }

    // Removes everything but the places where something is mounted.
    void Clear() const;

  private:
    std::vector<std::string> mounted_;
};
