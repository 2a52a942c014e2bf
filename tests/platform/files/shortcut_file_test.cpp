#include "platform/files/shortcut_file.h"

#include <gtest/gtest.h>

#include "platform/device/real_device.h"
#include "platform/text/readable_text.h"
#include "tests/support/temporary_device.h"

namespace {

using namespace std::string_literals;

std::string Shown(const std::optional<std::u16string>& target) {
    return target ? platform::ReadableText(*target) : "none";
}

TEST(ShortcutFileTest, ReadsTheCommandLine) {
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

TEST(ShortcutFileTest, WritesTheTrueNumberOfCharacters) {
    EXPECT_EQ(platform::ShortcutContent(u"\"\\a b\\x.exe\" silent\""),
              "20#\"\\a b\\x.exe\" silent\"");
    EXPECT_EQ(platform::ShortcutContent(u"\\B\u00FC\U0001D11E"), "5#\\B\xC3\xBC\xF0\x9D\x84\x9E");
    EXPECT_EQ(platform::ShortcutContent(u""), "0#");
}

class ShortcutStoreTest : public testing::Test {
  protected:
    // "none" when the store says that it is no shortcut.
    std::string TargetOf(const WCHAR* path, int limit = 1024) {
        std::u16string buffer(1024, u'x');
        return store_.SHGetShortcutTarget(path, buffer.data(), limit) != 0
                   ? platform::ReadableText(buffer.c_str())
                   : "none";
    }

    TemporaryDevice device_;
    platform::RealDevice store_{device_.OpenFiles(), u"\\x.exe", device_.OpenRegistry()};
};

TEST_F(ShortcutStoreTest, TellsByContentAndNotByName) {
    device_.Make({"a.txt=2#\\b", "a.lnk=hello", "dir.lnk/", "link.lnk>a.txt", "pipe.lnk|"});
    EXPECT_EQ(TargetOf(u"\\A.TXT"), "\\b");
    for (const WCHAR* const path :
         {u"\\a.lnk", u"\\dir.lnk", u"\\link.lnk", u"\\pipe.lnk", u"\\gone.lnk", u"\\", u""}) {
        EXPECT_EQ(TargetOf(path), "none") << platform::ReadableText(path);
    }
}

TEST_F(ShortcutStoreTest, GivesWholeTextsOnly) {
    device_.Make({"fits=1023#\\" + std::string(1022, 'a'), "long=1024#\\" + std::string(1023, 'a'),
                  "three=3#\\ab", "padded=2#\\a" + std::string(5000, ' ')});
    EXPECT_EQ(TargetOf(u"\\fits"), "\\" + std::string(1022, 'a'));
    EXPECT_EQ(TargetOf(u"\\long"), "none");
    EXPECT_EQ(TargetOf(u"\\three", 4), "\\ab");
    EXPECT_EQ(TargetOf(u"\\three", 3), "none");
    EXPECT_EQ(TargetOf(u"\\three", 0), "none");
    EXPECT_EQ(TargetOf(u"\\padded"), "none");
}

TEST_F(ShortcutStoreTest, MakesShortcutsUnderNewNamesOnly) {
    EXPECT_NE(store_.SHCreateShortcut(u"\\a.lnk", u"\\b c"), 0);
    EXPECT_EQ(TargetOf(u"\\a.lnk"), "\\b c");
    device_.Make({"dir/", "link>nowhere"});
    for (const WCHAR* const path :
         {u"\\a.lnk", u"\\A.LNK", u"\\dir", u"\\link", u"\\none\\a.lnk", u"\\c\\", u"\\c*", u""}) {
        EXPECT_EQ(store_.SHCreateShortcut(path, u"\\x"), 0) << platform::ReadableText(path);
    }
    EXPECT_EQ(device_.Listing(), (Entries{"a.lnk=4#\\b c", "dir/", "link>nowhere"}));
}

}  // namespace
