#pragma once

#include <sys/stat.h>

#include <string>
#include <string_view>
#include <vector>

#include "platform/files/path_resolver.h"

namespace platform {

// The directories that stand for others whose content is being moved into them, outermost first.
// A new one is open to its owner alone until it is filled: what was shut off must not be open for
// the time of a move, and its own times would change with every entry that comes.
class MovedDirectoryAttributes {
  public:
    // `newPath` will stand for `oldPath`. Whether that can be looked at shows only at the end.
    void Begin(const PathResolver& tree, std::u16string_view oldPath, std::u16string_view newPath);

    // The mode to make the directory `path` with.
    mode_t ModeFor(std::u16string_view path) const;

    // The directory `path` has been made, so that it was not there before.
    void Made(std::u16string_view path);

    // Gives the directory that stands for `oldPath`, if it was made, the mode, owner, user
    // attributes and times that that one had at the beginning, as far as that is allowed and the
    // volume can hold them; where they cannot be read, it stays open to its owner alone.
    void End(const PathResolver& tree, std::u16string_view oldPath);

  private:
    struct Pair {
        std::u16string oldPath;
        std::u16string newPath;
        struct stat old {};
        bool known = false;  // `old` is filled
        bool made = false;
    };

    std::vector<Pair> pairs_;
};

}  // namespace platform
