#pragma once

#include <QString>

namespace platform::qt {

// A text with its place in the order of sorted lists: without regard to case, and by the characters
// where two texts differ in nothing else.
class SortText {
  public:
    explicit SortText(const QString& text) : text_(text), folded_(text.toCaseFolded()) {}

    const QString& text() const { return text_; }

    bool operator<(const SortText& other) const {
        const int apartFromCase = folded_.compare(other.folded_);
        return apartFromCase != 0 ? apartFromCase < 0 : text_ < other.text_;
    }

  private:
    QString text_;
    QString folded_;
};

}  // namespace platform::qt
