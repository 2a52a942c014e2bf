#pragma once

#include <cstdint>
#include <string>

// The parts of a settings.dat, as they are stored.

inline std::string Wide(const std::u16string& text) {
    std::string bytes;
    for (const char16_t unit : text) {
        bytes += {static_cast<char>(unit), static_cast<char>(unit >> 8)};
    }
    return bytes;
}

inline std::string Number(std::uint32_t number) {
    return Wide({static_cast<char16_t>(number), static_cast<char16_t>(number >> 16)});
}

inline std::string Record(const std::u16string& text) {
    return Number(static_cast<std::uint32_t>(text.size())) + Wide(text);
}
