#include "platform/registry/text/edited_registry_text.h"

#include <algorithm>
#include <utility>

#include "platform/registry/text/registry_parser.h"

namespace platform {

EditedRegistryText::EditedRegistryText(RegistryModel content)
    : content_(std::move(content)),
      firstNewValue_(content_.values.size()),
      firstNewSection_(content_.sections.size()) {}

Result<EditedRegistryText> EditedRegistryText::Parse(std::string bytes) {
    return ParseRegistry(std::move(bytes)).map([](RegistryModel&& content) {
        return EditedRegistryText(std::move(content));
    });
}

KeyIndex EditedRegistryText::FindKey(std::u16string_view path) const {
    const std::u16string folded = FoldText(path);
    KeyIndex key = 0;
    for (std::size_t begin = 0; begin < folded.size();) {
        const std::size_t end = std::min(folded.find(u'\\', begin), folded.size());
        if (end > begin) {
            key = content_.keys.FindChild(key,
                                          std::u16string_view(folded).substr(begin, end - begin));
            if (key == 0) {
                return 0;
            }
        }
        begin = end + 1;
    }
    return key;
}

std::optional<std::u16string> EditedRegistryText::ChildName(KeyIndex key, std::size_t index) const {
    const KeyIndex child = content_.keys.Child(key, index);
    if (child == 0) {
        return std::nullopt;
    }
    std::u16string name;
    DecodeText(content_.form.encoding, content_.keys[child].Name(), name);
    return name;
}

// A key may name a value several times; the last line counts.
ValueIndex EditedRegistryText::FindValue(KeyIndex key, std::u16string_view name) const {
    // Keys have few values, and a file has very many: names kept folded would double its memory.
    const std::u16string folded = FoldText(name);
    std::u16string other;
    for (ValueIndex value = content_.keys[key].lastValue; value != 0;
         value = content_.values[value].previous) {
        other.clear();
        DecodeQuoted(content_.form.encoding, content_.values[value].name, other);
        Fold(other);
        if (other == folded) {
            return value;
        }
    }
    return 0;
}

std::optional<RegistryData> EditedRegistryText::ReadValue(std::string_view data) const {
    RegistryScanner scanner(TextUnits(content_.form.encoding, data));
    RegistryData value;
    const Result<DataState> state = ReadData(scanner, content_.form, &value);
    return state == DataState::kValue ? std::optional(std::move(value)) : std::nullopt;
}

std::optional<RegistryData> EditedRegistryText::Value(KeyIndex key,
                                                      std::u16string_view name) const {
    const ValueIndex value = FindValue(key, name);
    return value == 0 ? std::nullopt : ReadValue(content_.values[value].data);
}

SetResult EditedRegistryText::SetValue(KeyIndex key, std::u16string_view name, std::uint32_t type,
                                       std::span<const std::uint8_t> bytes) {
    std::optional<std::string> data = FormatData(content_.form, type, bytes);
    if (!data) {
        return SetResult::kUnfit;
    }
    const ValueIndex value = FindValue(key, name);
    if (value == 0) {
        return AddNewValue(key, name, *data) ? SetResult::kChanged : SetResult::kUnfit;
    }
    if (ReadValue(content_.values[value].data) == ReadValue(*data)) {
        return SetResult::kUnchanged;
    }
    // What the file says has to be known until the end: there the new text takes its place.
    if (value < firstNewValue_) {
        changed_.emplace(value, content_.values[value].data);
    }
    content_.values[value].data = content_.Own(std::move(*data));
    return SetResult::kChanged;
}

bool EditedRegistryText::AddNewValue(KeyIndex key, std::u16string_view name,
                                     std::string_view data) {
    static constexpr std::u16string_view kUnfit(u"\0\r\n", 3);
    const std::optional<std::string> quoted = FormatQuoted(content_.form.encoding, name);
    if (!quoted || name.size() > kRegistryNameLimit || name.find_first_of(kUnfit) != name.npos) {
        return false;
    }
    const std::size_t quote = content_.Spell(u"\"").size();
    const std::string_view owned = content_.Own(*quoted);
    // A key that the file names only as a part of longer paths has no line to stand under.
    if (content_.keys[key].lastSection == 0) {
        content_.AddSection({.key = key});
    }
    const ValueIndex value = content_.AddValue(
        key, {owned.substr(quote, owned.size() - 2 * quote), content_.Own(std::string(data)), 0});
    added_.push_back({content_.keys[key].lastSection, value});
    return true;
}

void EditedRegistryText::DeleteKey(KeyIndex key) {
    const KeyIndex parent = content_.keys[key].parent;
    for (const KeyIndex removed : content_.keys.Remove(key)) {
        SectionIndex section = content_.keys[removed].lastSection;
        for (; section != 0; section = content_.sections[section].previous) {
            content_.sections[section].removed = true;
        }
    }
    // A parent that the file named only as a part of longer paths must not vanish with the last
    // one.
    const KeyNode& left = content_.keys[parent];
    if (left.parent != 0 && left.firstChild == 0 && left.lastSection == 0) {
        content_.AddSection({.key = parent});
    }
}

bool EditedRegistryText::EndsLine(std::string_view text) const {
    const TextUnits units(content_.form.encoding, text.substr(content_.textBegin));
    const char16_t last = units.size() == 0 ? u'\n' : units[units.size() - 1];
    return last == u'\n' || last == u'\r';
}

std::string EditedRegistryText::ValueLine(ValueIndex value) const {
    const RegistryModel::Value& text = content_.values[value];
    std::string line = text.name.empty() ? content_.Spell(u"@") : content_.Spell(u"\"");
    if (!text.name.empty()) {
        line.append(text.name).append(content_.Spell(u"\""));
    }
    return line.append(content_.Spell(u"=")).append(text.data).append(content_.form.lineEnd);
}

std::string EditedRegistryText::KeyLine(KeyIndex key) const {
    std::vector<KeyIndex> path;
    for (; key != 0; key = content_.keys[key].parent) {
        path.push_back(key);
    }
    std::string line;
    for (auto level = path.rbegin(); level != path.rend(); ++level) {
        line.append(content_.Spell(level == path.rbegin() ? u"[" : u"\\"))
            .append(content_.keys[*level].Name());
    }
    return line.append(content_.Spell(u"]")).append(content_.form.lineEnd);
}

// What becomes of the file's own bytes, in their order.
std::vector<EditedRegistryText::Edit> EditedRegistryText::Edits() const {
    std::vector<Edit> edits;
    for (const auto& [value, original] : changed_) {
        edits.push_back({content_.BeginOf(original), original.size(),
                         std::string(content_.values[value].data)});
    }
    for (const AddedValue& added : added_) {
        if (added.section < firstNewSection_ && !content_.sections[added.section].removed) {
            edits.push_back(
                {content_.sections[added.section].valuesEnd, 0, ValueLine(added.value)});
        }
    }
    for (std::size_t index = 1; index < firstNewSection_; ++index) {
        const RegistryModel::Section& section = content_.sections[index];
        if (section.removed) {
            edits.push_back({section.begin, section.end - section.begin, {}});
        }
    }
    std::stable_sort(edits.begin(), edits.end(), [](const Edit& left, const Edit& right) {
        return std::pair(left.begin, left.length) < std::pair(right.begin, right.length);
    });
    return edits;
}

void EditedRegistryText::AppendNewSections(std::string& text) const {
    std::multimap<SectionIndex, ValueIndex> values;
    for (const AddedValue& added : added_) {
        values.emplace(added.section, added.value);
    }
    for (auto index = static_cast<SectionIndex>(firstNewSection_); index < content_.sections.size();
         ++index) {
        if (content_.sections[index].removed) {
            continue;
        }
        if (!EndsLine(text)) {
            text += content_.form.lineEnd;
        }
        if (!text.ends_with(content_.form.lineEnd + content_.form.lineEnd)) {
            text += content_.form.lineEnd;
        }
        text += KeyLine(content_.sections[index].key);
        const auto [first, last] = values.equal_range(index);
        for (auto value = first; value != last; ++value) {
            text += ValueLine(value->second);
        }
    }
}

std::string EditedRegistryText::Serialize() const {
    const std::string_view bytes = *content_.bytes;
    std::string text;
    text.reserve(bytes.size() + bytes.size() / 8);
    std::size_t done = 0;
    for (const Edit& edit : Edits()) {
        // A value that was changed before its key was deleted is gone.
        if (edit.begin < done) {
            continue;
        }
        text += bytes.substr(done, edit.begin - done);
        if (edit.length == 0 && !EndsLine(text)) {
            text += content_.form.lineEnd;
        }
        text += edit.text;
        done = edit.begin + edit.length;
    }
    text += bytes.substr(done);
    AppendNewSections(text);
    KeepEncoding(text);
    return text;
}

// An 8-bit file whose bytes are all UTF-8 is taken for such. If the last byte that said otherwise
// has gone, while characters above ASCII are left, another one says it in a comment.
void EditedRegistryText::KeepEncoding(std::string& text) const {
    const auto isHigh = [](char byte) { return static_cast<unsigned char>(byte) >= 0x80; };
    if (content_.form.encoding != TextEncoding::kCp1252 || !IsUtf8(text) ||
        std::none_of(text.begin(), text.end(), isHigh)) {
        return;
    }
    text += EndsLine(text) ? "" : content_.form.lineEnd;
    text += "; CP1252 \xA4" + content_.form.lineEnd;
}

}  // namespace platform
