#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace platform {

// Characters are numbers of Unicode. Half of a surrogate pair that is not whole counts as one.
inline bool IsSurrogate(std::int32_t character) {
    return (character & ~0x7FF) == 0xD800;
}

// The character that begins at `index`, which moves to the next one.
inline std::int32_t NextCharacter(std::u16string_view text, std::size_t& index) {
    const char16_t unit = text[index++];
    const char16_t next = index < text.size() ? text[index] : u'\0';
    if ((unit & 0xFC00) != 0xD800 || (next & 0xFC00) != 0xDC00) {
        return unit;
    }
    ++index;
    return 0x10000 + ((unit & 0x3FF) << 10) + (next & 0x3FF);
}

// Hands the one or two UTF-16 units of a character to `append`.
template <typename Append>
void AppendUtf16(std::int32_t character, Append append) {
    if (character >= 0x10000) {
        append(static_cast<char16_t>(0xD800 + ((character - 0x10000) >> 10)));
        append(static_cast<char16_t>(0xDC00 + ((character - 0x10000) & 0x3FF)));
    } else {
        append(static_cast<char16_t>(character));
    }
}

// Hands the one to four UTF-8 bytes of a character to `append`; a surrogate has three.
template <typename Append>
void AppendUtf8(std::int32_t character, Append append) {
    if (character < 0x80) {
        append(static_cast<char>(character));
        return;
    }
    const int following = character < 0x800 ? 1 : character < 0x10000 ? 2 : 3;
    const int lead = 0xF00 >> (following + 1) & 0xFF;
    append(static_cast<char>(lead | character >> (6 * following)));
    for (int left = following; left > 0; --left) {
        append(static_cast<char>(0x80 | (character >> (6 * (left - 1)) & 0x3F)));
    }
}

}  // namespace platform
