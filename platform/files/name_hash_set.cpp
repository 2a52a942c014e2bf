#include "platform/files/name_hash_set.h"

#include <algorithm>
#include <utility>

#include "platform/text/name_matching.h"

namespace platform {

void NameHashSet::Put(std::uint32_t hash) {
    std::size_t slot = hash & (slots_.size() - 1);
    while (slots_[slot] != 0 && slots_[slot] != hash) {
        slot = (slot + 1) & (slots_.size() - 1);
    }
    count_ += slots_[slot] == 0 ? 1 : 0;
    slots_[slot] = hash;
}

void NameHashSet::Add(std::u16string_view name) {
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

bool NameHashSet::MayHold(std::u16string_view name) const {
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

}  // namespace platform
