#include "platform/files/moved_directory_attributes.h"

#include <algorithm>
#include <cerrno>
#include <iterator>
#include <utility>

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
    const Result<struct stat> status =
        old ? tree.tree().StatusOf(*old, "") : Fail("look at", ENOENT);
    pair.known = status.has_value();
    pair.old = status.value_or(pair.old);
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
    tree.tree().CopyDirectoryAttributes(*old, pair.old, *made);
}

}  // namespace platform
