#include "platform/files/open_searches.h"

#include <dirent.h>
#include <sys/stat.h>

#include <algorithm>
#include <utility>

#include "platform/text/name_matching.h"

namespace platform {

Result<bool> Search::Next(const PathResolver& tree, WIN32_FIND_DATA& data) {
    for (;;) {
        subdirectory_.reset();
        facts_.reset();
        Result<bool> more = listing_->Next();
        if (!more || !*more || Examine(tree, data)) {
            return more;
        }
    }
}

// Nothing for an entry that has vanished meanwhile. One that cannot be looked at is listed all the
// same, as what the directory says it is, so that whoever works on it meets the failure.
std::optional<EntryFacts> Search::LookAt(const FileTree& tree,
                                         const DirectoryReader::Entry& entry) {
    if (entry.type == DT_DIR) {
        return facts_ = EntryFacts{S_IFDIR};
    }
    const Result<EntryFacts> facts = tree.FactsOf(directory(), entry.name);
    if (facts) {
        return facts_ = *facts;
    }
    const EntryFacts unknown{static_cast<mode_t>(DTTOIF(entry.type) | S_IWUSR)};
    return facts.error().error == ENOENT ? std::nullopt : std::optional(unknown);
}

// Returns false for an entry that does not match, and for one that has vanished meanwhile.
bool Search::Examine(const PathResolver& tree, WIN32_FIND_DATA& data) {
    const DirectoryReader::Entry& entry = listing_->entry();
    const DeviceName name = DeviceNameOf(entry.name);
    if (name.view().empty() || (pattern_ != u"*" && !MatchesPattern(pattern_, name.view()))) {
        return false;
    }
    const std::optional<EntryFacts> facts = LookAt(tree.tree(), entry);
    if (!facts) {
        return false;
    }
    DWORD attributes = 0;
    if (facts->isDirectory()) {
        // Whoever is shown a directory mostly walks it next, and its attributes have to be read
        // from it opened in any case.
        Result<OpenedDirectory> opened =
            tree.OpenSubdirectory(directory(), entry.name, OpenFor::Reading);
        if (opened) {
            attributes = tree.tree().HiddenAndSystem(*opened);
            subdirectory_ = std::move(*opened);
        }
    }
    PutFindData(name.view(), *facts, attributes, data);
    return true;
}

std::optional<EntryFacts> Search::FactsIfCurrent(std::string_view host) const {
    return facts_ && host == listing_->entry().name ? facts_ : std::nullopt;
}

std::optional<OpenedDirectory> Search::TakeSubdirectory(std::string_view host) {
    return host == listing_->entry().name ? std::exchange(subdirectory_, std::nullopt)
                                          : std::nullopt;
}

HANDLE OpenSearches::Add(std::unique_ptr<Search> search) {
    open_.push_back({++lastNumber_, std::move(search)});
    return reinterpret_cast<HANDLE>(lastNumber_);  // NOLINT(performance-no-int-to-ptr)
}

// The innermost search is used most, so it is looked for first.
std::vector<OpenSearches::OpenSearch>::const_iterator OpenSearches::Find(HANDLE handle) const {
    const auto number = reinterpret_cast<std::uintptr_t>(handle);
    const auto found = std::find_if(open_.rbegin(), open_.rend(), [number](const OpenSearch& open) {
        return open.number == number;
    });
    return found == open_.rend() ? open_.end() : std::prev(found.base());
}

bool OpenSearches::Remove(HANDLE handle) {
    const auto found = Find(handle);
    if (found == open_.end()) {
        return false;
    }
    open_.erase(found);
    return true;
}

Search* OpenSearches::Get(HANDLE handle) const {
    const auto found = Find(handle);
    return found == open_.end() ? nullptr : found->search.get();
}

Search* OpenSearches::InDirectory(std::u16string_view path) const {
    const auto found = std::find_if(open_.rbegin(), open_.rend(), [path](const OpenSearch& open) {
        return open.search != nullptr && open.search->path() == path;
    });
    return found == open_.rend() ? nullptr : found->search.get();
}

void PutFindData(std::u16string_view name, const EntryFacts& facts, DWORD attributes,
                 WIN32_FIND_DATA& data) {
    data.dwFileAttributes = attributes | (facts.isDirectory() ? FILE_ATTRIBUTE_DIRECTORY : 0) |
                            (facts.isReadOnly() ? FILE_ATTRIBUTE_READONLY : 0);
    if (data.dwFileAttributes == 0) {
        data.dwFileAttributes = FILE_ATTRIBUTE_NORMAL;
    }
    data.nFileSizeHigh = static_cast<DWORD>(facts.size >> 32);
    data.nFileSizeLow = static_cast<DWORD>(facts.size);
    *std::copy(name.begin(), name.end(), data.cFileName) = 0;
}

}  // namespace platform
