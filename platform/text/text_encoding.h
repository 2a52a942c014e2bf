#pragma once

#include <cstddef>
#include <cstring>
#include <optional>
#include <string>
#include <string_view>

namespace platform {

// The encodings in which registry files come. UTF-16 has its low bytes first. UTF-8 is read
// generously: the three bytes of a lone surrogate are accepted.
enum class TextEncoding { kUtf16, kUtf8, kCp1252 };

// The byte order marks that a text may begin with.
inline constexpr std::string_view kUtf8Mark = "\xEF\xBB\xBF";
inline constexpr std::string_view kUtf16Mark = "\xFF\xFE";
inline constexpr std::string_view kSwappedUtf16Mark = "\xFE\xFF";

// Whether the bytes are UTF-8, which plain ASCII always is.
bool IsUtf8(std::string_view bytes);

// Appends the bytes, which are text in the given encoding, to `text`. Every input is decoded: a
// byte that has no meaning stands for the character of its own number.
void DecodeText(TextEncoding encoding, std::string_view bytes, std::u16string& text);

// Appends `text` in the given encoding to `bytes`. False, with `bytes` unchanged, when the encoding
// cannot hold it: lone surrogates in UTF-8, and in CP1252 what it has no character for and also
// what would read as UTF-8, since a file whose bytes are all UTF-8 is taken for such.
bool EncodeText(TextEncoding encoding, std::u16string_view text, std::string& bytes);

// The UTF-16 text of a UTF-8 text. Nothing when it is no valid UTF-8.
std::optional<std::u16string> WideText(std::string_view utf8);

// The UTF-8 text of a UTF-16 text, lone surrogates in their three bytes each, which makes it
// invalid.
std::string Utf8Text(std::u16string_view text);

// Whether a surrogate in `text` is without its other half.
bool HasLoneSurrogate(std::u16string_view text);

// Bytes seen as code units: pairs of bytes in UTF-16, single bytes in the other encodings. Every
// character of the ASCII range is one unit of the same number in each of them, and no part of
// another character looks like one, so that syntax is found without decoding. Owns nothing.
class TextUnits {
  public:
    TextUnits(TextEncoding encoding, std::string_view bytes)
        : bytes_(bytes), shift_(encoding == TextEncoding::kUtf16 ? 1 : 0) {}

    // The number of whole units.
    std::size_t size() const { return bytes_.size() >> shift_; }

    char16_t operator[](std::size_t index) const {
        if (shift_ == 0) {
            return static_cast<unsigned char>(bytes_[index]);
        }
        char16_t unit = 0;
        std::memcpy(&unit, bytes_.data() + 2 * index, sizeof unit);
        return unit;
    }

    // The bytes of the units from `begin` up to, not including, `end`.
    std::string_view Bytes(std::size_t begin, std::size_t end) const {
        return bytes_.substr(begin << shift_, (end - begin) << shift_);
    }

  private:
    std::string_view bytes_;
    unsigned shift_;
};

}  // namespace platform
