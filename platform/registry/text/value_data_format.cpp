#include "platform/registry/text/value_data_format.h"

#include <array>
#include <cstdio>
#include <cstring>

#include "core/registry_operations.h"

namespace platform {
namespace {

bool IsTextType(std::uint32_t type) {
    return type == REG_SZ || type == REG_EXPAND_SZ || type == REG_MULTI_SZ;
}

void AppendUtf16Bytes(std::u16string_view text, std::vector<std::uint8_t>& bytes) {
    for (const char16_t unit : text) {
        bytes.push_back(static_cast<std::uint8_t>(unit & 0xFFU));
        bytes.push_back(static_cast<std::uint8_t>(unit >> 8));
    }
}

// Whole units alone: the caller has seen to an odd last byte.
std::u16string Utf16FromBytes(std::span<const std::uint8_t> bytes) {
    std::u16string text(bytes.size() / 2, u'\0');
    for (std::size_t index = 0; index < text.size(); ++index) {
        text[index] = static_cast<char16_t>(bytes[2 * index] | bytes[2 * index + 1] << 8);
    }
    return text;
}

// Reads the data of one value. The fields of `data` are filled where it is not null, so that a file
// is checked and a value is read by the same rules.
class DataReader {
  public:
    DataReader(RegistryScanner& scanner, const RegistryForm& form, RegistryData* data)
        : scanner_(scanner), form_(form), data_(data) {}

    Result<DataState> Read();

  private:
    Result<DataState> ReadNumber();
    Result<DataState> ReadTypedBytes();
    Result<DataState> ReadBytes(std::uint32_t type);
    Result<DataState> ReadTexts(std::uint32_t type, bool list);
    Result<DataState> ReadText(std::uint32_t type);
    bool AcceptByte();
    bool AtEmptyList();
    bool AcceptContinuation();
    tl::unexpected<Failure> NoItem(const char* reason);
    void StartValue(std::uint32_t type);
    void AddText(std::size_t begin);
    void WidenTexts();

    RegistryScanner& scanner_;
    const RegistryForm& form_;
    RegistryData* data_;
    std::size_t itemBegin_ = 0;  // of a list: after the comma, before a backslash
};

Result<DataState> DataReader::Read() {
    if (scanner_.Peek() == '"') {
        return ReadText(REG_SZ);
    }
    if (scanner_.Accept(u'-')) {
        return DataState::kDeleted;
    }
    if (scanner_.AcceptWord("dword:")) {
        return ReadNumber();
    }
    if (scanner_.AcceptWord("hex:")) {
        return ReadBytes(REG_BINARY);
    }
    if (scanner_.AcceptWord("hex(")) {
        return ReadTypedBytes();
    }
    if (scanner_.AcceptWord("multi_sz:")) {
        return ReadTexts(REG_MULTI_SZ, true);
    }
    if (scanner_.AcceptWord("mui_sz:")) {
        return ReadTexts(REG_MUI_SZ, false);
    }
    if (scanner_.AcceptSymbol()) {
        return DataState::kUnresolved;
    }
    return Malformed("no data of a known form after \"=\"");
}

void DataReader::StartValue(std::uint32_t type) {
    if (data_ != nullptr) {
        data_->type = type;
        data_->bytes.clear();
    }
}

Result<DataState> DataReader::ReadNumber() {
    scanner_.SkipBlanks();
    const std::size_t start = scanner_.position();
    std::uint64_t number = 0;
    for (; HexDigit(scanner_.Peek()) >= 0; scanner_.MoveTo(scanner_.position() + 1)) {
        number = number << 4 | static_cast<unsigned>(HexDigit(scanner_.Peek()));
        if (number > UINT32_MAX) {
            return Malformed("a number of more than 32 bits");
        }
    }
    const std::size_t end = scanner_.position();
    if (end == start || IsWordUnit(scanner_.Peek())) {
        scanner_.MoveTo(start);
        if (scanner_.AcceptSymbol()) {
            return DataState::kUnresolved;
        }
        return Malformed("no hexadecimal number after \"dword:\"");
    }
    StartValue(REG_DWORD);
    for (unsigned shift = 0; data_ != nullptr && shift < 32; shift += 8) {
        data_->bytes.push_back(static_cast<std::uint8_t>(number >> shift & 0xFFU));
    }
    return DataState::kValue;
}

Result<DataState> DataReader::ReadTypedBytes() {
    std::uint64_t type = 0;
    const std::size_t start = scanner_.position();
    for (; HexDigit(scanner_.Peek()) >= 0; scanner_.MoveTo(scanner_.position() + 1)) {
        type = type << 4 | static_cast<unsigned>(HexDigit(scanner_.Peek()));
        if (type > UINT32_MAX) {
            return Malformed("a type of more than 32 bits");
        }
    }
    if (scanner_.position() == start || !scanner_.AcceptWord("):")) {
        return Malformed("no type and colon after \"hex(\"");
    }
    return ReadBytes(static_cast<std::uint32_t>(type));
}

bool DataReader::AcceptByte() {
    const int first = HexDigit(scanner_.Peek());
    if (first < 0) {
        return false;
    }
    scanner_.MoveTo(scanner_.position() + 1);
    int byte = first;
    if (const int second = HexDigit(scanner_.Peek()); second >= 0) {
        scanner_.MoveTo(scanner_.position() + 1);
        byte = 16 * first + second;
    }
    if (data_ != nullptr) {
        data_->bytes.push_back(static_cast<std::uint8_t>(byte));
    }
    return true;
}

// Whether nothing stands where a list of bytes or texts could begin.
bool DataReader::AtEmptyList() {
    scanner_.SkipBlanks();
    return scanner_.AtLineEnd() || scanner_.Peek() == ';';
}

// A list goes on in the next line after a backslash, or after a comma at the end of a line; lines
// that are blank or hold a comment may stand between.
bool DataReader::AcceptContinuation() {
    itemBegin_ = scanner_.position();
    scanner_.SkipBlanks();
    if (scanner_.Accept(u'\\') && !scanner_.AcceptLineRest()) {
        return false;
    }
    if (scanner_.AtLineEnd() || scanner_.Peek() == ';') {
        scanner_.SkipEmptyLines();
    }
    scanner_.SkipBlanks();
    return true;
}

// Where the file ends, the fault is in the line that says that there is more.
tl::unexpected<Failure> DataReader::NoItem(const char* reason) {
    if (scanner_.Peek() != RegistryScanner::kEnd) {
        return Malformed(reason);
    }
    scanner_.MoveTo(itemBegin_);
    return Malformed("a list that goes on at the end of the file");
}

Result<DataState> DataReader::ReadBytes(std::uint32_t type) {
    StartValue(type);
    if (AtEmptyList()) {
        return DataState::kValue;
    }
    do {
        if (!AcceptContinuation()) {
            return Malformed("text after the backslash at the end of a line");
        }
        if (!AcceptByte()) {
            if (scanner_.AcceptSymbol()) {
                return DataState::kUnresolved;
            }
            return NoItem("no list of hexadecimal bytes after \"hex\"");
        }
        scanner_.SkipBlanks();
    } while (scanner_.Accept(u','));
    if (form_.narrowTexts && IsTextType(type)) {
        WidenTexts();
    }
    return DataState::kValue;
}

// Such bytes may hold what the encoding of the file itself cannot; they are then written as UTF-8.
void DataReader::WidenTexts() {
    if (data_ == nullptr || data_->bytes.empty()) {
        return;
    }
    const std::string narrow(data_->bytes.begin(), data_->bytes.end());
    std::u16string text;
    DecodeText(IsUtf8(narrow) ? TextEncoding::kUtf8 : TextEncoding::kCp1252, narrow, text);
    data_->bytes.clear();
    AppendUtf16Bytes(text, data_->bytes);
}

void DataReader::AddText(std::size_t begin) {
    if (data_ == nullptr) {
        return;
    }
    std::u16string text;
    DecodeQuoted(form_.encoding, scanner_.units().Bytes(begin + 1, scanner_.position() - 1), text);
    text += u'\0';
    AppendUtf16Bytes(text, data_->bytes);
}

Result<DataState> DataReader::ReadText(std::uint32_t type) {
    StartValue(type);
    const std::size_t begin = scanner_.position();
    if (!scanner_.AcceptQuoted()) {
        return Malformed("a text without its closing quote");
    }
    AddText(begin);
    return DataState::kValue;
}

Result<DataState> DataReader::ReadTexts(std::uint32_t type, bool list) {
    StartValue(type);
    bool unresolved = false;
    bool more = !AtEmptyList();
    if (!more && !list) {
        return Malformed("no text in quotes after \"mui_sz:\"");
    }
    while (more) {
        if (!AcceptContinuation()) {
            return Malformed("text after the backslash at the end of a line");
        }
        const std::size_t begin = scanner_.position();
        if (scanner_.AcceptQuoted()) {
            AddText(begin);
        } else if (scanner_.AcceptSymbol()) {
            unresolved = true;
        } else {
            return NoItem("no text in quotes in a list of texts");
        }
        scanner_.SkipBlanks();
        more = list && scanner_.Accept(u',');
    }
    if (list && data_ != nullptr) {
        data_->bytes.insert(data_->bytes.end(), 2, 0);
    }
    return unresolved ? DataState::kUnresolved : DataState::kValue;
}

// Hexadecimal bytes between commas. Lines are kept short, as other editors of such files do it.
std::string HexList(std::uint32_t type, std::span<const std::uint8_t> bytes) {
    static constexpr std::size_t kBytesInLine = 24;
    static constexpr const char* kDigits = "0123456789abcdef";
    std::string text = "hex";
    if (type != REG_BINARY) {
        std::array<char, 16> number{};
        static_cast<void>(std::snprintf(number.data(), number.size(), "(%x)", type));
        text += number.data();
    }
    text += ':';
    for (std::size_t index = 0; index < bytes.size(); ++index) {
        if (index > 0) {
            text += index % kBytesInLine == 0 ? ",\\\n  " : ",";
        }
        text += kDigits[bytes[index] >> 4];
        text += kDigits[bytes[index] & 0xFU];
    }
    return text;
}

// ASCII text in the encoding and with the line ends of the file.
std::string Spell(const RegistryForm& form, std::string_view ascii) {
    std::string bytes;
    for (const char character : ascii) {
        if (character == '\n') {
            bytes += form.lineEnd;
        } else {
            const auto unit = static_cast<char16_t>(character);
            EncodeText(form.encoding, {&unit, 1}, bytes);
        }
    }
    return bytes;
}

// The text in quotes, nothing where only the bytes one by one can stand for it.
std::optional<std::string> FormatText(const RegistryForm& form,
                                      std::span<const std::uint8_t> bytes) {
    if (bytes.size() % 2 != 0) {
        return std::nullopt;
    }
    std::u16string text = Utf16FromBytes(bytes);
    if (!text.empty() && text.back() == u'\0') {
        text.pop_back();
    }
    // A line break in quotes ends the value for other editors; half a pair has no form in UTF-8.
    static constexpr std::u16string_view kUnfit(u"\0\r\n", 3);
    if (text.find_first_of(kUnfit) != std::u16string::npos || HasLoneSurrogate(text)) {
        return std::nullopt;
    }
    return FormatQuoted(form.encoding, text);
}

std::optional<std::string> FormatBytes(const RegistryForm& form, std::uint32_t type,
                                       std::span<const std::uint8_t> bytes) {
    if (!form.narrowTexts || !IsTextType(type)) {
        return Spell(form, HexList(type, bytes));
    }
    if (bytes.size() % 2 != 0) {
        return std::nullopt;
    }
    // A file in the older form has the characters of its texts in bytes, not in pairs of them.
    const std::string narrow = Utf8Text(Utf16FromBytes(bytes));
    const std::vector<std::uint8_t> list(narrow.begin(), narrow.end());
    return Spell(form, HexList(type, list));
}

}  // namespace

Result<DataState> ReadData(RegistryScanner& scanner, const RegistryForm& form, RegistryData* data) {
    return DataReader(scanner, form, data).Read();
}

std::optional<std::string> FormatData(const RegistryForm& form, std::uint32_t type,
                                      std::span<const std::uint8_t> bytes) {
    if (type == REG_SZ) {
        if (std::optional<std::string> text = FormatText(form, bytes)) {
            return text;
        }
    }
    if (type == REG_DWORD && bytes.size() == 4) {
        std::uint32_t number = 0;
        std::memcpy(&number, bytes.data(), sizeof number);
        std::array<char, 16> text{};
        static_cast<void>(std::snprintf(text.data(), text.size(), "dword:%08x", number));
        return Spell(form, text.data());
    }
    return FormatBytes(form, type, bytes);
}

void DecodeQuoted(TextEncoding encoding, std::string_view quoted, std::u16string& text) {
    std::u16string escaped;
    DecodeText(encoding, quoted, escaped);
    for (std::size_t index = 0; index < escaped.size(); ++index) {
        const bool escape = escaped[index] == u'\\' && index + 1 < escaped.size() &&
                            (escaped[index + 1] == u'\\' || escaped[index + 1] == u'"');
        index += escape ? 1 : 0;
        text += escaped[index];
    }
}

std::optional<std::string> FormatQuoted(TextEncoding encoding, std::u16string_view text) {
    std::u16string quoted = u"\"";
    for (const char16_t unit : text) {
        if (unit == u'\\' || unit == u'"') {
            quoted += u'\\';
        }
        quoted += unit;
    }
    quoted += u'"';
    std::string bytes;
    if (!EncodeText(encoding, quoted, bytes)) {
        return std::nullopt;
    }
    return bytes;
}

}  // namespace platform
