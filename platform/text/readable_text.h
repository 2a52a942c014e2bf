#pragma once

#include <string>
#include <string_view>

namespace platform {

// A text of the device as a line for people: UTF-8, line breaks as blanks, and each unit that would
// not be seen, or that stands for a byte of a host name, as <XXXX> with its hexadecimal digits.
std::string ReadableText(std::u16string_view text);

// Whether nothing of the text is changed by that: as UTF-8 it is its own readable form.
bool IsReadable(std::u16string_view text);

// The readable form of a path of the host; bytes that are no UTF-8 become escapes as well.
std::string ReadableBytes(std::string_view bytes);

}  // namespace platform
