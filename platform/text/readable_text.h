#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace platform {

// The UTF-16 text of a UTF-8 text. Nothing when it is no valid UTF-8.
std::optional<std::u16string> WideText(std::string_view utf8);

// The UTF-8 text of a UTF-16 text. Halves of pairs that are not whole make it invalid UTF-8.
std::string Utf8Text(std::u16string_view text);

// A text of the device as a line for people: UTF-8, line breaks as blanks, and each unit that would
// not be seen, or that stands for a byte of a host name, as <XXXX> with its hexadecimal digits.
std::string ReadableText(std::u16string_view text);

// The same for a path of the host; bytes that are no UTF-8 become escapes as well.
std::string ReadableBytes(std::string_view bytes);

}  // namespace platform
