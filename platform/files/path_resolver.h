#pragma once

#include <optional>
#include <span>
#include <string_view>

#include "platform/diagnostics/failure.h"
#include "platform/files/case_insensitive_lookup.h"
#include "platform/tree/file_tree.h"

// The device's file tree on the host: how a device path reaches a host entry. Everything is opened
// beneath the root directory and never leads out of it: no symbolic link is followed, and a mount
// point is entered only directly below the root, where it is a volume of the device.

namespace platform {

// Failures are named as the device has it: ENOTDIR where a directory on the way is not there or is
// none, ENOENT where the last name is not, ELOOP for a link and EXDEV for a mount on the way.
class PathResolver {
  public:
    // `tree` stays the caller's. In one without a root, no path names anything.
    explicit PathResolver(FileTree& tree) : tree_(tree) {}

    FileTree& tree() const { return tree_; }

    // The directory that `path` names; names match as on the handheld. The empty path, which is
    // what stands in front of a bare name, is the root.
    Result<OpenedDirectory> OpenDirectory(std::u16string_view path, OpenFor purpose) const;

    // The subdirectory with exactly this host name.
    Result<OpenedDirectory> OpenSubdirectory(const OpenedDirectory& parent, const char* name,
                                             OpenFor purpose) const;

    // The root directory of the volume that holds what `path` names.
    Result<OpenedDirectory> OpenVolume(std::u16string_view path) const;

    CaseInsensitiveLookup& lookup() const { return lookup_; }

  private:
    Result<OpenedDirectory> OpenRoot(OpenFor purpose) const;
    Result<OpenedDirectory> OpenAsSpelt(std::span<const std::u16string_view> components,
                                        OpenFor purpose) const;
    Result<OpenedDirectory> OpenStepByStep(std::span<const std::u16string_view> components,
                                           OpenFor purpose) const;
    Result<OpenedDirectory> OpenNamed(const OpenedDirectory& parent, std::u16string_view name,
                                      OpenFor purpose) const;

    FileTree& tree_;
    mutable CaseInsensitiveLookup lookup_;  // what is known of the tree, not a part of it
};

}  // namespace platform
