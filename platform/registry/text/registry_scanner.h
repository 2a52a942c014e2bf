#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "platform/text/text_encoding.h"

namespace platform {

// Moves over the text of a registry file, unit by unit, and knows the little that its keys, values
// and data have in common: blanks, comments, line ends, quoted texts and words. Lines end with LF,
// CR LF or CR. A function that accepts something moves past it, or stays where it is and returns
// false. Owns nothing.
class RegistryScanner {
  public:
    static constexpr std::int32_t kEnd = -1;

    explicit RegistryScanner(TextUnits units, std::size_t position = 0)
        : units_(units), position_(position) {}

    const TextUnits& units() const { return units_; }
    std::size_t position() const { return position_; }
    void MoveTo(std::size_t position) { position_ = position; }

    // The unit at the position, kEnd after the last one.
    std::int32_t Peek() const {
        return position_ < units_.size() ? std::int32_t{units_[position_]} : kEnd;
    }
    bool AtLineEnd() const {
        const std::int32_t unit = Peek();
        return unit == '\n' || unit == '\r' || unit == kEnd;
    }
    void SkipBlanks() {
        while (Peek() == ' ' || Peek() == '\t') {
            ++position_;
        }
    }
    bool Accept(char16_t unit) {
        const bool accepted = Peek() == unit;
        position_ += accepted ? 1 : 0;
        return accepted;
    }

    // Accepts the lower-case ASCII text in any case.
    bool AcceptWord(std::string_view word);

    // Accepts the rest of a line on which nothing stands but blanks and a comment, and its end.
    bool AcceptLineRest();

    // Accepts a text in quotes, which may run over several lines: a backslash before a quote or a
    // backslash is an escape. False as well when the closing quote is missing.
    bool AcceptQuoted();

    // Accepts a symbol of a device image's build that was never replaced by its value: LOC_NAME in
    // capital letters, digits and underscores, or $(NAME) in letters, digits and underscores.
    bool AcceptSymbol();

    // Skips the rest of the line and its end.
    void SkipLine();

    // Skips lines that are blank or hold a comment alone, and the blanks before what follows.
    void SkipEmptyLines();

  private:
    bool AcceptUnits(bool (*wanted)(std::int32_t unit));
    void SkipLineEnd();

    TextUnits units_;
    std::size_t position_;
};

inline bool IsDigit(std::int32_t unit) {
    return unit >= '0' && unit <= '9';
}

// The value of a hexadecimal digit, -1 for any other unit.
inline int HexDigit(std::int32_t unit) {
    if (IsDigit(unit)) {
        return unit - '0';
    }
    const std::int32_t lower = unit | 0x20;
    return lower >= 'a' && lower <= 'f' ? lower - 'a' + 10 : -1;
}

// Whether the unit is a letter, a digit or an underscore of the ASCII range.
bool IsWordUnit(std::int32_t unit);

// The number of the line, counted from 1, in which the unit at `position` stands.
std::size_t LineNumber(TextUnits units, std::size_t position);

}  // namespace platform
