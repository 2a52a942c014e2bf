#pragma once

#include <sys/types.h>

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>

#include "core/platform_types.h"
#include "platform/io/entry_facts.h"

namespace platform {

// A hash that is equal for names that differ in case alone.
struct FoldedNameHash {
    std::size_t operator()(std::string_view name) const noexcept;  // so that no hash is kept
};

struct RehearsedEntry;

// What a rehearsal has changed in one directory, and what it has found out about it.
struct RehearsedDirectory {
    std::shared_ptr<RehearsedDirectory> parent;              // null for the root
    std::string realPath;                                    // below the root; of a real directory
    std::unordered_set<std::string, FoldedNameHash> hidden;  // real entries that are gone
    std::unique_ptr<std::map<std::string, RehearsedEntry>> added;  // null: none
    dev_t volume = 0;
    std::uint64_t mount = 0;  // the number of the one that it was reached by
    std::uint32_t pathHash = 0;
    std::uint32_t number = 0;  // of one that was made, from 1; 0 for a real one
    std::uint32_t changes = 0;
    mode_t mode = 0;          // of one that was made
    DWORD attributes = 0;     // hidden and system, the same
    uid_t stickyOwner = 0;    // where isSticky
    int refusal = kNotAsked;  // the errno of every change in it, 0 for none
    bool isAppendOnly = false;
    bool takesBlock = false;  // as a directory of its volume does when it is empty
    bool isSticky = false;    // users may take away only what is theirs
    bool isKept = false;      // an index has it
    bool isRemoved = false;

    static constexpr int kNotAsked = -1;

    bool isReal() const { return number == 0; }
    // The entry that was made, or has moved here; null where there is none of that name.
    const RehearsedEntry* Added(std::string_view name) const;
    std::map<std::string, RehearsedEntry>& AddedEntries();
    std::string PathOf(std::string_view name) const;

    // A hidden entry whose name differs from this one in case alone; null where there is none.
    const std::string* HiddenInOtherCase(std::string_view name) const;
};

using RehearsedNode = std::shared_ptr<RehearsedDirectory>;

// An entry that was made, or has moved here.
struct RehearsedEntry {
    EntryFacts facts;
    // A directory's changes; the old directory of a file that has moved; null for one written.
    RehearsedNode node;
    // The content of a file that was written; the old name of one that has moved, null where it is
    // the same.
    std::unique_ptr<const std::string> text;

    bool isWritten() const { return node == nullptr; }
};

// The real directories in which something has changed, by their paths.
class ChangedDirectories {
  public:
    ChangedDirectories() = default;
    ~ChangedDirectories();
    ChangedDirectories(const ChangedDirectories&) = delete;
    ChangedDirectories& operator=(const ChangedDirectories&) = delete;

    void Keep(const RehearsedNode& node);
    void Forget(const RehearsedNode& node);

    // The one of exactly this path; null where there is none.
    const RehearsedNode* Find(std::uint32_t pathHash, std::string_view path) const;

    // Whether there may be one whose path differs from it in case alone.
    bool HasHash(std::uint32_t pathHash) const { return byHash_.contains(pathHash); }

    // Calls `matches` with each whose path may differ from this one in case alone, until it
    // returns true. Returns that one, null where there is none.
    template <typename Matches>
    RehearsedNode FindInOtherCase(std::uint32_t pathHash, Matches matches) const {
        const auto [first, last] = byHash_.equal_range(pathHash);
        for (auto each = first; each != last; ++each) {
            if (matches(*each->second)) {
                return each->second;
            }
        }
        return nullptr;
    }

  private:
    std::unordered_multimap<std::uint32_t, RehearsedNode> byHash_;
};

// The hash of a path, from that of the directory around it.
std::uint32_t PathHash(std::uint32_t around, std::string_view name);

}  // namespace platform
