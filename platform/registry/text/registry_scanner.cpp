#include "platform/registry/text/registry_scanner.h"

namespace platform {
namespace {

bool IsCapitalUnit(std::int32_t unit) {
    return IsDigit(unit) || unit == '_' || (unit >= 'A' && unit <= 'Z');
}

}  // namespace

bool IsWordUnit(std::int32_t unit) {
    return IsCapitalUnit(unit) || (unit >= 'a' && unit <= 'z');
}

std::size_t LineNumber(TextUnits units, std::size_t position) {
    std::size_t line = 1;
    for (std::size_t index = 0; index < position && index < units.size(); ++index) {
        const bool pair =
            units[index] == '\r' && index + 1 < units.size() && units[index + 1] == '\n';
        if (units[index] == '\n' || (units[index] == '\r' && !pair)) {
            ++line;
        }
    }
    return line;
}

bool RegistryScanner::AcceptWord(std::string_view word) {
    const std::size_t start = position_;
    for (const char expected : word) {
        std::int32_t unit = Peek();
        if (unit >= 'A' && unit <= 'Z') {
            unit += 'a' - 'A';
        }
        if (unit != expected) {
            position_ = start;
            return false;
        }
        ++position_;
    }
    return true;
}

bool RegistryScanner::AcceptLineRest() {
    const std::size_t start = position_;
    SkipBlanks();
    if (!AtLineEnd() && Peek() != ';') {
        position_ = start;
        return false;
    }
    SkipLine();
    return true;
}

bool RegistryScanner::AcceptQuoted() {
    const std::size_t start = position_;
    if (!Accept(u'"')) {
        return false;
    }
    const std::size_t size = units_.size();
    for (std::size_t index = position_; index < size; ++index) {
        const char16_t unit = units_[index];
        if (unit == u'"') {
            position_ = index + 1;
            return true;
        }
        const bool escape = unit == u'\\' && index + 1 < size &&
                            (units_[index + 1] == u'\\' || units_[index + 1] == u'"');
        index += escape ? 1 : 0;
    }
    position_ = start;
    return false;
}

// Accepts one or more of the wanted units.
bool RegistryScanner::AcceptUnits(bool (*wanted)(std::int32_t unit)) {
    const std::size_t start = position_;
    while (wanted(Peek())) {
        ++position_;
    }
    return position_ > start;
}

bool RegistryScanner::AcceptSymbol() {
    const std::size_t start = position_;
    bool accepted = false;
    if (Accept(u'$')) {
        accepted = Accept(u'(') && AcceptUnits(IsWordUnit) && Accept(u')');
    } else {
        accepted = Accept(u'L') && Accept(u'O') && Accept(u'C') && Accept(u'_') &&
                   AcceptUnits(IsCapitalUnit) && !IsWordUnit(Peek());
    }
    position_ = accepted ? position_ : start;
    return accepted;
}

void RegistryScanner::SkipLine() {
    const std::size_t size = units_.size();
    std::size_t end = position_;
    while (end < size && units_[end] != u'\n' && units_[end] != u'\r') {
        ++end;
    }
    position_ = end;
    SkipLineEnd();
}

void RegistryScanner::SkipLineEnd() {
    Accept(u'\r');
    Accept(u'\n');
}

void RegistryScanner::SkipEmptyLines() {
    SkipBlanks();
    while (Peek() != kEnd && AcceptLineRest()) {
        SkipBlanks();
    }
}

}  // namespace platform
