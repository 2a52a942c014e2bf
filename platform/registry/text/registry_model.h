#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "platform/registry/text/key_tree.h"
#include "platform/registry/text/statement_syntax.h"
#include "platform/registry/text/value_data_format.h"

namespace platform {

// No registry has longer names; a damaged file must not make them either.
inline constexpr std::size_t kRegistryNameLimit = 255;

// A registry file: its bytes, and where each key and value stands in them. What is added later has
// texts of its own.
struct RegistryModel {
    // A position in the file's bytes, of which there are fewer than 4 GiB.
    using Offset = std::uint32_t;

    struct Value {
        std::string_view name;  // what stands between its quotes; empty for the unnamed value
        std::string_view data;
        ValueIndex previous = 0;  // of the same key
    };

    // A key's line and the values under it. A section that is new has no positions.
    struct Section {
        KeyIndex key = 0;
        SectionIndex previous = 0;  // of the same key
        Offset begin = 0;
        Offset valuesEnd = 0;
        Offset end = 0;  // of the blank lines that follow
        bool removed = false;
    };

    // Without keys; the statements of the file are still to be read.
    RegistryModel(std::string fileBytes, const FileEncoding& encoding);

    // Add to a key that is there.
    SectionIndex AddSection(const Section& section);
    ValueIndex AddValue(KeyIndex key, const Value& value);

    // Adds the roots that are not there; a deleted one comes back empty.
    void AddRoots();

    // Keeps a text for as long as the object lives.
    std::string_view Own(std::string text);

    // The bytes of a text that the file's encoding can hold.
    std::string Spell(std::u16string_view text) const;

    // Where a part of the file's bytes begins and ends.
    Offset BeginOf(std::string_view part) const;
    Offset EndOf(std::string_view part) const;

    std::unique_ptr<const std::string> bytes;  // never moves: views of it are kept
    RegistryForm form;
    std::size_t textBegin = 0;  // after the byte order mark
    KeyTree keys;
    std::array<KeyIndex, 4> roots{};
    std::vector<Value> values;      // number 0 is none
    std::vector<Section> sections;  // number 0 is none
    std::deque<std::string> owned;  // texts that values, names and keys view
};

}  // namespace platform
