#include "platform/registry/text/registry_parser.h"

#include <algorithm>
#include <utility>

#include "platform/registry/text/registry_scanner.h"

namespace platform {
namespace {

// No registry has deeper keys; a damaged file must not make them either.
constexpr std::size_t kDepthLimit = 512;

// The bytes of a new file up to its first key.
std::string BytesOfNewFile() {
    std::string bytes(kUtf16Mark);
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
    return "line " + std::to_string(line);
}

// Puts the statements of a file into its content, one after the other.
class RegistryParser {
  public:
    explicit RegistryParser(RegistryModel& content) : content_(content) {}

    Status Read();

  private:
    // A name of the path that was read last.
    struct Level {
        std::string_view name;
        KeyIndex key = 0;
    };

    Status ReadStatements(RegistryScanner& scanner);
    Status Apply(const RegistryStatement& statement);
    void ApplyBlankLine(const RegistryStatement& statement);
    Status ApplyKey(const RegistryStatement& statement);
    Status ApplyDeletedKey(const RegistryStatement& statement);
    Status ApplyValue(const RegistryStatement& statement);
    Result<KeyIndex> FindPath(std::string_view path, bool add);
    Status FindLevel(std::string_view name, bool add);

    RegistryModel& content_;
    SectionIndex currentSection_ = 0;
    std::vector<Level> path_;
    std::u16string folded_;  // the name that was looked up last
};

Status RegistryParser::Read() {
    const TextUnits units(content_.form.encoding,
                          std::string_view(*content_.bytes).substr(content_.textBegin));
    content_.form.lineEnd = FindLineEnd(units);
    if (content_.form.lineEnd.empty()) {
        EncodeText(content_.form.encoding, u"\r\n", content_.form.lineEnd);
    }
    // Most lines have more characters than that. Growing step by step costs a fifth of the reading.
    content_.values.reserve(units.size() / 30);
    content_.sections.reserve(units.size() / 80);
    content_.AddRoots();
    RegistryScanner scanner(units);
    AcceptHeader(scanner, content_.form);
    if (Status read = ReadStatements(scanner); !read) {
        return FailOf(std::move(read.error()), LineName(LineNumber(units, scanner.position())));
    }
    return {};
}

Status RegistryParser::ReadStatements(RegistryScanner& scanner) {
    for (;;) {
        const std::size_t begin = scanner.position();
        Result<RegistryStatement> statement = ReadStatement(scanner, content_.form);
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

Status RegistryParser::Apply(const RegistryStatement& statement) {
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
void RegistryParser::ApplyBlankLine(const RegistryStatement& statement) {
    RegistryModel::Section& section = content_.sections[currentSection_];
    if (section.end == content_.BeginOf(statement.lines)) {
        section.end = content_.EndOf(statement.lines);
    }
}

Status RegistryParser::ApplyKey(const RegistryStatement& statement) {
    Result<KeyIndex> key = FindPath(statement.name, true);
    if (!key) {
        return tl::unexpected(std::move(key.error()));
    }
    const RegistryModel::Offset end = content_.EndOf(statement.lines);
    currentSection_ =
        content_.AddSection({*key, 0, content_.BeginOf(statement.lines), end, end, false});
    return {};
}

Status RegistryParser::ApplyDeletedKey(const RegistryStatement& statement) {
    Result<KeyIndex> key = FindPath(statement.name, false);
    if (!key) {
        return tl::unexpected(std::move(key.error()));
    }
    currentSection_ = 0;
    if (*key == 0) {
        return {};
    }
    content_.keys.Remove(*key);
    path_.pop_back();
    if (path_.empty()) {
        content_.AddRoots();
    }
    return {};
}

Status RegistryParser::ApplyValue(const RegistryStatement& statement) {
    if (currentSection_ == 0) {
        return Malformed("a value without a key");
    }
    RegistryModel::Section& section = content_.sections[currentSection_];
    content_.AddValue(section.key, {statement.name, statement.data, 0});
    section.valuesEnd = content_.EndOf(statement.lines);
    section.end = section.valuesEnd;
    return {};
}

// The key at a path of the file, which is added with those above it where that is wanted; 0 when it
// is not there.
Result<KeyIndex> RegistryParser::FindPath(std::string_view path, bool add) {
    const TextUnits units(content_.form.encoding, path);
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
Status RegistryParser::FindLevel(std::string_view name, bool add) {
    folded_.clear();
    DecodeText(content_.form.encoding, name, folded_);
    if (folded_.size() > kRegistryNameLimit) {
        return Malformed("a key with a name of more than 255 characters");
    }
    Fold(folded_);
    const KeyIndex parent = path_.empty() ? 0 : path_.back().key;
    const KeyIndex key = add ? content_.keys.FindOrAddChild(parent, folded_, name)
                             : content_.keys.FindChild(parent, folded_);
    if (key != 0) {
        path_.push_back({name, key});
    }
    return {};
}

}  // namespace

Result<RegistryModel> ParseRegistry(std::string bytes) {
    if (bytes.empty()) {
        bytes = BytesOfNewFile();
    }
    if (bytes.size() > kRegistryTextLimit) {
        return FailOf(Malformed("the file is too large for a registry").value(), LineName(1));
    }
    Result<FileEncoding> encoding = FindEncoding(bytes);
    if (!encoding) {
        return FailOf(std::move(encoding.error()), LineName(1));
    }
    RegistryModel content(std::move(bytes), *encoding);
    if (Status read = RegistryParser(content).Read(); !read) {
        return tl::unexpected(std::move(read.error()));
    }
    return content;
}

}  // namespace platform
