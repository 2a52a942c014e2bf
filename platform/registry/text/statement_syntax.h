#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "platform/registry/text/registry_scanner.h"
#include "platform/registry/text/value_data_format.h"

namespace platform {

enum class StatementKind {
    kBlank,       // an empty line
    kComment,     // a line with a comment alone
    kKey,         // [PATH]
    kDeletedKey,  // [-PATH]
    kValue,       // "name"=data or @=data
    kEnd,         // there is nothing more
};

// One line of a registry file, or the lines that one value takes. All views are of the file's
// bytes.
struct RegistryStatement {
    StatementKind kind = StatementKind::kEnd;
    std::string_view lines;  // all of it, the line end included
    std::string_view name;   // the path of a key; what stands between a value's quotes
    std::string_view data;   // the data of a value
};

// The encoding of a file and the size of its byte order mark in bytes.
struct FileEncoding {
    TextEncoding encoding = TextEncoding::kUtf16;
    std::size_t markSize = 0;
};

// UTF-16 is known by its mark. Other files are UTF-8 if all of their bytes are, and CP1252 if not,
// unless a mark says that they should have been UTF-8.
Result<FileEncoding> FindEncoding(std::string_view bytes);

// The line end of the first line, as its bytes; empty when there is only one line without end.
std::string FindLineEnd(const TextUnits& units);

// Accepts the line with which such files begin, and the empty lines before it; says in `form` what
// the line lays down. Does nothing when there is no such line, which is allowed.
void AcceptHeader(RegistryScanner& scanner, RegistryForm& form);

// Reads the statement at the scanner's position and moves past it; when it is malformed, to the
// line of the fault.
Result<RegistryStatement> ReadStatement(RegistryScanner& scanner, const RegistryForm& form);

}  // namespace platform
