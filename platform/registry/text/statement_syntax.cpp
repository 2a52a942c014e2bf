#include "platform/registry/text/statement_syntax.h"

#include <utility>

namespace platform {
namespace {

// Moves to the bracket that ends a key: the first that only a comment follows, since names
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

Result<RegistryStatement> ReadKey(RegistryScanner& scanner) {
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

Result<RegistryStatement> ReadValue(RegistryScanner& scanner, const RegistryForm& form) {
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
        return Malformed("a name without \"=\" after it");
    }
    scanner.SkipBlanks();
    const std::size_t begin = scanner.position();
    if (Result<DataState> read = ReadData(scanner, form, nullptr); !read) {
        return tl::unexpected(std::move(read.error()));
    }
    statement.data = scanner.units().Bytes(begin, scanner.position());
    if (!scanner.AcceptLineRest()) {
        return Malformed("something other than a comment after the data");
    }
    return statement;
}

Result<RegistryStatement> ReadEmptyLine(RegistryScanner& scanner) {
    RegistryStatement statement;
    statement.kind = scanner.AtLineEnd() ? StatementKind::kBlank : StatementKind::kComment;
    if (!scanner.AcceptLineRest()) {
        return Malformed("a line that is neither key, value nor comment");
    }
    return statement;
}

Result<RegistryStatement> ReadForm(RegistryScanner& scanner, const RegistryForm& form) {
    switch (scanner.Peek()) {
        case '[':
            return ReadKey(scanner);
        case '"':
        case '@':
            return ReadValue(scanner, form);
        default:
            return ReadEmptyLine(scanner);
    }
}

}  // namespace

Result<FileEncoding> FindEncoding(std::string_view bytes) {
    if (bytes.starts_with(kUtf16Mark)) {
        if (bytes.size() % 2 != 0) {
            return Malformed("half a character at the end");
        }
        return FileEncoding{TextEncoding::kUtf16, kUtf16Mark.size()};
    }
    if (bytes.starts_with(kSwappedUtf16Mark)) {
        return Malformed("UTF-16 with its high bytes first");
    }
    const bool marked = bytes.starts_with(kUtf8Mark);
    const bool utf8 = IsUtf8(bytes);
    if (marked && !utf8) {
        return Malformed("marked as UTF-8 but holds other bytes");
    }
    return FileEncoding{utf8 ? TextEncoding::kUtf8 : TextEncoding::kCp1252,
                        marked ? kUtf8Mark.size() : 0};
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

Result<RegistryStatement> ReadStatement(RegistryScanner& scanner, const RegistryForm& form) {
    const std::size_t begin = scanner.position();
    if (scanner.Peek() == RegistryScanner::kEnd) {
        return RegistryStatement();
    }
    scanner.SkipBlanks();
    Result<RegistryStatement> statement = ReadForm(scanner, form);
    if (statement) {
        statement->lines = scanner.units().Bytes(begin, scanner.position());
    }
    return statement;
}

}  // namespace platform
