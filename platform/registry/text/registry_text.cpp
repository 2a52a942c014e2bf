#include "platform/registry/text/registry_text.h"

#include <algorithm>
#include <array>
#include <utility>

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

// Moves after the next name of a path and returns it; empty when there is none.
std::string_view NextName(const TextUnits& path, std::size_t& position) {
    const std::size_t size = path.size();
    while (position < size && path[position] == u'\\') {
        ++position;
    }
    const std::size_t begin = position;
    while (position < size && path[position] != u'\\') {
        ++position;
    }
    return path.Bytes(begin, position);
}

std::string LineName(std::size_t line) {
    return "registry.reg, line " + std::to_string(line);
}

}  // namespace

RegistryText::RegistryText() : RegistryText(NewFile(), {TextEncoding::kUtf16, 2}) {
    static_cast<void>(Read());
}

RegistryText::RegistryText(std::string bytes, const FileEncoding& encoding)
    : bytes_(std::make_unique<const std::string>(std::move(bytes))),
      textBegin_(encoding.markSize),
      keys_(encoding.encoding),
      values_(1),
      sections_(1) {
    form_.encoding = encoding.encoding;
}

Result<RegistryText> RegistryText::Parse(std::string bytes) {
    if (bytes.empty()) {
        return RegistryText();
    }
    if (bytes.size() > kRegistryTextLimit) {
        return FailOf(Malformed("the file is too large for a registry").value(), LineName(1));
    }
    Result<FileEncoding> encoding = FindEncoding(bytes);
    if (!encoding) {
        return FailOf(std::move(encoding.error()), LineName(1));
    }
    RegistryText text(std::move(bytes), *encoding);
    if (Status read = text.Read(); !read) {
        return tl::unexpected(std::move(read.error()));
    }
    return text;
}

Status RegistryText::Read() {
    const TextUnits units(form_.encoding, std::string_view(*bytes_).substr(textBegin_));
    form_.lineEnd = FindLineEnd(units);
    if (form_.lineEnd.empty()) {
        EncodeText(form_.encoding, u"\r\n", form_.lineEnd);
    }
    // Most lines have more characters than that. Growing step by step costs a fifth of the reading.
    values_.reserve(units.size() / 30);
    sections_.reserve(units.size() / 80);
    AddRoots();
    RegistryScanner scanner(units);
    AcceptHeader(scanner, form_);
    if (Status read = ReadStatements(scanner); !read) {
        return FailOf(std::move(read.error()), LineName(LineNumber(units, scanner.position())));
    }
    firstNewValue_ = values_.size();
    firstNewSection_ = sections_.size();
    return {};
}

Status RegistryText::ReadStatements(RegistryScanner& scanner) {
    for (;;) {
        const std::size_t begin = scanner.position();
        Result<RegistryStatement> statement = ReadStatement(scanner, form_);
        if (!statement) {
            return tl::unexpected(std::move(statement.error()));
        }
        if (statement->kind == StatementKind::kEnd) {
            return {};
        }
        if (Status taken = Apply(*statement); !taken) {
            scanner.MoveTo(begin);
            return taken;
        }
    }
}

Status RegistryText::Apply(const RegistryStatement& statement) {
    switch (statement.kind) {
        case StatementKind::kKey:
            return ApplyKey(statement);
        case StatementKind::kDeletedKey:
            return ApplyDeletedKey(statement);
        case StatementKind::kValue:
            return ApplyValue(statement);
        case StatementKind::kBlank:
            ApplyBlankLine(statement);
            break;
        case StatementKind::kComment:
        case StatementKind::kEnd:
            break;
    }
    return {};
}

// Blank lines belong to the key before them, unless a comment stands between: it may be about the
// next one.
void RegistryText::ApplyBlankLine(const RegistryStatement& statement) {
    Section& section = sections_[currentSection_];
    if (section.end == BeginOf(statement.lines)) {
        section.end = EndOf(statement.lines);
    }
}

Status RegistryText::ApplyKey(const RegistryStatement& statement) {
    Result<KeyIndex> key = FindPath(statement.name, true);
    if (!key) {
        return tl::unexpected(std::move(key.error()));
    }
    const Offset end = EndOf(statement.lines);
    currentSection_ = AddSection({*key, 0, BeginOf(statement.lines), end, end, false});
    return {};
}

Status RegistryText::ApplyDeletedKey(const RegistryStatement& statement) {
    Result<KeyIndex> key = FindPath(statement.name, false);
    if (!key) {
        return tl::unexpected(std::move(key.error()));
    }
    currentSection_ = 0;
    if (*key == 0) {
        return {};
    }
    keys_.Remove(*key);
    path_.pop_back();
    if (path_.empty()) {
        AddRoots();
    }
    return {};
}

Status RegistryText::ApplyValue(const RegistryStatement& statement) {
    if (currentSection_ == 0) {
        return Malformed("a value without a key");
    }
    Section& section = sections_[currentSection_];
    AddValue(section.key, {statement.name, statement.data, 0});
    section.valuesEnd = EndOf(statement.lines);
    section.end = section.valuesEnd;
    return {};
}

// Adds those that are not there; a deleted one comes back empty.
void RegistryText::AddRoots() {
    for (std::size_t index = 0; index < kRoots.size(); ++index) {
        KeyIndex& root = roots_[index];
        if (root == 0 || keys_[root].removed) {
            root = keys_.FindOrAddChild(0, kRoots[index], Own(Spell(kRoots[index])));
        }
    }
}

// The key at a path of the file, which is added with those above it where that is wanted; 0 when it
// is not there.
Result<KeyIndex> RegistryText::FindPath(std::string_view path, bool add) {
    const TextUnits units(form_.encoding, path);
    std::size_t level = 0;
    std::size_t position = 0;
    for (;; ++level) {
        const std::string_view name = NextName(units, position);
        if (name.empty()) {
            break;
        }
        if (level == kDepthLimit) {
            return Malformed("a key of too many levels");
        }
        // Neighbours in a file share most of their path, which is looked up once.
        const bool shared = level < path_.size() && path_[level].name == name;
        const bool missing = level > path_.size();
        if (shared || missing) {
            continue;
        }
        path_.resize(level);
        if (Status found = FindLevel(name, add); !found) {
            return tl::unexpected(std::move(found.error()));
        }
    }
    if (level == 0) {
        return Malformed("a key without a name");
    }
    path_.resize(std::min(level, path_.size()));
    return path_.size() == level ? path_.back().key : 0;
}

// Goes on with that name from the key at the end of the path, if there is such a key.
Status RegistryText::FindLevel(std::string_view name, bool add) {
    folded_.clear();
    DecodeText(form_.encoding, name, folded_);
    if (folded_.size() > kNameLimit) {
        return Malformed("a key with a name of more than 255 characters");
    }
    Fold(folded_);
    const KeyIndex parent = path_.empty() ? 0 : path_.back().key;
    const KeyIndex key =
        add ? keys_.FindOrAddChild(parent, folded_, name) : keys_.FindChild(parent, folded_);
    if (key != 0) {
        path_.push_back({name, key});
    }
    return {};
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
    values_.back().previous = std::exchange(keys_[key].lastValue, added);
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
    DecodeText(form_.encoding, keys_[child].Name(), name);
    return name;
}

// A key may name a value several times; the last line counts.
ValueIndex RegistryText::FindValue(KeyIndex key, std::u16string_view name) const {
    const std::u16string folded = FoldText(name);
    std::u16string other;
    for (ValueIndex value = keys_[key].lastValue; value != 0; value = values_[value].previous) {
        other.clear();
        DecodeQuoted(form_.encoding, values_[value].name, other);
        Fold(other);
        if (other == folded) {
            return value;
        }
    }
    return 0;
}

std::optional<RegistryData> RegistryText::ReadValue(std::string_view data) const {
    RegistryScanner scanner(TextUnits(form_.encoding, data));
    RegistryData value;
    const Result<DataState> state = ReadData(scanner, form_, &value);
    return state == DataState::kValue ? std::optional(std::move(value)) : std::nullopt;
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
    const KeyNode& left = keys_[parent];
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

RegistryText::Offset RegistryText::BeginOf(std::string_view part) const {
    return static_cast<Offset>(part.data() - bytes_->data());
}

RegistryText::Offset RegistryText::EndOf(std::string_view part) const {
    return static_cast<Offset>(part.data() + part.size() - bytes_->data());
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
        line.append(Spell(level == path.rbegin() ? u"[" : u"\\")).append(keys_[*level].Name());
    }
    return line.append(Spell(u"]")).append(form_.lineEnd);
}

// What becomes of the file's own bytes, in their order.
std::vector<RegistryText::Edit> RegistryText::Edits() const {
    std::vector<Edit> edits;
    for (const auto& [value, original] : changed_) {
        edits.push_back({BeginOf(original), original.size(), std::string(values_[value].data)});
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
