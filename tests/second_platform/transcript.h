#pragma once

#include <cstdio>
#include <sstream>
#include <string>
#include <type_traits>

#include "core/wide_text.h"

// Of a long text its first 40 characters, and its length.
std::string Readable(WideView text);

// Writes the line "call = result", the parts of the result with nothing between them.
template <typename... Parts>
void Write(const std::string& call, const Parts&... result) {
    std::ostringstream line;
    line << call << " = ";
    const auto add = [&line](const auto& part) {
        if constexpr (std::is_convertible_v<decltype(part), WideView>) {
            line << Readable(part);
        } else {
            line << part;
        }
    };
    (add(result), ...);
    std::puts(line.str().c_str());
    std::fflush(stdout);
}

void WriteFiles();
void WriteRegistry();
void WriteWindows();
