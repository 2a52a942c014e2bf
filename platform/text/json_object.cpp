#include "platform/text/json_object.h"

#include <cstddef>
#include <utility>

#include "platform/text/readable_text.h"

namespace platform {

namespace {

constexpr std::string_view kHexDigits = "0123456789abcdef";
constexpr std::size_t kUsualLength = 256;

void AppendHexByte(std::string& text, unsigned byte) {
    text += kHexDigits[byte >> 4 & 0xF];
    text += kHexDigits[byte & 0xF];
}

std::string HexOfUnits(std::u16string_view units) {
    std::string text;
    text.reserve(4 * units.size());
    for (const char16_t unit : units) {
        AppendHexByte(text, static_cast<unsigned>(unit >> 8));
        AppendHexByte(text, static_cast<unsigned>(unit & 0xFF));
    }
    return text;
}

}  // namespace

std::string HexOf(std::string_view bytes) {
    std::string text;
    text.reserve(2 * bytes.size());
    for (const char byte : bytes) {
        AppendHexByte(text, static_cast<unsigned char>(byte));
    }
    return text;
}

JsonObject::JsonObject() {
    text_.reserve(kUsualLength);
}

JsonObject& JsonObject::Raw(const char* name, std::string_view json) {
    ((text_ += text_.empty() ? "{\"" : ",\"") += name) += "\":";
    text_ += json;
    return *this;
}

JsonObject& JsonObject::Number(const char* name, std::uint64_t value) {
    return Raw(name, std::to_string(value));
}

JsonObject& JsonObject::Flag(const char* name, bool value) {
    return Raw(name, value ? "true" : "false");
}

JsonObject& JsonObject::Text(const char* name, std::string_view value) {
    Raw(name, "\"");
    for (const char byte : value) {
        if (byte == '"' || byte == '\\') {
            text_ += '\\';
        }
        text_ += byte;
    }
    text_ += '"';
    return *this;
}

JsonObject& JsonObject::Text(const char* name, const char* unitsName, std::u16string_view value) {
    Text(name, ReadableText(value));
    return IsReadable(value) ? *this : Text(unitsName, HexOfUnits(value));
}

std::string JsonObject::Take() {
    return std::move(text_ += '}');
}

}  // namespace platform
