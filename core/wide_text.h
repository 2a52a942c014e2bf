#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <span>
#include <string>
#include <string_view>

#include "core/platform_types.h"

// The standard library's texts of the platform's characters.
using WideString = std::basic_string<WCHAR>;
using WideView = std::basic_string_view<WCHAR>;

// Capacity in characters, terminator included, of every buffer that holds a text or a path.
inline constexpr std::size_t kTextCapacity = 1024;
using PathText = std::array<WCHAR, kTextCapacity>;

// The C library's wide-text functions for the platform's 16-bit characters: arguments and results
// are those of the functions of the same name. The platform defines them: where its own wide
// characters have 16 bits, these are its own functions.
std::size_t wcslen(const WCHAR* text);
std::size_t wcsspn(const WCHAR* text, const WCHAR* set);
const WCHAR* wcsstr(const WCHAR* text, const WCHAR* part);
const WCHAR* wcsrchr(const WCHAR* text, WCHAR character);
int _wcsnicmp(const WCHAR* left, const WCHAR* right,
              std::size_t count);  // ignores case as file names do

// One value for a format: a terminated text, which must outlive the call, or a number.
class TextArgument {
  public:
    TextArgument(const WCHAR* text) : text_(text) {}        // NOLINT(google-explicit-constructor)
    TextArgument(std::int32_t number) : number_(number) {}  // NOLINT(google-explicit-constructor)

    const WCHAR* text() const { return text_; }
    std::int32_t number() const { return number_; }

  private:
    const WCHAR* text_ = nullptr;
    std::int32_t number_ = 0;
};

// Writes `format` into `buffer`, each "%s" and "%d" replaced by the next argument, and terminates
// it. Returns whether all of it fitted. If not, the text is empty and never cut: a cut path names
// another entry.
bool FormatText(std::span<WCHAR> buffer, const WCHAR* format,
                std::initializer_list<TextArgument> arguments);

// Whether a path is a pattern: "*" stands for any characters, "?" for one.
bool HasWildcard(WideView path);
