#include "platform/tree/rehearsed_directory.h"

#include <algorithm>
#include <utility>

#include "platform/text/name_matching.h"
#include "platform/text/name_translation.h"

namespace platform {

std::size_t FoldedNameHash::operator()(std::string_view name) const noexcept {
    return NameHash(DeviceNameOf(name).view());
}

std::uint32_t PathHash(std::uint32_t around, std::string_view name) {
    return around * 31 + NameHash(DeviceNameOf(name).view());
}

const RehearsedEntry* RehearsedDirectory::Added(std::string_view name) const {
    if (added == nullptr) {
        return nullptr;
    }
    const auto found = added->find(std::string(name));
    return found == added->end() ? nullptr : &found->second;
}

std::map<std::string, RehearsedEntry>& RehearsedDirectory::AddedEntries() {
    if (added == nullptr) {
        added = std::make_unique<std::map<std::string, RehearsedEntry>>();
    }
    return *added;
}

std::string RehearsedDirectory::PathOf(std::string_view name) const {
    return realPath.empty() ? std::string(name) : (realPath + '/').append(name);
}

const std::string* RehearsedDirectory::HiddenInOtherCase(std::string_view name) const {
    if (hidden.empty()) {
        return nullptr;
    }
    const DeviceName wanted = DeviceNameOf(name);
    const std::size_t bucket = hidden.bucket(std::string(name));
    const auto found =
        std::find_if(hidden.begin(bucket), hidden.end(bucket), [&](const std::string& each) {
            return SameName(DeviceNameOf(each).view(), wanted.view());
        });
    return found == hidden.end(bucket) ? nullptr : &*found;
}

namespace {

// NOLINTNEXTLINE(misc-no-recursion)
void ReleaseEntries(RehearsedDirectory& directory) {
    const auto entries = std::exchange(directory.added, nullptr);
    if (entries == nullptr) {
        return;
    }
    for (const auto& [name, entry] : *entries) {
        if (entry.facts.isDirectory()) {
            ReleaseEntries(*entry.node);
        }
    }
}

}  // namespace

// A directory and what is in it hold each other.
ChangedDirectories::~ChangedDirectories() {
    for (const auto& [hash, node] : byHash_) {
        ReleaseEntries(*node);
    }
}

void ChangedDirectories::Keep(const RehearsedNode& node) {
    byHash_.emplace(node->pathHash, node);
    node->isKept = true;
}

void ChangedDirectories::Forget(const RehearsedNode& node) {
    const auto [first, last] = byHash_.equal_range(node->pathHash);
    const auto found =
        std::find_if(first, last, [&](const auto& each) { return each.second == node; });
    if (found != last) {
        byHash_.erase(found);
    }
}

const RehearsedNode* ChangedDirectories::Find(std::uint32_t pathHash, std::string_view path) const {
    const auto [first, last] = byHash_.equal_range(pathHash);
    const auto found = std::find_if(
        first, last, [path](const auto& each) { return each.second->realPath == path; });
    return found == last ? nullptr : &found->second;
}

}  // namespace platform
