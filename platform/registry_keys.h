#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace platform {

// Numbers of keys, of values and of the stretches of a file that belong to one key. 0 is none.
using KeyIndex = std::uint32_t;
using ValueIndex = std::uint32_t;
using SectionIndex = std::uint32_t;

// One key. Relatives and belongings are 0 where there are none.
struct RegistryKey {
    std::string_view name;                      // in the file's encoding, owned elsewhere
    const std::u16string* lookupKey = nullptr;  // where the tree finds the key
    KeyIndex parent = 0;
    KeyIndex firstChild = 0;
    KeyIndex lastChild = 0;
    KeyIndex previous = 0;
    KeyIndex next = 0;
    ValueIndex firstValue = 0;
    ValueIndex lastValue = 0;
    SectionIndex lastSection = 0;
};

// The keys of a registry as a tree, the subkeys of each key in the order in which they were added.
// The parent of the roots is key 0. The number of a deleted key is not used again.
class RegistryKeys {
  public:
    RegistryKeys() : keys_(1) {}

    // Makes room for so many keys, which spares the growing.
    void Reserve(std::size_t count);

    RegistryKey& operator[](KeyIndex key) { return keys_[key]; }
    const RegistryKey& operator[](KeyIndex key) const { return keys_[key]; }

    // The subkey with that name, folded to the case that all names are compared in; 0 if there is
    // none.
    KeyIndex FindChild(KeyIndex parent, std::u16string_view foldedName) const;

    // The subkey with that name, added behind the others if there is none. `name` must live as long
    // as the tree.
    KeyIndex FindOrAddChild(KeyIndex parent, std::u16string_view foldedName, std::string_view name);

    // The subkey number `index`, counted from 0; 0 behind the last one. Asking for neighbours one
    // after the other is quick however many there are.
    KeyIndex Child(KeyIndex parent, std::size_t index) const;

    // Takes the key and its whole subtree out of the tree and returns their numbers, `key` first.
    std::vector<KeyIndex> Remove(KeyIndex key);

  private:
    struct Hash {
        using is_transparent = void;
        std::size_t operator()(std::u16string_view text) const {
            return std::hash<std::u16string_view>()(text);
        }
    };

    // The last answer of Child(), from which the next one is reached in a step.
    struct Place {
        KeyIndex child = 0;
        std::size_t index = 0;
    };

    const std::u16string& LookupKey(KeyIndex parent, std::u16string_view foldedName) const;
    void Unlink(KeyIndex key);

    std::vector<RegistryKey> keys_;
    std::unordered_map<std::u16string, KeyIndex, Hash, std::equal_to<>> byName_;
    mutable std::u16string lookupKey_;
    mutable Place place_;
};

}  // namespace platform
