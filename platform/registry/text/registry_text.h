#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <map>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "platform/diagnostics/failure.h"
#include "platform/registry/text/key_tree.h"
#include "platform/registry/text/statement_reader.h"
#include "platform/registry/text/value_data.h"

namespace platform {

// The largest file that is read, in bytes; real ones have a few million.
inline constexpr std::size_t kRegistryTextLimit = std::size_t{256} << 20;

enum class SetResult {
    kChanged,
    kUnchanged,  // the text already said so
    kUnfit,      // the file has no form for the name or the value; nothing was changed
};

// A registry as the text that registry editors export, with the changes that were made to it. What
// is not changed keeps its text byte for byte: comments, blanks, line ends, the form of its data. A
// changed value is written in its place, a new value at the end of its key, a key that had no text
// of its own at the end of the file; the lines of a deleted key go, those of its subkeys too.
class RegistryText {
  public:
    // A registry without keys, which begins a file of the usual form: with a header, in UTF-16.
    RegistryText();

    // The registry of a file with these bytes; one without keys when there are no bytes. Fails when
    // they are no registry file; the failure's object is the line: "registry.reg, line 3". The time
    // is in proportion to the bytes, and the memory at most 40 times as much as they take.
    static Result<RegistryText> Parse(std::string bytes);

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
    struct ValueText {
        std::string_view name;  // what stands between its quotes; empty for the unnamed value
        std::string_view data;
        ValueIndex previous = 0;  // of the same key
    };

    // A position in the file's bytes, which are no more than kRegistryTextLimit.
    using Offset = std::uint32_t;

    // A key's line and the values under it. A section that is new has no positions.
    struct Section {
        KeyIndex key = 0;
        SectionIndex previous = 0;  // of the same key
        Offset begin = 0;
        Offset valuesEnd = 0;
        Offset end = 0;  // of the blank lines that follow
        bool removed = false;
    };

    struct AddedValue {
        SectionIndex section = 0;
        ValueIndex value = 0;
    };

    // A name of the path that was read last.
    struct Level {
        std::string_view name;
        KeyIndex key = 0;
    };

    // New text for `length` bytes of the file; where nothing is replaced, whole lines.
    struct Edit {
        std::size_t begin = 0;
        std::size_t length = 0;
        std::string text;
    };

    RegistryText(std::string bytes, const FileEncoding& encoding);

    Status Read();
    Status ReadStatements(RegistryScanner& scanner);
    Status Apply(const RegistryStatement& statement);
    void ApplyBlankLine(const RegistryStatement& statement);
    Status ApplyKey(const RegistryStatement& statement);
    Status ApplyDeletedKey(const RegistryStatement& statement);
    Status ApplyValue(const RegistryStatement& statement);
    void AddRoots();
    Result<KeyIndex> FindPath(std::string_view path, bool add);
    Status FindLevel(std::string_view name, bool add);

    SectionIndex AddSection(const Section& section);
    ValueIndex AddValue(KeyIndex key, const ValueText& value);
    ValueIndex FindValue(KeyIndex key, std::u16string_view name) const;
    std::optional<RegistryData> ReadValue(std::string_view data) const;
    bool AddNewValue(KeyIndex key, std::u16string_view name, std::string_view data);
    std::string_view Own(std::string text);
    Offset BeginOf(std::string_view part) const;
    Offset EndOf(std::string_view part) const;

    std::vector<Edit> Edits() const;
    void AppendNewSections(std::string& text) const;
    void KeepEncoding(std::string& text) const;
    std::string KeyLine(KeyIndex key) const;
    std::string ValueLine(ValueIndex value) const;
    std::string Spell(std::u16string_view text) const;
    bool EndsLine(std::string_view text) const;

    std::unique_ptr<const std::string> bytes_;  // never moves: views of it are kept
    RegistryForm form_;
    std::size_t textBegin_ = 0;  // after the byte order mark
    KeyTree keys_;
    std::array<KeyIndex, 4> roots_{};
    std::vector<ValueText> values_;
    std::vector<Section> sections_;
    SectionIndex currentSection_ = 0;
    std::vector<Level> path_;
    std::u16string folded_;  // the name that was looked up last

    // From these numbers on, values and sections are not in the file's bytes.
    std::size_t firstNewValue_ = 0;
    std::size_t firstNewSection_ = 0;
    std::map<ValueIndex, std::string_view> changed_;  // what the data was in the file
    std::vector<AddedValue> added_;
    std::deque<std::string> owned_;  // texts that values, names and keys view
};

}  // namespace platform
