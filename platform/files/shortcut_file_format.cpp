#include "platform/files/shortcut_file_format.h"

#include <cerrno>
#include <cstddef>

#include "platform/io/whole_file.h"
#include "platform/text/text_encoding.h"

namespace platform {

namespace {

// Bytes. Room for a command line of any length that fits the program's buffers, and for comments.
constexpr std::size_t kLargestShortcut = 4096;

std::u16string Decode(std::string_view content) {
    TextEncoding encoding = TextEncoding::kCp1252;
    if (content.starts_with(kUtf16Mark)) {
        encoding = TextEncoding::kUtf16;
        content.remove_prefix(kUtf16Mark.size());
    } else {
        content.remove_prefix(content.starts_with(kUtf8Mark) ? kUtf8Mark.size() : 0);
        encoding = IsUtf8(content) ? TextEncoding::kUtf8 : TextEncoding::kCp1252;
    }
    std::u16string text;
    DecodeText(encoding, content, text);
    return text;
}

// The text up to the first of the characters in `ends`, or all of it.
std::u16string_view Until(std::u16string_view text, std::u16string_view ends) {
    return text.substr(0, text.find_first_of(ends));
}

std::u16string_view From(std::u16string_view text, std::size_t position) {
    return position < text.size() ? text.substr(position) : std::u16string_view();
}

std::u16string_view WithoutComments(std::u16string_view text) {
    constexpr std::u16string_view lineEnds = u"\r\n";
    while (text.starts_with(u';')) {
        text = From(text, text.find_first_of(lineEnds));
        text = From(text, text.find_first_not_of(lineEnds));
    }
    return text;
}

std::u16string_view WithoutBlanks(std::u16string_view text) {
    constexpr std::u16string_view blanks = u" \t";
    text = From(text, text.find_first_not_of(blanks));
    return text.substr(0, text.find_last_not_of(blanks) + 1);
}

}  // namespace

std::optional<std::u16string> ShortcutTarget(std::string_view content) {
    const std::u16string decoded = Decode(content);
    const std::u16string_view text = WithoutComments(decoded);
    const std::size_t mark = text.find_first_not_of(u"0123456789");
    if (mark == 0 || mark == std::u16string_view::npos || text[mark] != u'#') {
        return std::nullopt;
    }
    // Editors leave line ends, terminators and end-of-file marks after what was typed.
    constexpr std::u16string_view ends(u"\r\n\x1A?\0", 5);
    return std::u16string(WithoutBlanks(Until(text.substr(mark + 1), ends)));
}

Result<std::u16string> ReadShortcut(int file) {
    const Result<std::string> content = ReadToEnd(file, kLargestShortcut, kLargestShortcut);
    if (!content && content.error().error != EFBIG) {
        return tl::unexpected<Failure>(content.error());
    }
    std::optional<std::u16string> target = content ? ShortcutTarget(*content) : std::nullopt;
    if (!target) {
        return FailBecause("read", "it is no shortcut", ERROR_BAD_FORMAT);
    }
    return std::move(*target);
}

std::string ShortcutContent(std::u16string_view target) {
    return std::to_string(target.size()) + '#' + Utf8Text(target);
}

}  // namespace platform
