#pragma once

#include <sys/types.h>

#include <cstdint>
#include <optional>
#include <span>
#include <string_view>

#include "platform/diagnostics/failure.h"
#include "platform/files/name_lookup.h"
#include "platform/io/descriptor.h"
#include "platform/text/device_names.h"

// The device's file tree on the host: how a device path reaches a host entry. Everything is opened
// beneath the root directory and never leads out of it: no symbolic link is followed, and a mount
// point is entered only directly below the root, where it is a volume of the device.

namespace platform {

// What the file system says about an entry.
struct EntryFacts {
    mode_t mode = 0;
    std::uint64_t size = 0;  // bytes; 0 for a directory

    bool isDirectory() const;
    bool isRegularFile() const;
    bool isReadOnly() const;  // a file that nobody may write
};

struct OpenedDirectory {
    Descriptor descriptor;
    bool isRoot = false;
};

// A path taken apart at its last backslash. Both views are parts of the path.
struct SplitPath {
    std::u16string_view directory;  // backslash included; empty for a bare name
    std::u16string_view name;       // without backslashes behind it; empty for the root
    bool directoryOnly = false;     // there were backslashes behind the name
};
SplitPath SplitAtName(std::u16string_view path);

// How a directory is opened: to reach its entries, or to read them as well.
enum class OpenFor { Reaching, Reading };

// Failures are named as the device has it: ENOTDIR where a directory on the way is not there or is
// none, ENOENT where the last name is not, ELOOP for a link and EXDEV for a mount on the way.
class PathResolver {
  public:
    // `root` is the open root directory; without one, no path names anything.
    explicit PathResolver(Descriptor root) : root_(std::move(root)) {}

    int root() const { return root_.get(); }

    // The directory that `path` names; names match as on the handheld. The empty path, which is
    // what stands in front of a bare name, is the root.
    Result<OpenedDirectory> OpenDirectory(std::u16string_view path, OpenFor purpose) const;

    // The subdirectory with exactly this host name.
    Result<Descriptor> OpenSubdirectory(int parent, bool parentIsRoot, const char* name,
                                        OpenFor purpose) const;

    // The root directory of the volume that holds what `path` names.
    Result<Descriptor> OpenVolume(std::u16string_view path) const;

    NameLookup& lookup() const { return lookup_; }

  private:
    Result<Descriptor> OpenAsSpelt(std::span<const std::u16string_view> components,
                                   OpenFor purpose) const;
    Result<Descriptor> OpenStepByStep(std::span<const std::u16string_view> components,
                                      OpenFor purpose) const;
    Result<Descriptor> OpenNamed(int parent, bool parentIsRoot, std::u16string_view name,
                                 OpenFor purpose) const;

    Descriptor root_;
    mutable NameLookup lookup_;  // what is known of the tree, not a part of it
};

// Whether a file may be opened over which another one is mounted.
enum class Mounted { Refused, Allowed };

// Opens the entry `name` of `directory`, which was a regular file when it was looked at, for
// reading; fails when it is not one any more. Waits for nothing.
Result<Descriptor> OpenRegularFile(int directory, const char* name,
                                   Mounted mounted = Mounted::Refused);

// Whether `name` in `directory`, or `directory` itself for "", is where a file system is mounted.
bool IsMountPoint(int directory, const char* name);

// ENOENT when there is no such entry.
Result<EntryFacts> FactsOf(int directory, const char* name);

}  // namespace platform
