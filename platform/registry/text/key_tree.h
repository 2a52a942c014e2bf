#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "platform/text/text_encoding.h"

namespace platform {

// Numbers of keys, of values and of the stretches of a file that belong to one key. 0 is none.
using KeyIndex = std::uint32_t;
using ValueIndex = std::uint32_t;
using SectionIndex = std::uint32_t;

// One key. Relatives and belongings are 0 where there are none. A file can name a key with two
// bytes, so that each field counts.
struct KeyNode {
    // A key without relatives. `name`, in the file's encoding and of less than 64 KiB, must live as
    // long as the key.
    KeyNode(KeyIndex parentKey, std::string_view name, std::uint8_t hash)
        : parent(parentKey), hashPart(hash), nameSize_(static_cast<std::uint16_t>(name.size())) {
        if (name.size() <= shortName_.size()) {
            std::copy(name.begin(), name.end(), shortName_.begin());
        } else {
            longName_ = name.data();
        }
    }

    // Lives as long as the key stays where it is.
    std::string_view Name() const {
        return {nameSize_ <= shortName_.size() ? shortName_.data() : longName_, nameSize_};
    }

    KeyIndex parent;
    KeyIndex firstChild = 0;
    KeyIndex lastChild = 0;
    KeyIndex previous = 0;
    KeyIndex next = 0;
    ValueIndex lastValue = 0;
    SectionIndex lastSection = 0;
    std::uint8_t hashPart;  // of the folded name, so that few others are compared with it
    bool removed = false;

  private:
    std::uint16_t nameSize_;
    // Keys are met in any order: looking for their short names in the file, too, would cost a
    // quarter of the time that a large one takes.
    union {
        std::array<char, sizeof(const char*)> shortName_{};
        const char* longName_;
    };
};

// Turns every unit of a name or a path to the case in which names are compared.
std::u16string FoldText(std::u16string_view text);
void Fold(std::u16string& text);

// The keys of a registry as a tree, the subkeys of each key in the order in which they were added.
// The parent of the roots is key 0. The number of a deleted key is not used again. Finding and
// adding a subkey takes the same time however many there are.
class KeyTree {
  public:
    // A tree without keys, whose names come in that encoding.
    explicit KeyTree(TextEncoding encoding);

    // Keys stay where they are.
    KeyNode& operator[](KeyIndex key) { return blocks_[key / kBlock][key % kBlock]; }
    const KeyNode& operator[](KeyIndex key) const { return blocks_[key / kBlock][key % kBlock]; }

    // The subkey with that name, folded to the case that all names are compared in; 0 if there is
    // none.
    KeyIndex FindChild(KeyIndex parent, std::u16string_view foldedName) const;

    // The subkey with that name, added after the others if there is none. `name`, of less than
    // 64 KiB, must live as long as the tree.
    KeyIndex FindOrAddChild(KeyIndex parent, std::u16string_view foldedName, std::string_view name);

    // The subkey number `index`, counted from 0; 0 after the last one. Asking for neighbours one
    // after the other is quick however many there are, also when other keys are asked about or
    // subkeys are deleted in between.
    KeyIndex Child(KeyIndex parent, std::size_t index) const;

    // Takes the key and its whole subtree out of the tree and returns their numbers, `key` first.
    std::vector<KeyIndex> Remove(KeyIndex key);

  private:
    static constexpr std::size_t kBlock = 4096;

    // What a key is looked up by.
    struct Wanted {
        KeyIndex parent = 0;
        std::u16string_view foldedName;
        std::string_view name;  // in the file's encoding; empty where that is not known
        std::uint32_t hash = 0;
    };

    // A place of the table of subkeys; free where its key is 0.
    struct Slot {
        std::uint32_t hash = 0;
        KeyIndex key = 0;
    };

    // An answer of Child(), from which its neighbours are reached in a step.
    struct Place {
        KeyIndex child = 0;
        std::size_t index = 0;
    };

    std::uint32_t Hash(KeyIndex parent, std::u16string_view foldedName) const;
    bool Is(KeyIndex key, const Wanted& wanted) const;
    std::size_t FindSlot(const Wanted& wanted) const;
    KeyIndex Add(const Wanted& wanted);
    KeyIndex Append(const KeyNode& key);
    void GrowTable();
    Place NearestPlace(KeyIndex parent, std::size_t index) const;
    void Unlink(KeyIndex key);

    TextEncoding encoding_;
    std::uint64_t seed_ = 0;
    std::uint64_t factor_ = 0;
    std::vector<std::vector<KeyNode>> blocks_;  // grows without a second copy of the keys
    KeyIndex nextKey_ = 0;
    std::vector<Slot> slots_;  // a power of two
    std::size_t usedSlots_ = 0;
    mutable std::u16string folded_;
    mutable std::unordered_map<KeyIndex, Place> places_;  // by parent
};

}  // namespace platform
