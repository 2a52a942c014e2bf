#include "platform/files/shortcut_file_format.h"

#include <gtest/gtest.h>

#include "platform/text/readable_text.h"

namespace {

using namespace std::string_literals;

std::string Shown(const std::optional<std::u16string>& target) {
    return target ? platform::ReadableText(*target) : "none";
}

TEST(ShortcutFileFormatTest, ReadsTheCommandLine) {
    const std::pair<std::string, std::string> cases[] = {
        {"9#\\W\\Viewer.exe", "\\W\\Viewer.exe"},
        {"0#\\W\\Viewer.exe", "\\W\\Viewer.exe"},
        {"99999999999999999999#\\a", "\\a"},
        {"40#\\App.exe one two", "\\App.exe one two"},
        {"9#\"\\My Memo.psw\"", "\"\\My Memo.psw\""},
        {"16#\\app.exe \r\n\r\n", "\\app.exe"},
        {"16#\\app.exe\n\x1A", "\\app.exe"},
        {"9#\\i.exe -http://x?\\W\\t.exe,1", "\\i.exe -http://x"},
        {";P & V\r\n22#:MSPIMG?pimg.dll,-1", ":MSPIMG"},
        {";one\n;two\n\n2#\\a", "\\a"},
        {"\xEF\xBB\xBF;\n2#\\a", "\\a"},
        {"7#\\\xC3\xBCr", "\\\xC3\xBCr"},
        {"7#\\\xFCr", "\\\xC3\xBCr"},
        {"1#\\", "\\"},
        {"0#", ""}};
    EXPECT_EQ(Shown(platform::ShortcutTarget("16#\\app.exe\0\0"s)), "\\app.exe");
    EXPECT_EQ(Shown(platform::ShortcutTarget("\xFF\xFE;\0\n\0002\0#\0\\\0a\0"s)), "\\a");
    for (const auto& [content, target] : cases) {
        EXPECT_EQ(Shown(platform::ShortcutTarget(content)), target) << content;
    }
    for (const char* const content :
         {"", "#\\a", "12", "12 #\\a", "\\Windows\\calc.exe", ";12#\\a", ";", "\xFF\xFE"}) {
        EXPECT_FALSE(platform::ShortcutTarget(content)) << content;
    }
}

TEST(ShortcutFileFormatTest, WritesTheTrueNumberOfCharacters) {
    EXPECT_EQ(platform::ShortcutContent(u"\"\\a b\\x.exe\" silent\""),
              "20#\"\\a b\\x.exe\" silent\"");
    EXPECT_EQ(platform::ShortcutContent(u"\\B\u00FC\U0001D11E"), "5#\\B\xC3\xBC\xF0\x9D\x84\x9E");
    EXPECT_EQ(platform::ShortcutContent(u""), "0#");
}

}  // namespace
