#include "platform/registry_keys.h"

namespace platform {

void RegistryKeys::Reserve(std::size_t count) {
    keys_.reserve(count);
    byName_.reserve(count);
}

// A name is found together with its parent's number, so that no path is stored for each key of it.
const std::u16string& RegistryKeys::LookupKey(KeyIndex parent,
                                              std::u16string_view foldedName) const {
    lookupKey_.clear();
    lookupKey_ += static_cast<char16_t>(parent & 0xFFFFU);
    lookupKey_ += static_cast<char16_t>(parent >> 16);
    lookupKey_ += foldedName;
    return lookupKey_;
}

KeyIndex RegistryKeys::FindChild(KeyIndex parent, std::u16string_view foldedName) const {
    const auto found = byName_.find(LookupKey(parent, foldedName));
    return found == byName_.end() ? 0 : found->second;
}

KeyIndex RegistryKeys::FindOrAddChild(KeyIndex parent, std::u16string_view foldedName,
                                      std::string_view name) {
    const auto added = static_cast<KeyIndex>(keys_.size());
    const auto [entry, isNew] = byName_.try_emplace(LookupKey(parent, foldedName), added);
    if (!isNew) {
        return entry->second;
    }
    RegistryKey key;
    key.name = name;
    key.lookupKey = &entry->first;
    key.parent = parent;
    key.previous = keys_[parent].lastChild;
    (key.previous != 0 ? keys_[key.previous].next : keys_[parent].firstChild) = added;
    keys_[parent].lastChild = added;
    keys_.push_back(key);
    return added;
}

KeyIndex RegistryKeys::Child(KeyIndex parent, std::size_t index) const {
    Place place{keys_[parent].firstChild, 0};
    if (place_.child != 0 && keys_[place_.child].parent == parent && place_.index <= index) {
        place = place_;
    }
    for (; place.child != 0 && place.index < index; ++place.index) {
        place.child = keys_[place.child].next;
    }
    if (place.child != 0) {
        place_ = place;
    }
    return place.child;
}

void RegistryKeys::Unlink(KeyIndex key) {
    const RegistryKey& gone = keys_[key];
    // Whoever deletes the subkey that was asked for last goes on from the one that moved up.
    place_.child = place_.child == key ? gone.next : 0;
    RegistryKey& parent = keys_[gone.parent];
    (gone.previous != 0 ? keys_[gone.previous].next : parent.firstChild) = gone.next;
    (gone.next != 0 ? keys_[gone.next].previous : parent.lastChild) = gone.previous;
}

std::vector<KeyIndex> RegistryKeys::Remove(KeyIndex key) {
    Unlink(key);
    std::vector<KeyIndex> removed = {key};
    for (std::size_t done = 0; done < removed.size(); ++done) {
        const RegistryKey gone = keys_[removed[done]];
        byName_.erase(byName_.find(*gone.lookupKey));
        for (KeyIndex child = gone.firstChild; child != 0; child = keys_[child].next) {
            removed.push_back(child);
        }
    }
    return removed;
}

}  // namespace platform
