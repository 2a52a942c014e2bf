#pragma once

#include <sys/stat.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

#include "platform/failure.h"
#include "platform/host_names.h"

namespace platform {

// A set of names that differ in more than case, in a fixed number of bits: a name that is in it may
// be there, a name that is not is not.
class NameFilter {
  public:
    void Add(std::u16string_view name);
    bool MayHold(std::u16string_view name) const;
    void Clear() { bits_.fill(0); }

  private:
    std::array<std::uint64_t, 512> bits_{};
};

// The host name in `directory` that `device` names: the exact one, or else the first in byte order
// of those that differ in case alone; nothing when there is none.
Result<std::optional<HostName>> FindSpelling(int directory, std::u16string_view device);

// The name under which an entry that is there is listed in `directory`: `name`, unless the file
// system itself takes no account of case.
HostName ListedName(int directory, const HostName& name);

// The same as FindSpelling for many looks in a row. What is not there takes the reading of a whole
// directory to find out; what the directories read last hold is kept in mind, so that one reading
// of each will do. A directory that has changed since is read again.
class Spellings {
  public:
    Result<std::optional<HostName>> Find(int directory, std::u16string_view device);

  private:
    // A directory's identity and the time of its last change.
    struct Version {
        dev_t device = 0;
        ino_t number = 0;
        timespec changed{};

        bool operator==(const Version& other) const;
    };
    struct ReadDirectory {
        Version version;
        NameFilter names;
    };

    static std::optional<Version> LastingVersion(int directory);
    const ReadDirectory* Known(const Version& version) const;
    ReadDirectory& NextPlace();

    std::vector<ReadDirectory> read_;
    std::size_t next_ = 0;  // the place that is used again next
};

}  // namespace platform
