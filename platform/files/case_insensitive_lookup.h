#pragma once

#include <deque>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/diagnostics/failure.h"
#include "platform/files/name_hash_set.h"
#include "platform/text/name_translation.h"
#include "platform/tree/file_tree.h"

namespace platform {

// The host name in `directory` that `device` names: the exact one, or else the first in byte order
// of those that differ in case alone; nothing when there is none.
Result<std::optional<HostName>> FindHostName(const FileTree& tree, const OpenedDirectory& directory,
                                             std::u16string_view device);

// The name under which an entry that is there is listed in `directory`: `name`, unless the file
// system itself takes no account of case.
HostName ListedName(const FileTree& tree, const OpenedDirectory& directory, const HostName& name);

// The same as FindHostName for many looks in a row. What is not there takes the reading of a whole
// directory to find out; what the directories read last hold is remembered, so that one reading
// of each will do. A directory that has changed since, or may have without showing it, is read
// again, but for looks that belong together.
class CaseInsensitiveLookup {
  public:
    Result<std::optional<HostName>> Find(const FileTree& tree, const OpenedDirectory& directory,
                                         std::u16string_view device);

    // The looks up to EndLooks, or to the next call, belong together: what is read for one of them
    // holds for all.
    void BeginLooks();
    void EndLooks();

  private:
    // A directory and the time of its last change.
    struct Version {
        FileIdentity directory;
        timespec changed{};
        bool lasting = false;  // the next change will show in the time

        bool operator==(const Version& other) const;
    };
    struct Spelling {
        std::u16string device;
        std::optional<HostName> host;
    };
    struct ReadDirectory {
        Version version;
        bool readForTheseLooks;
        NameHashSet names;
        std::vector<Spelling> spellings;  // of names that may be there

        const Spelling* SpellingOf(std::u16string_view name) const;
    };

    static std::optional<Version> VersionOf(const FileTree& tree, const OpenedDirectory& directory);
    ReadDirectory* Known(const Version& version);
    void Keep(ReadDirectory read);
    Result<std::optional<HostName>> FindInKnown(const FileTree& tree, ReadDirectory& known,
                                                const OpenedDirectory& directory,
                                                std::u16string_view device);
    Result<std::optional<HostName>> FindInUnknown(const FileTree& tree, const Version& version,
                                                  const OpenedDirectory& directory,
                                                  std::u16string_view device);

    std::deque<ReadDirectory> read_;  // oldest first
    bool looksBelongTogether_ = false;
};

}  // namespace platform
