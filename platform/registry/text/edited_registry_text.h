#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "platform/diagnostics/failure.h"
#include "platform/registry/text/registry_model.h"

namespace platform {

enum class SetResult {
    kChanged,
    kUnchanged,  // the text already said so
    kUnfit,      // the file has no form for the name or the value; nothing was changed
};

// A registry as the text that registry editors export, with the changes that were made to it. What
// is not changed keeps its text byte for byte: comments, blanks, line ends, the form of its data. A
// changed value is written in its place, a new value at the end of its key, a key that had no text
// of its own at the end of the file; the lines of a deleted key go, those of its subkeys too.
class EditedRegistryText {
  public:
    explicit EditedRegistryText(RegistryModel content);

    // The registry of a file with these bytes; see ParseRegistry.
    static Result<EditedRegistryText> Parse(std::string bytes);

    // The key at a path that begins with the name of a root; 0 when there is none. The four roots
    // are always there. Keys keep their numbers; those of deleted keys are not used again.
    KeyIndex FindKey(std::u16string_view path) const;

    // The name of the subkey number `index` in the order of the file; nothing after the last one.
    std::optional<std::u16string> ChildName(KeyIndex key, std::size_t index) const;

    // The value of that name, the empty one for the unnamed value; nothing when there is none,
    // which is also so where a symbol stands in place of its data. The time is in proportion to the
    // values of the key.
    std::optional<RegistryData> Value(KeyIndex key, std::u16string_view name) const;

    // Makes or replaces a value of a key that is there.
    SetResult SetValue(KeyIndex key, std::u16string_view name, std::uint32_t type,
                       std::span<const std::uint8_t> bytes);

    // Deletes a key that is there, with all its subkeys. A root cannot be deleted.
    void DeleteKey(KeyIndex key);

    // The file's bytes with all changes.
    std::string Serialize() const;

  private:
    struct AddedValue {
        SectionIndex section = 0;
        ValueIndex value = 0;
    };

    // New text for `length` bytes of the file; where nothing is replaced, whole lines.
    struct Edit {
        std::size_t begin = 0;
        std::size_t length = 0;
        std::string text;
    };

    ValueIndex FindValue(KeyIndex key, std::u16string_view name) const;
    std::optional<RegistryData> ReadValue(std::string_view data) const;
    bool AddNewValue(KeyIndex key, std::u16string_view name, std::string_view data);

    std::vector<Edit> Edits() const;
    void AppendNewSections(std::string& text) const;
    void KeepEncoding(std::string& text) const;
    std::string KeyLine(KeyIndex key) const;
    std::string ValueLine(ValueIndex value) const;
    bool EndsLine(std::string_view text) const;

    RegistryModel content_;

    // From these numbers on, values and sections are not in the file's bytes.
    std::size_t firstNewValue_ = 0;
    std::size_t firstNewSection_ = 0;
    std::map<ValueIndex, std::string_view> changed_;  // what the data was in the file
    std::vector<AddedValue> added_;
};

}  // namespace platform
