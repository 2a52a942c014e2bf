#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/files/name_hash_set.h"
#include "platform/files/path_resolver.h"

namespace platform {

// A directory that entries are being moved into or made in.
struct DestinationDirectory {
    std::u16string path;  // as the caller spelt it, backslash included
    OpenedDirectory opened;
    NameHashSet names;

    // The entry that has this device name, in whatever case; nothing when there is none. `host` is
    // its exact host name.
    Result<std::optional<HostName>> Existing(const FileTree& tree, std::u16string_view device,
                                             const HostName& host) const;
};

// The directories that a walk is filling, outermost first: the one that it fills now and those that
// it will come back to. Knowing their names spares reading them again for every entry.
class DestinationDirectories {
  public:
    // Opens and reads the directory unless it is one of them. The pointer is valid until the next
    // call.
    Result<DestinationDirectory*> Get(const PathResolver& tree, std::u16string_view path);
    void Clear() { filled_.clear(); }

  private:
    std::vector<DestinationDirectory> filled_;
};

}  // namespace platform
