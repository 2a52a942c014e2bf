#include "platform/filled_directories.h"

#include <algorithm>
#include <cerrno>

#include "platform/directory_reader.h"
#include "platform/spellings.h"

namespace platform {

void NameSet::Put(std::uint32_t hash) {
    std::size_t slot = hash & (slots_.size() - 1);
    while (slots_[slot] != 0 && slots_[slot] != hash) {
        slot = (slot + 1) & (slots_.size() - 1);
    }
    count_ += slots_[slot] == 0 ? 1 : 0;
    slots_[slot] = hash;
}

void NameSet::Add(std::u16string_view name) {
    if (4 * count_ >= 3 * slots_.size()) {
        const std::vector<std::uint32_t> old = std::exchange(
            slots_, std::vector<std::uint32_t>(std::max<std::size_t>(16, 2 * slots_.size())));
        count_ = 0;
        for (const std::uint32_t hash : old) {
            if (hash != 0) {
                Put(hash);
            }
        }
    }
    Put(NameHash(name) | 1);
}

bool NameSet::MayHold(std::u16string_view name) const {
    if (slots_.empty()) {
        return false;
    }
    const std::uint32_t hash = NameHash(name) | 1;
    std::size_t slot = hash & (slots_.size() - 1);
    while (slots_[slot] != 0 && slots_[slot] != hash) {
        slot = (slot + 1) & (slots_.size() - 1);
    }
    return slots_[slot] == hash;
}

std::optional<HostName> FilledDirectory::Existing(std::u16string_view device,
                                                  const HostName& host) const {
    if (!names.MayHold(device)) {
        return std::nullopt;
    }
    if (FactsOf(descriptor.get(), host.c_str())) {
        return host;
    }
    return FindSpelling(descriptor.get(), device);
}

FilledDirectory* FilledDirectories::Get(const DeviceTree& tree, std::u16string_view path) {
    // Whatever is not on the way to this directory is finished.
    while (!filled_.empty() && !path.starts_with(filled_.back().path)) {
        filled_.pop_back();
    }
    if (!filled_.empty() && filled_.back().path == path) {
        return &filled_.back();
    }
    FilledDirectory opened{
        std::u16string(path), tree.OpenDirectory(path, OpenFor::Reading).descriptor, {}};
    if (!opened.descriptor) {
        return nullptr;
    }
    DirectoryReader reader;
    while (reader.Next(opened.descriptor.get())) {
        opened.names.Add(DeviceNameOf(reader.entry().name).view());
    }
    filled_.push_back(std::move(opened));
    return &filled_.back();
}

}  // namespace platform
