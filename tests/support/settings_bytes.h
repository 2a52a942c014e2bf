#pragma once

#include <cstdint>
#include <initializer_list>
#include <string>

// The parts of a settings.dat, as they are stored.

inline constexpr std::uint32_t kAllOptions = 0x1FFFFFF;

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

// A whole file with every option ticked, its eight texts and its four positions.
inline std::string AllOptionsWith(std::initializer_list<std::u16string> texts,
                                  std::initializer_list<std::uint32_t> positions) {
    std::string bytes = Number(kAllOptions);
    for (const std::u16string& text : texts) {
        bytes += Record(text);
    }
    for (const std::uint32_t position : positions) {
        bytes += Number(position);
    }
    return bytes;
}
