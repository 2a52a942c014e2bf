#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "core/file_operations.h"
#include "platform/files/path_resolver.h"

namespace platform {

// A search that walks a directory. What it knows of the entry it stands on spares the operations on
// that entry from asking again.
class Search {
  public:
    // `path` is the directory's as the caller spelt it, backslash included.
    Search(std::u16string_view path, std::u16string_view pattern, OpenedDirectory directory,
           const FileTree& tree)
        : path_(path),
          pattern_(pattern),
          directory_(std::move(directory)),
          listing_(tree.List(directory_)) {}

    // Moves to the next entry that matches and puts it into `data`. False at the end.
    Result<bool> Next(const PathResolver& tree, WIN32_FIND_DATA& data);

    std::u16string_view path() const { return path_; }
    const OpenedDirectory& directory() const { return directory_; }

    // What is known of the entry with this host name: something only if the search stands on it.
    std::optional<EntryFacts> FactsIfCurrent(std::string_view host) const;

    // The open directory that the search stands on, once, if it has this host name.
    std::optional<OpenedDirectory> TakeSubdirectory(std::string_view host);

  private:
    bool Examine(const PathResolver& tree, WIN32_FIND_DATA& data);
    std::optional<EntryFacts> LookAt(const FileTree& tree, const DirectoryReader::Entry& entry);

    std::u16string path_;
    std::u16string pattern_;
    OpenedDirectory directory_;
    std::optional<OpenedDirectory> subdirectory_;
    std::optional<EntryFacts> facts_;
    std::unique_ptr<DirectoryListing> listing_;
};

// The open searches, innermost last.
class OpenSearches {
  public:
    // `search` is null for a search of one entry, which ends after it. Handles are never reused.
    HANDLE Add(std::unique_ptr<Search> search);
    bool Remove(HANDLE handle);

    bool IsOpen(HANDLE handle) const { return Find(handle) != open_.end(); }
    Search* Get(HANDLE handle) const;  // null: not open, or of one entry
    Search* InDirectory(
        std::u16string_view path) const;  // the innermost with this spelling, or null
    bool empty() const { return open_.empty(); }

  private:
    struct OpenSearch {
        std::uintptr_t number;
        std::unique_ptr<Search> search;
    };

    std::vector<OpenSearch>::const_iterator Find(HANDLE handle) const;

    std::vector<OpenSearch> open_;
    std::uintptr_t lastNumber_ = 0;
};

// Fills the record of one entry. `attributes` are those beside directory and read-only.
void PutFindData(std::u16string_view name, const EntryFacts& facts, DWORD attributes,
                 WIN32_FIND_DATA& data);

}  // namespace platform
