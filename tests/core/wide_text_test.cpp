#include "core/wide_text.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <string>

namespace {

TEST(WideText, AFormatFitsWholeOrLeavesNothing) {
    for (const std::size_t capacity : {7U, 6U, 1U, 0U}) {
        WCHAR buffer[] = u"########";
        EXPECT_EQ(FormatText(std::span(buffer, capacity), TEXT("%s\\%s"), {u"\\ab", u"cd"}),
                  capacity == 7);
        const std::u16string text = buffer;
        EXPECT_EQ(text, capacity == 7 ? u"\\ab\\cd" : capacity == 0 ? u"########" : u"");
        EXPECT_EQ(buffer[capacity], u'#');
    }
}

TEST(WideText, AFormatPutsNumbersAndKeepsWhatIsNoPlaceholder) {
    PathText text;
    EXPECT_TRUE(FormatText(text, TEXT("%d Bytes, 100%"), {0}));
    EXPECT_EQ(std::u16string(text.data()), u"0 Bytes, 100%");
    EXPECT_TRUE(FormatText(text, TEXT("%d"), {std::numeric_limits<std::int32_t>::min()}));
    EXPECT_EQ(std::u16string(text.data()), u"-2147483648");
    EXPECT_TRUE(FormatText(text, TEXT("%s"), {TEXT("%s%d")}));
    EXPECT_EQ(std::u16string(text.data()), u"%s%d");
}

}  // namespace
