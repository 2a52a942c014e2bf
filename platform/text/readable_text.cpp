#include "platform/text/readable_text.h"

#include <utf8proc.h>

#include <array>
#include <cstdio>

#include "platform/text/name_translation.h"
#include "platform/text/unicode.h"

namespace platform {

namespace {

constexpr bool IsPlain(utf8proc_int32_t character) {
    return character >= ' ' && character <= '~';
}

bool IsSeen(utf8proc_int32_t character) {
    if (IsPlain(character)) {
        return true;
    }
    switch (utf8proc_category(character)) {
        case UTF8PROC_CATEGORY_CC:
        case UTF8PROC_CATEGORY_CF:
        case UTF8PROC_CATEGORY_CN:
        case UTF8PROC_CATEGORY_CO:
        case UTF8PROC_CATEGORY_CS:
        case UTF8PROC_CATEGORY_ZL:
        case UTF8PROC_CATEGORY_ZP:
            return false;
        default:
            return true;
    }
}

void AppendEscape(std::string& text, char16_t unit) {
    std::array<char, 8> escape{};
    std::snprintf(escape.data(), escape.size(), "<%04X>", static_cast<unsigned>(unit));
    text += escape.data();
}

}  // namespace

std::string ReadableText(std::u16string_view text) {
    std::string readable;
    readable.reserve(text.size());
    for (std::size_t index = 0; index < text.size();) {
        const std::size_t begin = index;
        const utf8proc_int32_t character = NextCharacter(text, index);
        if (IsPlain(character)) {
            readable += static_cast<char>(character);
        } else if (character == u'\n') {
            readable += ' ';
        } else if (character == u'\r' && text.substr(index).starts_with(u'\n')) {
            continue;  // the line feed after it makes the blank
        } else if (IsSeen(character)) {
            AppendUtf8(character, [&readable](char byte) { readable += byte; });
        } else {
            for (const char16_t unit : text.substr(begin, index - begin)) {
                AppendEscape(readable, unit);
            }
        }
    }
    return readable;
}

bool IsReadable(std::u16string_view text) {
    for (std::size_t index = 0; index < text.size();) {
        if (!IsSeen(NextCharacter(text, index))) {
            return false;
        }
    }
    return true;
}

std::string ReadableBytes(std::string_view bytes) {
    std::u16string text;
    while (!bytes.empty()) {
        utf8proc_int32_t character = -1;
        const auto length =
            utf8proc_iterate(reinterpret_cast<const utf8proc_uint8_t*>(bytes.data()),
                             static_cast<utf8proc_ssize_t>(bytes.size()), &character);
        // The units that stand for bytes in names of the device are never seen either.
        const auto byte = static_cast<unsigned char>(bytes.front());
        AppendUtf16(length > 0 ? character : kEscapeBase + byte,
                    [&text](char16_t unit) { text += unit; });
        bytes.remove_prefix(length > 0 ? static_cast<std::size_t>(length) : 1);
    }
    return ReadableText(text);
}

}  // namespace platform
