#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace platform {

// Two hexadecimal digits for each byte.
std::string HexOf(std::string_view bytes);

// An object of JSON while it is written, a field after the other. Texts are readable ones: UTF-8
// without control characters.
class JsonObject {
  public:
    JsonObject();

    JsonObject& Raw(const char* name, std::string_view json);
    JsonObject& Number(const char* name, std::uint64_t value);
    JsonObject& Flag(const char* name, bool value);
    JsonObject& Text(const char* name, std::string_view value);

    // The readable form and, where that is not exact, in a second field the units, with four
    // hexadecimal digits each.
    JsonObject& Text(const char* name, const char* unitsName, std::u16string_view value);

    // The whole object, on one line. Nothing may be added afterwards.
    std::string Take();

  private:
    std::string text_;
};

}  // namespace platform
