#include "platform/files/moved_directory_attributes.h"

#include <algorithm>
#include <array>
#include <iterator>
#include <utility>

#include "platform/io/attribute_copy.h"

namespace platform {

namespace {

constexpr mode_t kUsualMode = 0777;

}  // namespace

void MovedDirectoryAttributes::Begin(const PathResolver& tree, std::u16string_view oldPath,
                                     std::u16string_view newPath) {
    Pair pair;
    pair.oldPath = oldPath;
    pair.newPath = newPath;
    const Result<OpenedDirectory> old = tree.OpenDirectory(oldPath, OpenFor::Reaching);
    pair.known = old && fstat(old->descriptor.get(), &pair.old) == 0;
    pairs_.push_back(std::move(pair));
}

mode_t MovedDirectoryAttributes::ModeFor(std::u16string_view path) const {
    return pairs_.empty() || pairs_.back().newPath != path ? kUsualMode : S_IRWXU;
}

void MovedDirectoryAttributes::Made(std::u16string_view path) {
    if (!pairs_.empty() && pairs_.back().newPath == path) {
        pairs_.back().made = true;
    }
}

// What is further in and never ended was given up before anything moved into it.
void MovedDirectoryAttributes::End(const PathResolver& tree, std::u16string_view oldPath) {
    const auto found = std::find_if(pairs_.rbegin(), pairs_.rend(), [oldPath](const Pair& pair) {
        return pair.oldPath == oldPath;
    });
    if (found == pairs_.rend()) {
        return;
    }
    const Pair pair = std::move(*found);
    pairs_.erase(std::prev(found.base()), pairs_.end());
    if (!pair.made || !pair.known) {
        return;
    }
    const Result<OpenedDirectory> old = tree.OpenDirectory(oldPath, OpenFor::Reading);
    const Result<OpenedDirectory> made = tree.OpenDirectory(pair.newPath, OpenFor::Reading);
    if (!old || !made) {
        return;
    }
    const int directory = made->descriptor.get();
    CopyUserAttributes(old->descriptor.get(), directory);
    ApplyModeAndOwner(directory, pair.old);
    const std::array<timespec, 2> times = {pair.old.st_atim, pair.old.st_mtim};
    futimens(directory, times.data());
}

}  // namespace platform
