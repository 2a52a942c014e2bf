#include "platform/registry_text.h"

#include <algorithm>
#include <array>
#include <utility>

#include "platform/host_names.h"

namespace platform {
namespace {

constexpr std::array<std::u16string_view, 4> kRoots = {u"HKEY_CLASSES_ROOT", u"HKEY_CURRENT_USER",
                                                       u"HKEY_LOCAL_MACHINE", u"HKEY_USERS"};

// No registry has longer names or deeper keys; a damaged file must not make them either.
constexpr std::size_t kNameLimit = 255;
constexpr std::size_t kDepthLimit = 512;

// The bytes of a new file up to its first key.
std::string NewFile() {
    std::string bytes = "\xFF\xFE";
    EncodeText(TextEncoding::kUtf16, u"Windows Registry Editor Version 5.00\r\n\r\n", bytes);
    return bytes;
}

void Fold(std::u16string& text) {
    for (char16_t& unit : text) {
        unit = FoldUnit(unit);
    }
}

// The names between the backslashes of a path, in the path's own encoding.
std::vector<std::string_view> NamesOfPath(const TextUnits& path) {
    std::vector<std::string_view> names;
    names.reserve(16);
    for (std::size_t begin = 0, index = 0; index <= path.size(); ++index) {
        if (index < path.size() && path[index] != u'\\') {
            continue;
        }
        if (index > begin) {
            names.push_back(path.Bytes(begin, index));
        }
        begin = index + 1;
    }
    return names;
}

}  // namespace

std::u16string FoldText(std::u16string_view text) {
    std::u16string folded(text);
    Fold(folded);
    return folded;
}

RegistryText::RegistryText() : RegistryText(NewFile()) {
    RegistryFault fault;
    static_cast<void>(Read(fault));
}

RegistryText::RegistryText(std::string bytes)
    : bytes_(std::make_unique<const std::string>(std::move(bytes))), values_(1), sections_(1) {}

std::optional<RegistryText> RegistryText::Parse(std::string bytes, RegistryFault& fault) {
    if (bytes.empty()) {
        return RegistryText();
    }
    if (bytes.size() > kRegistryTextLimit) {
        fault = {1, "the file is too large for a registry"};
        return std::nullopt;
    }
    RegistryText text(std::move(bytes));
    if (!text.Read(fault)) {
        return std::nullopt;
    }
    return text;
}

bool RegistryText::Read(RegistryFault& fault) {
    const EncodingResult found = FindEncoding(*bytes_);
    form_.encoding = found.encoding;
    textBegin_ = found.markSize;
    const TextUnits units(form_.encoding, std::string_view(*bytes_).substr(textBegin_));
    if (found.failure != nullptr) {
        fault = {1, found.failure};
        return false;
    }
    form_.lineEnd = FindLineEnd(units);
    if (form_.lineEnd.empty()) {
        EncodeText(form_.encoding, u"\r\n", form_.lineEnd);
    }
    // Most lines have more characters than that. Growing step by step costs a fifth of the reading.
    values_.reserve(units.size() / 30);
    sections_.reserve(units.size() / 80);
    keys_.Reserve(units.size() / 80);
    AddRoots();
    RegistryScanner scanner(units);
    AcceptHeader(scanner, form_);
    if (const char* const reason = ReadStatements(scanner); reason != nullptr) {
        fault = {LineNumber(units, scanner.position()), reason};
        return false;
    }
    firstNewValue_ = values_.size();
    firstNewSection_ = sections_.size();
    return true;
}

const char* RegistryText::ReadStatements(RegistryScanner& scanner) {
    for (;;) {
        const std::size_t begin = scanner.position();
        const RegistryStatement statement = ReadStatement(scanner, form_);
        if (statement.kind == StatementKind::kEnd) {
            return nullptr;
        }
        if (statement.kind == StatementKind::kMalformed) {
            return statement.failure;
        }
        if (const char* const reason = Take(statement); reason != nullptr) {
            scanner.MoveTo(begin);
            return reason;
        }
    }
}

const char* RegistryText::Take(const RegistryStatement& statement) {
    switch (statement.kind) {
        case StatementKind::kKey:
            return TakeKey(statement);
        case StatementKind::kDeletedKey:
            return TakeDeletedKey(statement);
        case StatementKind::kValue:
            return TakeValue(statement);
        case StatementKind::kBlank:
            TakeBlankLine(statement);
            break;
        case StatementKind::kComment:
        case StatementKind::kMalformed:
        case StatementKind::kEnd:
            break;
    }
    return nullptr;
}

// Blank lines belong to the key before them, unless a comment stands between: it may be about the
// next one.
void RegistryText::TakeBlankLine(const RegistryStatement& statement) {
    Section& section = sections_[currentSection_];
    if (section.end == Position(statement.lines)) {
        section.end += statement.lines.size();
    }
}

const char* RegistryText::TakeKey(const RegistryStatement& statement) {
    KeyIndex key = 0;
    if (const char* const reason = FindPath(statement.name, true, key); reason != nullptr) {
        return reason;
    }
    const std::size_t begin = Position(statement.lines);
    const std::size_t end = begin + statement.lines.size();
    currentSection_ = AddSection({key, 0, begin, end, end, false});
    return nullptr;
}

const char* RegistryText::TakeDeletedKey(const RegistryStatement& statement) {
    KeyIndex key = 0;
    if (const char* const reason = FindPath(statement.name, false, key); reason != nullptr) {
        return reason;
    }
    currentSection_ = 0;
    if (key == 0) {
        return nullptr;
    }
    keys_.Remove(key);
    path_.clear();
    AddRoots();
    return nullptr;
}

const char* RegistryText::TakeValue(const RegistryStatement& statement) {
    if (currentSection_ == 0) {
        return "a value without a key";
    }
    Section& section = sections_[currentSection_];
    AddValue(section.key, {statement.name, statement.data, 0});
    section.valuesEnd = Position(statement.lines) + statement.lines.size();
    section.end = section.valuesEnd;
    return nullptr;
}

void RegistryText::AddRoots() {
    for (const std::u16string_view root : kRoots) {
        if (keys_.FindChild(0, root) == 0) {
            keys_.FindOrAddChild(0, root, Own(Spell(root)));
        }
    }
}

// Finds the key at a path of the file, adding it and those above it where that is wanted. Returns
// the reason for which the path is none, null otherwise; `key` is 0 when nothing was found.
const char* RegistryText::FindPath(std::string_view path, bool add, KeyIndex& key) {
    const std::vector<std::string_view> names = NamesOfPath(TextUnits(form_.encoding, path));
    if (names.empty()) {
        return "a key without a name";
    }
    if (names.size() > kDepthLimit) {
        return "a key of too many levels";
    }
    // Neighbours in a file share most of their path, which is looked up once.
    std::size_t shared = 0;
    while (shared < names.size() && shared < path_.size() && names[shared] == path_[shared].name) {
        ++shared;
    }
    path_.resize(shared);
    key = shared == 0 ? 0 : path_.back().key;
    std::u16string folded;
    for (std::size_t level = shared; level < names.size(); ++level) {
        folded.clear();
        DecodeText(form_.encoding, names[level], folded);
        if (folded.size() > kNameLimit) {
            return "a key with a name of more than 255 characters";
        }
        Fold(folded);
        const KeyIndex parent = key;
        key = add ? keys_.FindOrAddChild(parent, folded, names[level])
                  : keys_.FindChild(parent, folded);
        if (key == 0) {
            return nullptr;
        }
        path_.push_back({names[level], key});
    }
    return nullptr;
}

SectionIndex RegistryText::AddSection(const Section& section) {
    const auto added = static_cast<SectionIndex>(sections_.size());
    sections_.push_back(section);
    sections_.back().previous = std::exchange(keys_[section.key].lastSection, added);
    return added;
}

ValueIndex RegistryText::AddValue(KeyIndex key, const ValueText& value) {
    const auto added = static_cast<ValueIndex>(values_.size());
    values_.push_back(value);
    const ValueIndex last = std::exchange(keys_[key].lastValue, added);
    (last != 0 ? values_[last].next : keys_[key].firstValue) = added;
    return added;
}

KeyIndex RegistryText::FindKey(std::u16string_view path) const {
    const std::u16string folded = FoldText(path);
    KeyIndex key = 0;
    for (std::size_t begin = 0; begin < folded.size();) {
        const std::size_t end = std::min(folded.find(u'\\', begin), folded.size());
        if (end > begin) {
            key = keys_.FindChild(key, std::u16string_view(folded).substr(begin, end - begin));
            if (key == 0) {
                return 0;
            }
        }
        begin = end + 1;
    }
    return key;
}

std::optional<std::u16string> RegistryText::ChildName(KeyIndex key, std::size_t index) const {
    const KeyIndex child = keys_.Child(key, index);
    if (child == 0) {
        return std::nullopt;
    }
    std::u16string name;
    DecodeText(form_.encoding, keys_[child].name, name);
    return name;
}

// A key may name a value several times; the last line counts.
ValueIndex RegistryText::FindValue(KeyIndex key, std::u16string_view name) const {
    const std::u16string folded = FoldText(name);
    ValueIndex found = 0;
    std::u16string other;
    for (ValueIndex value = keys_[key].firstValue; value != 0; value = values_[value].next) {
        other.clear();
        DecodeQuoted(form_.encoding, values_[value].name, other);
        Fold(other);
        if (other == folded) {
            found = value;
        }
    }
    return found;
}

std::optional<RegistryData> RegistryText::ReadValue(std::string_view data) const {
    RegistryScanner scanner(TextUnits(form_.encoding, data));
    RegistryData value;
    if (ReadData(scanner, form_, &value).state != DataState::kValue) {
        return std::nullopt;
    }
    return value;
}

std::optional<RegistryData> RegistryText::Value(KeyIndex key, std::u16string_view name) const {
    const ValueIndex value = FindValue(key, name);
    return value == 0 ? std::nullopt : ReadValue(values_[value].data);
}

SetResult RegistryText::SetValue(KeyIndex key, std::u16string_view name, std::uint32_t type,
                                 std::span<const std::uint8_t> bytes) {
    std::optional<std::string> data = FormatData(form_, type, bytes);
    if (!data) {
        return SetResult::kUnfit;
    }
    const ValueIndex value = FindValue(key, name);
    if (value == 0) {
        return AddNewValue(key, name, *data) ? SetResult::kChanged : SetResult::kUnfit;
    }
    if (ReadValue(values_[value].data) == ReadValue(*data)) {
        return SetResult::kUnchanged;
    }
    if (value < firstNewValue_) {
        changed_.emplace(value, values_[value].data);
    }
    values_[value].data = Own(std::move(*data));
    return SetResult::kChanged;
}

bool RegistryText::AddNewValue(KeyIndex key, std::u16string_view name, std::string_view data) {
    static constexpr std::u16string_view kUnfit(u"\0\r\n", 3);
    const std::optional<std::string> quoted = FormatQuoted(form_.encoding, name);
    if (!quoted || name.size() > kNameLimit || name.find_first_of(kUnfit) != name.npos) {
        return false;
    }
    const std::size_t quote = Spell(u"\"").size();
    const std::string_view owned = Own(*quoted);
    if (keys_[key].lastSection == 0) {
        AddSection({.key = key});
    }
    const ValueIndex value =
        AddValue(key, {owned.substr(quote, owned.size() - 2 * quote), Own(std::string(data)), 0});
    added_.push_back({keys_[key].lastSection, value});
    return true;
}

void RegistryText::DeleteKey(KeyIndex key) {
    const KeyIndex parent = keys_[key].parent;
    for (const KeyIndex removed : keys_.Remove(key)) {
        SectionIndex section = keys_[removed].lastSection;
        for (; section != 0; section = sections_[section].previous) {
            sections_[section].removed = true;
        }
    }
    // A parent that the file named only as a part of longer paths must not vanish with the last
    // one.
    const RegistryKey& left = keys_[parent];
    if (left.parent != 0 && left.firstChild == 0 && left.lastSection == 0) {
        AddSection({.key = parent});
    }
}

std::string_view RegistryText::Own(std::string text) {
    return owned_.emplace_back(std::move(text));
}

std::string RegistryText::Spell(std::u16string_view text) const {
    std::string bytes;
    EncodeText(form_.encoding, text, bytes);
    return bytes;
}

std::size_t RegistryText::Position(std::string_view part) const {
    return static_cast<std::size_t>(part.data() - bytes_->data());
}

bool RegistryText::EndsLine(std::string_view text) const {
    const TextUnits units(form_.encoding, text.substr(textBegin_));
    const char16_t last = units.size() == 0 ? u'\n' : units[units.size() - 1];
    return last == u'\n' || last == u'\r';
}

std::string RegistryText::ValueLine(ValueIndex value) const {
    const ValueText& text = values_[value];
    std::string line = text.name.empty() ? Spell(u"@") : Spell(u"\"");
    if (!text.name.empty()) {
        line.append(text.name).append(Spell(u"\""));
    }
    return line.append(Spell(u"=")).append(text.data).append(form_.lineEnd);
}

std::string RegistryText::KeyLine(KeyIndex key) const {
    std::vector<KeyIndex> path;
    for (; key != 0; key = keys_[key].parent) {
        path.push_back(key);
    }
    std::string line;
    for (auto level = path.rbegin(); level != path.rend(); ++level) {
        line.append(Spell(level == path.rbegin() ? u"[" : u"\\")).append(keys_[*level].name);
    }
    return line.append(Spell(u"]")).append(form_.lineEnd);
}

// What becomes of the file's own bytes, in their order.
std::vector<RegistryText::Edit> RegistryText::Edits() const {
    std::vector<Edit> edits;
    for (const auto& [value, original] : changed_) {
        edits.push_back({Position(original), original.size(), std::string(values_[value].data)});
    }
    for (const AddedValue& added : added_) {
        if (added.section < firstNewSection_ && !sections_[added.section].removed) {
            edits.push_back({sections_[added.section].valuesEnd, 0, ValueLine(added.value)});
        }
    }
    for (std::size_t index = 1; index < firstNewSection_; ++index) {
        const Section& section = sections_[index];
        if (section.removed) {
            edits.push_back({section.begin, section.end - section.begin, {}});
        }
    }
    std::stable_sort(edits.begin(), edits.end(), [](const Edit& left, const Edit& right) {
        return std::pair(left.begin, left.length) < std::pair(right.begin, right.length);
    });
    return edits;
}

void RegistryText::AppendNewSections(std::string& text) const {
    std::multimap<SectionIndex, ValueIndex> values;
    for (const AddedValue& added : added_) {
        values.emplace(added.section, added.value);
    }
    for (auto index = static_cast<SectionIndex>(firstNewSection_); index < sections_.size();
         ++index) {
        if (sections_[index].removed) {
            continue;
        }
        if (!EndsLine(text)) {
            text += form_.lineEnd;
        }
        if (!text.ends_with(form_.lineEnd + form_.lineEnd)) {
            text += form_.lineEnd;
        }
        text += KeyLine(sections_[index].key);
        const auto [first, last] = values.equal_range(index);
        for (auto value = first; value != last; ++value) {
            text += ValueLine(value->second);
        }
    }
}

std::string RegistryText::Serialize() const {
    const std::string_view bytes = *bytes_;
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
            text += form_.lineEnd;
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
void RegistryText::KeepEncoding(std::string& text) const {
    const auto isHigh = [](char byte) { return static_cast<unsigned char>(byte) >= 0x80; };
    if (form_.encoding != TextEncoding::kCp1252 || !IsUtf8(text) ||
        std::none_of(text.begin(), text.end(), isHigh)) {
        return;
    }
    text += EndsLine(text) ? "" : form_.lineEnd;
    text += "; CP1252 \xA4" + form_.lineEnd;
}

}  // namespace platform
