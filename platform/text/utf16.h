#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace platform {

// Takes the character that begins at `index`, half of a pair that is not whole included, and moves
// `index` behind it.
inline std::int32_t NextCharacter(std::u16string_view text, std::size_t& index) {
    const char16_t unit = text[index++];
    const char16_t next = index < text.size() ? text[index] : u'\0';
    if ((unit & 0xFC00) != 0xD800 || (next & 0xFC00) != 0xDC00) {
        return unit;
    }
    ++index;
    return 0x10000 + ((unit & 0x3FF) << 10) + (next & 0x3FF);
}

// Hands the one or two units of a character to `append`.
template <typename Append>
void AppendCharacter(std::int32_t character, Append append) {
    if (character >= 0x10000) {
        append(static_cast<char16_t>(0xD800 + ((character - 0x10000) >> 10)));
        append(static_cast<char16_t>(0xDC00 + ((character - 0x10000) & 0x3FF)));
    } else {
        append(static_cast<char16_t>(character));
    }
}

}  // namespace platform
