#include "platform/text/text_encoding.h"

#include <utf8proc.h>

#include <algorithm>
#include <array>
#include <bit>
#include <cstdint>

#include "platform/text/unicode.h"

static_assert(std::endian::native == std::endian::little, "UTF-16 units are read as they lie");

namespace platform {
namespace {

// The characters of the bytes 0x80 to 0x9F in CP1252; all others are their own number.
constexpr std::array<char16_t, 32> kCp1252Middle = {
    0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0x008D, 0x017D, 0x008F, 0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178};

// One character of UTF-8 and the number of its bytes, 0 when they are malformed.
struct Utf8Character {
    std::int32_t code = 0;
    std::size_t length = 0;
};

std::size_t LengthFromLead(unsigned char lead) {
    if (lead < 0x80) {
        return 1;
    }
    if (lead < 0xC2 || lead > 0xF4) {
        return 0;
    }
    return lead < 0xE0 ? 2 : lead < 0xF0 ? 3 : 4;
}

Utf8Character ReadUtf8(std::string_view bytes, std::size_t position) {
    static constexpr std::array<std::int32_t, 5> kSmallest = {0, 0, 0x80, 0x800, 0x10000};
    const auto lead = static_cast<unsigned char>(bytes[position]);
    const std::size_t length = LengthFromLead(lead);
    if (length <= 1) {
        return {lead, length};
    }
    if (length > bytes.size() - position) {
        return {};
    }
    std::int32_t code = lead & (0xFF >> (length + 1));
    for (std::size_t index = 1; index < length; ++index) {
        const auto next = static_cast<unsigned char>(bytes[position + index]);
        if ((next & 0xC0U) != 0x80) {
            return {};
        }
        code = code << 6 | (next & 0x3F);
    }
    return code < kSmallest[length] || code > 0x10FFFF ? Utf8Character{}
                                                       : Utf8Character{code, length};
}

char16_t FromCp1252(unsigned char byte) {
    return byte >= 0x80 && byte < 0xA0 ? kCp1252Middle[byte - 0x80U] : byte;
}

// The byte of a character in CP1252, -1 when it has none.
int ToCp1252(char16_t unit) {
    if (unit < 0x80 || (unit >= 0xA0 && unit < 0x100)) {
        return unit;
    }
    const auto* const found = std::find(kCp1252Middle.begin(), kCp1252Middle.end(), unit);
    return found == kCp1252Middle.end() ? -1
                                        : 0x80 + static_cast<int>(found - kCp1252Middle.begin());
}

void DecodeUtf8(std::string_view bytes, std::u16string& text) {
    for (std::size_t position = 0; position < bytes.size();) {
        const Utf8Character character = ReadUtf8(bytes, position);
        if (character.length == 0) {
            text += static_cast<unsigned char>(bytes[position]);
            ++position;
            continue;
        }
        AppendUtf16(character.code, [&text](char16_t unit) { text += unit; });
        position += character.length;
    }
}

void DecodeUtf16(std::string_view bytes, std::u16string& text) {
    const std::size_t old = text.size();
    const std::size_t count = bytes.size() / 2;
    if (count == 0) {
        return;
    }
    text.resize(old + count);
    std::memcpy(text.data() + old, bytes.data(), 2 * count);
}

bool EncodeCp1252(std::u16string_view text, std::string& bytes) {
    std::string encoded;
    for (const char16_t unit : text) {
        const int byte = ToCp1252(unit);
        if (byte < 0) {
            return false;
        }
        encoded += static_cast<char>(byte);
    }
    bytes += encoded;
    return true;
}

}  // namespace

bool IsUtf8(std::string_view bytes) {
    for (std::size_t position = 0; position < bytes.size();) {
        const std::size_t length = ReadUtf8(bytes, position).length;
        if (length == 0) {
            return false;
        }
        position += length;
    }
    return true;
}

void DecodeText(TextEncoding encoding, std::string_view bytes, std::u16string& text) {
    switch (encoding) {
        case TextEncoding::kUtf16:
            DecodeUtf16(bytes, text);
            break;
        case TextEncoding::kUtf8:
            DecodeUtf8(bytes, text);
            break;
        case TextEncoding::kCp1252:
            for (const char byte : bytes) {
                text += FromCp1252(static_cast<unsigned char>(byte));
            }
            break;
    }
}

bool EncodeText(TextEncoding encoding, std::u16string_view text, std::string& bytes) {
    switch (encoding) {
        case TextEncoding::kUtf16:
            for (const char16_t unit : text) {
                bytes += static_cast<char>(unit & 0xFFU);
                bytes += static_cast<char>(unit >> 8);
            }
            return true;
        case TextEncoding::kUtf8:
            if (HasLoneSurrogate(text)) {
                return false;
            }
            bytes += Utf8Text(text);
            return true;
        case TextEncoding::kCp1252:
            return EncodeCp1252(text, bytes);
    }
    return false;
}

std::optional<std::u16string> WideText(std::string_view utf8) {
    std::u16string text;
    while (!utf8.empty()) {
        utf8proc_int32_t character = -1;
        const auto length =
            utf8proc_iterate(reinterpret_cast<const utf8proc_uint8_t*>(utf8.data()),
                             static_cast<utf8proc_ssize_t>(utf8.size()), &character);
        if (length <= 0) {
            return std::nullopt;
        }
        AppendUtf16(character, [&text](char16_t unit) { text += unit; });
        utf8.remove_prefix(static_cast<std::size_t>(length));
    }
    return text;
}

std::string Utf8Text(std::u16string_view text) {
    std::string bytes;
    for (std::size_t index = 0; index < text.size();) {
        AppendUtf8(NextCharacter(text, index), [&bytes](char byte) { bytes += byte; });
    }
    return bytes;
}

bool HasLoneSurrogate(std::u16string_view text) {
    for (std::size_t index = 0; index < text.size();) {
        if (IsSurrogate(NextCharacter(text, index))) {
            return true;
        }
    }
    return false;
}

}  // namespace platform
