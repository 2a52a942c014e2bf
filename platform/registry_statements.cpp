#include "platform/registry_statements.h"

namespace platform {
namespace {

constexpr std::string_view kUtf16Mark = "\xFF\xFE";
constexpr std::string_view kSwappedUtf16Mark = "\xFE\xFF";
constexpr std::string_view kUtf8Mark = "\xEF\xBB\xBF";

RegistryStatement Malformed(const char* reason) {
    RegistryStatement statement;
    statement.kind = StatementKind::kMalformed;
    statement.failure = reason;
    return statement;
}

// Moves to the bracket that ends a key: the first behind which only a comment stands, since names
// may hold brackets.
bool MoveToClosingBracket(RegistryScanner& scanner) {
    while (!scanner.AtLineEnd()) {
        const std::size_t bracket = scanner.position();
        if (scanner.Accept(u']')) {
            scanner.SkipBlanks();
            const bool last = scanner.AtLineEnd() || scanner.Peek() == ';';
            if (last) {
                scanner.MoveTo(bracket);
                return true;
            }
            continue;
        }
        scanner.MoveTo(bracket + 1);
    }
    return false;
}

RegistryStatement ReadKey(RegistryScanner& scanner) {
    RegistryStatement statement;
    statement.kind = StatementKind::kKey;
    scanner.Accept(u'[');
    if (scanner.Accept(u'-')) {
        statement.kind = StatementKind::kDeletedKey;
    }
    const std::size_t begin = scanner.position();
    if (!MoveToClosingBracket(scanner)) {
        return Malformed("a key without its closing bracket");
    }
    statement.name = scanner.units().Bytes(begin, scanner.position());
    scanner.SkipLine();
    return statement;
}

RegistryStatement ReadValue(RegistryScanner& scanner, const RegistryForm& form) {
    RegistryStatement statement;
    statement.kind = StatementKind::kValue;
    if (!scanner.Accept(u'@')) {
        const std::size_t begin = scanner.position();
        if (!scanner.AcceptQuoted()) {
            return Malformed("a name without its closing quote");
        }
        statement.name = scanner.units().Bytes(begin + 1, scanner.position() - 1);
    }
    scanner.SkipBlanks();
    if (!scanner.Accept(u'=')) {
        return Malformed("a name without \"=\" behind it");
    }
    scanner.SkipBlanks();
    const std::size_t begin = scanner.position();
    const DataResult result = ReadData(scanner, form, nullptr);
    statement.data = scanner.units().Bytes(begin, scanner.position());
    if (result.state == DataState::kMalformed) {
        return Malformed(result.failure);
    }
    if (!scanner.AcceptLineRest()) {
        return Malformed("something other than a comment behind the data");
    }
    return statement;
}

RegistryStatement ReadEmptyLine(RegistryScanner& scanner) {
    RegistryStatement statement;
    statement.kind = scanner.AtLineEnd() ? StatementKind::kBlank : StatementKind::kComment;
    if (!scanner.AcceptLineRest()) {
        return Malformed("a line that is neither key, value nor comment");
    }
    return statement;
}

}  // namespace

EncodingResult FindEncoding(std::string_view bytes) {
    if (bytes.starts_with(kUtf16Mark)) {
        const char* const failure = bytes.size() % 2 == 0 ? nullptr : "half a character at the end";
        return {TextEncoding::kUtf16, kUtf16Mark.size(), failure};
    }
    if (bytes.starts_with(kSwappedUtf16Mark)) {
        return {TextEncoding::kUtf16, kSwappedUtf16Mark.size(), "UTF-16 with its high bytes first"};
    }
    const bool marked = bytes.starts_with(kUtf8Mark);
    if (marked && !IsUtf8(bytes)) {
        return {TextEncoding::kUtf8, kUtf8Mark.size(), "marked as UTF-8 but holds other bytes"};
    }
    return {IsUtf8(bytes) ? TextEncoding::kUtf8 : TextEncoding::kCp1252,
            marked ? kUtf8Mark.size() : 0, nullptr};
}

std::string FindLineEnd(const TextUnits& units) {
    RegistryScanner scanner(units);
    while (!scanner.AtLineEnd()) {
        scanner.MoveTo(scanner.position() + 1);
    }
    const std::size_t begin = scanner.position();
    scanner.SkipLine();
    return std::string(units.Bytes(begin, scanner.position()));
}

void AcceptHeader(RegistryScanner& scanner, RegistryForm& form) {
    const std::size_t start = scanner.position();
    scanner.SkipEmptyLines();
    const bool narrow = scanner.AcceptWord("regedit4");
    if ((narrow || scanner.AcceptWord("windows registry editor version 5.00")) &&
        scanner.AcceptLineRest()) {
        form.narrowTexts = narrow;
        return;
    }
    scanner.MoveTo(start);
}

RegistryStatement ReadStatement(RegistryScanner& scanner, const RegistryForm& form) {
    const std::size_t begin = scanner.position();
    RegistryStatement statement;
    if (scanner.Peek() == RegistryScanner::kEnd) {
        return statement;
    }
    scanner.SkipBlanks();
    switch (scanner.Peek()) {
        case '[':
            statement = ReadKey(scanner);
            break;
        case '"':
        case '@':
            statement = ReadValue(scanner, form);
            break;
        default:
            statement = ReadEmptyLine(scanner);
            break;
    }
    statement.lines = scanner.units().Bytes(begin, scanner.position());
    return statement;
}

}  // namespace platform
