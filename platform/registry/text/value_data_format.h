#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "platform/diagnostics/failure.h"
#include "platform/registry/text/registry_scanner.h"
#include "platform/text/text_encoding.h"

namespace platform {

// What a registry file lays down for all of its values.
struct RegistryForm {
    TextEncoding encoding = TextEncoding::kUtf16;
    bool narrowTexts = false;  // texts as bytes, "hex(1):" and its like, hold 8-bit characters
    std::string lineEnd;       // in the file's encoding
};

// A value as the registry's operations know it: texts in UTF-16, the low bytes first.
struct RegistryData {
    std::uint32_t type = 0;
    std::vector<std::uint8_t> bytes;

    bool operator==(const RegistryData&) const = default;
};

enum class DataState {
    kValue,       // there is a value
    kDeleted,     // the line says that there is none
    kUnresolved,  // a symbol stands in place of the data
};

// The failure of reading text that is not of the form.
inline tl::unexpected<Failure> Malformed(const char* reason) {
    return FailBecause("read it", reason, ERROR_BAD_FORMAT);
}

// Moves the scanner from the first unit of a value's data past its last one and puts what it says
// into `data`, unless that is null. When the data are malformed, the scanner stands in the line of
// the fault.
Result<DataState> ReadData(RegistryScanner& scanner, const RegistryForm& form, RegistryData* data);

// The data of a value in the form of a file, in the file's encoding. A text becomes "..." where
// that can hold it; a terminator at its end is left out there, since reading adds it. Nothing when
// the file has no form for the value.
std::optional<std::string> FormatData(const RegistryForm& form, std::uint32_t type,
                                      std::span<const std::uint8_t> bytes);

// Appends what the text between a pair of quotes stands for to `text`.
void DecodeQuoted(TextEncoding encoding, std::string_view quoted, std::u16string& text);

// The text in quotes and with its escapes, in the given encoding; nothing when the encoding cannot
// hold it.
std::optional<std::string> FormatQuoted(TextEncoding encoding, std::u16string_view text);

}  // namespace platform
