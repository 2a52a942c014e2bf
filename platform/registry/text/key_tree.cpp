#include "platform/registry/text/key_tree.h"

#include <unistd.h>

#include <array>
#include <utility>

#include "platform/text/name_matching.h"

namespace platform {
namespace {

// Nearer to the first subkey than that it is quicker to count than to note the place.
constexpr std::size_t kFirstPlace = 16;

static_assert(sizeof(KeyNode) <= 40, "a file can name a key with two bytes");

}  // namespace

std::u16string FoldText(std::u16string_view text) {
    std::u16string folded(text);
    Fold(folded);
    return folded;
}

void Fold(std::u16string& text) {
    for (char16_t& unit : text) {
        unit = FoldUnit(unit);
    }
}

// The hash is another one in each run, so that no file can be made of names that share theirs.
KeyTree::KeyTree(TextEncoding encoding) : encoding_(encoding), slots_(16) {
    Append(KeyNode(0, {}, 0));
    std::array<std::uint64_t, 2> random = {0x9E3779B97F4A7C15, 0xD6E8FEB86659FD93};
    static_cast<void>(getentropy(random.data(), sizeof random));
    seed_ = random[0];
    factor_ = random[1] | 1U;
}

std::uint32_t KeyTree::Hash(KeyIndex parent, std::u16string_view foldedName) const {
    const auto mix = [this](std::uint64_t hash, std::uint64_t next) {
        hash = (hash ^ next) * factor_;
        return hash ^ hash >> 32;
    };
    std::uint64_t hash = mix(seed_, parent);
    for (const char16_t unit : foldedName) {
        hash = mix(hash, unit);
    }
    return static_cast<std::uint32_t>(hash);
}

bool KeyTree::Is(KeyIndex key, const Wanted& wanted) const {
    const KeyNode& candidate = (*this)[key];
    if (candidate.hashPart != wanted.hash >> 24 || candidate.parent != wanted.parent) {
        return false;
    }
    const std::string_view name = candidate.Name();
    if (name == wanted.name) {
        return true;
    }
    folded_.clear();
    DecodeText(encoding_, name, folded_);
    Fold(folded_);
    return folded_ == wanted.foldedName;
}

// The slot of the key, or the free one where it would be.
std::size_t KeyTree::FindSlot(const Wanted& wanted) const {
    const std::size_t mask = slots_.size() - 1;
    std::size_t slot = wanted.hash & mask;
    while (slots_[slot].key != 0 &&
           (slots_[slot].hash != wanted.hash || !Is(slots_[slot].key, wanted))) {
        slot = (slot + 1) & mask;
    }
    return slot;
}

KeyIndex KeyTree::FindChild(KeyIndex parent, std::u16string_view foldedName) const {
    const KeyIndex first = (*this)[parent].firstChild;
    if (first == 0) {
        return 0;
    }
    const Wanted wanted = {parent, foldedName, {}, Hash(parent, foldedName)};
    if (Is(first, wanted)) {
        return first;
    }
    const KeyIndex found = slots_[FindSlot(wanted)].key;
    return (*this)[found].removed ? 0 : found;
}

// Only subkeys that were not their parent's first one when they were added need the table: a deep
// path of new keys, of which a file can name millions, is a walk from neighbour to neighbour.
KeyIndex KeyTree::FindOrAddChild(KeyIndex parent, std::u16string_view foldedName,
                                 std::string_view name) {
    const Wanted wanted = {parent, foldedName, name, Hash(parent, foldedName)};
    const KeyIndex first = (*this)[parent].firstChild;
    if (first == 0) {
        return Add(wanted);
    }
    if (Is(first, wanted)) {
        return first;
    }
    Slot& slot = slots_[FindSlot(wanted)];
    if (slot.key != 0 && !(*this)[slot.key].removed) {
        return slot.key;
    }
    usedSlots_ += slot.key == 0 ? 1 : 0;
    const KeyIndex added = Add(wanted);
    slot = {wanted.hash, added};
    if (4 * usedSlots_ > 3 * slots_.size()) {
        GrowTable();
    }
    return added;
}

KeyIndex KeyTree::Add(const Wanted& wanted) {
    const auto hashPart = static_cast<std::uint8_t>(wanted.hash >> 24);
    const KeyIndex added = Append(KeyNode(wanted.parent, wanted.name, hashPart));
    KeyNode& parent = (*this)[wanted.parent];
    const KeyIndex previous = std::exchange(parent.lastChild, added);
    (previous != 0 ? (*this)[previous].next : parent.firstChild) = added;
    (*this)[added].previous = previous;
    return added;
}

KeyIndex KeyTree::Append(const KeyNode& key) {
    if (nextKey_ % kBlock == 0) {
        blocks_.emplace_back().reserve(kBlock);
    }
    blocks_.back().push_back(key);
    return nextKey_++;
}

void KeyTree::GrowTable() {
    const std::vector<Slot> old = std::exchange(slots_, std::vector<Slot>(2 * slots_.size()));
    const std::size_t mask = slots_.size() - 1;
    usedSlots_ = 0;
    for (const Slot& entry : old) {
        if (entry.key == 0 || (*this)[entry.key].removed) {
            continue;
        }
        std::size_t slot = entry.hash & mask;
        while (slots_[slot].key != 0) {
            slot = (slot + 1) & mask;
        }
        slots_[slot] = entry;
        ++usedSlots_;
    }
}

KeyTree::Place KeyTree::NearestPlace(KeyIndex parent, std::size_t index) const {
    const auto noted = places_.find(parent);
    const bool near = noted != places_.end() && noted->second.index / 2 <= index;
    return near ? noted->second : Place{(*this)[parent].firstChild, 0};
}

KeyIndex KeyTree::Child(KeyIndex parent, std::size_t index) const {
    Place place = NearestPlace(parent, index);
    for (; place.index > index; --place.index) {
        place.child = (*this)[place.child].previous;
    }
    for (; place.child != 0 && place.index < index; ++place.index) {
        place.child = (*this)[place.child].next;
    }
    if (place.child != 0 && index >= kFirstPlace) {
        places_[parent] = place;
    }
    return place.child;
}

void KeyTree::Unlink(KeyIndex key) {
    const KeyNode& gone = (*this)[key];
    KeyNode& parent = (*this)[gone.parent];
    (gone.previous != 0 ? (*this)[gone.previous].next : parent.firstChild) = gone.next;
    (gone.next != 0 ? (*this)[gone.next].previous : parent.lastChild) = gone.previous;
    const auto noted = places_.find(gone.parent);
    if (noted == places_.end()) {
        return;
    }
    // Later subkeys have higher numbers.
    Place& place = noted->second;
    place.index -= key < place.child ? 1 : 0;
    if (place.child == key) {
        place.child = gone.next;
    }
    if (place.child == 0) {
        places_.erase(noted);
    }
}

std::vector<KeyIndex> KeyTree::Remove(KeyIndex key) {
    Unlink(key);
    std::vector<KeyIndex> removed = {key};
    for (std::size_t done = 0; done < removed.size(); ++done) {
        KeyNode& gone = (*this)[removed[done]];
        gone.removed = true;
        for (KeyIndex child = gone.firstChild; child != 0; child = (*this)[child].next) {
            removed.push_back(child);
        }
    }
    return removed;
}

}  // namespace platform
