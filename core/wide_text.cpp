#include "core/wide_text.h"

#include <array>
#include <charconv>

namespace {

// Builds a text in a buffer as long as it fits, with its terminator.
class BoundedText {
  public:
    explicit BoundedText(std::span<WCHAR> buffer) : buffer_(buffer) {}

    void Append(WCHAR character) {
        if (length_ + 1 < buffer_.size()) {
            buffer_[length_++] = character;
        } else {
            fits_ = false;
        }
    }

    void Append(const WCHAR* text) {
        for (; *text != 0 && fits_; ++text) {
            Append(*text);
        }
    }

    void Append(std::int32_t number) {
        std::array<char, 16> digits{};
        const char* const end =
            std::to_chars(digits.data(), digits.data() + digits.size(), number).ptr;
        for (const char* digit = digits.data(); digit != end; ++digit) {
            Append(static_cast<WCHAR>(*digit));
        }
    }

    bool Finish() {
        if (!buffer_.empty()) {
            buffer_[fits_ ? length_ : 0] = 0;
        }
        return fits_ && !buffer_.empty();
    }

  private:
    std::span<WCHAR> buffer_;
    std::size_t length_ = 0;
    bool fits_ = true;
};

}  // namespace

bool FormatText(std::span<WCHAR> buffer, const WCHAR* format,
                std::initializer_list<TextArgument> arguments) {
    BoundedText text(buffer);
    const TextArgument* argument = arguments.begin();
    for (; *format != 0; ++format) {
        if (*format == TEXT('%') && format[1] == TEXT('s')) {
            text.Append((argument++)->text());
            ++format;
        } else if (*format == TEXT('%') && format[1] == TEXT('d')) {
            text.Append((argument++)->number());
            ++format;
        } else {
            text.Append(*format);
        }
    }
    return text.Finish();
}

bool HasWildcard(WideView path) {
    return path.find_first_of(TEXT("*?")) != WideView::npos;
}
