#include "platform/tree/dos_attributes.h"

#include <gtest/gtest.h>

#include <string>
#include <tuple>

namespace platform {
namespace {

using namespace std::string_literals;

// Records as file servers of several generations wrote them.
TEST(DosAttributes, AllKnownFormsAreRead) {
    const std::string rest(36, '\x07');
    const std::tuple<const char*, std::string, DWORD> cases[] = {
        {"text", "0x22"s, 0x22},
        {"text with terminator", "0x6\0"s, 0x6},
        {"version 3", "0x22\0\0\x03\0\x03\0\0\0\x11\0\0\0\x22\0\0\0"s + rest, 0x22},
        {"version 3, not padded", "0x2\0\x03\0\x03\0\x11\0\0\0\x02\0\0\0"s + rest, 0x2},
        {"version 4", "\0\0\x04\0\x04\0\0\0\x51\0\0\0\x22\0\0\0"s + rest, 0x22},
        {"version 5", "\0\0\x05\0\x05\0\0\0\x11\0\0\0\x22\0\0\0"s + rest, 0x22},
        {"version 1", "\0\0\x01\0\x01\0\0\0\x16\0\0\0\0\0\0\0"s, 0x16},
        {"attributes not valid", "\0\0\x04\0\x04\0\0\0\x50\0\0\0\x22\0\0\0"s + rest, 0},
        {"unknown version", "\0\0\x09\0\x09\0\0\0\x51\0\0\0\x22\0\0\0"s + rest, 0},
        {"cut", "\0\0\x04\0\x04\0\0\0\x51\0\0\0\x22\0\0"s, 0},
        {"other text", "hidden"s, 0},
    };
    for (const auto& [name, content, attributes] : cases) {
        const auto* const bytes = reinterpret_cast<const unsigned char*>(content.data());
        EXPECT_EQ(ParseDosAttributes({bytes, content.size()}), attributes) << name;
    }
}

}  // namespace
}  // namespace platform
