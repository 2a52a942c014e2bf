#include "core/wide_text.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <string>

#include "core/win_main.h"

namespace {

TEST(FormatText, FitsWholeOrLeavesNothing) {
    const struct {
        std::size_t capacity;
        bool fits;
        std::u16string text;
    } cases[] = {{7, true, u"\\ab\\cd"}, {6, false, u""}, {1, false, u""}, {0, false, u"#"}};
    for (const auto& expected : cases) {
        WCHAR buffer[] = u"########";
        EXPECT_EQ(FormatText(std::span(buffer, expected.capacity), TEXT("%s\\%s"),
                             {TEXT("\\ab"), TEXT("cd")}),
                  expected.fits);
        EXPECT_EQ(std::u16string(buffer).substr(0, expected.text.size() + (expected.fits ? 1 : 0)),
                  expected.text);
        EXPECT_EQ(buffer[expected.capacity], u'#');
    }
}

TEST(FormatText, PutsNumbersAndKeepsWhatIsNoPlaceholder) {
    PathText text;
    EXPECT_TRUE(FormatText(text, TEXT("%d Bytes, 100%"), {0}));
    EXPECT_EQ(std::u16string(text.data()), u"0 Bytes, 100%");
    EXPECT_TRUE(FormatText(text, TEXT("%d"), {std::numeric_limits<std::int32_t>::min()}));
    EXPECT_EQ(std::u16string(text.data()), u"-2147483648");
    EXPECT_TRUE(FormatText(text, TEXT("%s"), {TEXT("%s%d")}));
    EXPECT_EQ(std::u16string(text.data()), u"%s%d");
}

TEST(RunMode, TheFirstCharacterDecides) {
    const struct {
        const WCHAR* commandLine;
        bool silent;
    } cases[] = {{TEXT(""), false},       {TEXT("silent"), true},   {TEXT("silent\""), true},
                 {TEXT("Silent"), false}, {TEXT(" silent"), false}, {TEXT("/silent"), false},
                 {TEXT("install"), true}, {TEXT("nx"), true},       {TEXT("xn"), false}};
    for (const auto& expected : cases) {
        EXPECT_EQ(IsSilentCommandLine(expected.commandLine), expected.silent);
    }
}

}  // namespace
